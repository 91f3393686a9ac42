// The library and the reference of the model test side by side on one card: each operation is done on both, and result,
// list, card, log, output, calls and stored value have to agree. A documented end of the process has to be the one that
// the reference foresees. Beside that, and without the reference: no file is gone that was not being deleted. One
// thread.
#ifndef TESTS_FUZZ_COMPARED_SIDES_H
#define TESTS_FUZZ_COMPARED_SIDES_H

#include <cstddef>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Operations.h"

namespace dcffuzz {

class ComparedSides {
public:
    /// Makes the card, whose root is there.
    explicit ComparedSides(const dcftest::ReferenceCard& card);

    /// A difference is a finding.
    void Do(const dcftest::Operation& operation, const dcftest::Clock& clock);

    /// The process would have ended: nothing more can be done.
    bool Over() const {
        return m_over;
    }

    dcftest::Expected expected;
    std::unique_ptr<dcftest::Actual> actual;

private:
    struct Outcome {
        std::string result;
        std::vector<std::string> calls;
        std::string printed;
    };
    using Contents = std::multiset<std::set<std::string>>; ///< The names in each folder, whatever its own name is.

    std::string OnReference(const dcftest::Operation& operation);
    Outcome OnLibrary(const dcftest::Operation& operation);
    std::string Result(const dcftest::Operation& operation);
    std::string Difference(const dcftest::Operation& operation, const std::string& result, Outcome outcome,
                           std::size_t prefCalls);
    Contents OnCard() const;

    Contents m_contents; ///< Of the card, as far as is known.
    bool m_over = false;
};

} // namespace dcffuzz

#endif
