// TempFolder: a folder of one test's own, removed with the object; and small helpers around files and lines.
#ifndef TESTS_UNIT_PLATFORM_TEMP_FOLDER_H
#define TESTS_UNIT_PLATFORM_TEMP_FOLDER_H

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace dcftest {

class TempFolder {
public:
    TempFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "platform-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("mkdtemp");
        }
        m_path = name;
    }
    ~TempFolder() {
        std::error_code ignored; // a folder left behind is no reason to fail
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string operator/(const std::string& name) const {
        return m_path + "/" + name;
    }
    const std::string& Path() const {
        return m_path;
    }

private:
    std::string m_path;
};

inline std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteFile(const std::string& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary);
    file << content;
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + path);
    }
}

/// The lines of a text, without their newlines; what stands behind the last newline is a line, too.
inline std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

inline bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// Sets a variable of this process's environment; null takes it away.
inline void SetVariable(const char* name, const char* value) {
    const int result = value == nullptr ? ::unsetenv(name) : ::setenv(name, value, 1);
    if (result != 0) {
        throw std::runtime_error(name);
    }
}

} // namespace dcftest

#endif
