// CapturedOutput: what is printed to standard output while it stands, as a text. One at a time.
#ifndef TESTS_MODEL_WHOLE_CAPTURED_OUTPUT_H
#define TESTS_MODEL_WHOLE_CAPTURED_OUTPUT_H

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace dcftest {

/// Standard output as a text while it stands.
class CapturedOutput {
public:
    CapturedOutput() : m_saved(stdout) {
        (void)std::fflush(stdout);
        stdout = ::open_memstream(&m_text, &m_size);
    }
    ~CapturedOutput() {
        (void)std::fclose(stdout);
        stdout = m_saved;
        std::free(m_text);
    }
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;

    std::string Text() const {
        (void)std::fflush(stdout);
        return {m_text, m_size};
    }

private:
    FILE* m_saved;
    char* m_text = nullptr;
    std::size_t m_size = 0;
};

} // namespace dcftest

#endif
