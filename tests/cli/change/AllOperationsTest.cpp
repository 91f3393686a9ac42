// examples/all-operations.dcf, the script that uses the whole interface: it names every operation, and each of its
// lines gives what stands behind it.
#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <regex>
#include <set>

#include "ChangeCard.h"

using clitest::ChangeCard;
using clitest::Lines;
using clitest::Options;
using clitest::Outcome;
using clitest::ReadFile;
using clitest::Words;

namespace {

constexpr char kSourceRoot[] = DCFCTL_SOURCE_ROOT;
constexpr char kComment[] = "# ";

/// A line of the script in its two parts: the operation with its arguments, and what it gives.
struct ScriptLine {
    std::string operation;
    std::string result;
};

std::vector<ScriptLine> ReadScript(const std::string& text) {
    std::vector<ScriptLine> script;
    for (const std::string& line : Lines(text)) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        const std::size_t comment = line.rfind(kComment);
        EXPECT_NE(std::string::npos, comment) << line;
        std::string operation = line.substr(0, comment);
        operation.erase(operation.find_last_not_of(' ') + 1);
        script.push_back({operation, line.substr(std::min(comment, line.size() - 2) + 2)});
    }
    return script;
}

std::set<std::string> OperationsOfTheInterface() {
    const std::string header = ReadFile(std::string(kSourceRoot) + "/include/ISFileList.h");
    const std::regex operation(R"(\n    virtual [^~(\n]*\b(\w+)\()");
    std::set<std::string> names;
    for (auto found = std::sregex_iterator(header.begin(), header.end(), operation); found != std::sregex_iterator();
         ++found) {
        names.insert((*found)[1]);
    }
    return names;
}

/// What a key of an item adds to the result, in the script's short form.
std::string Remark(const std::string& key, const std::string& value) {
    const std::string dcim = "./DCIM/";
    if (key == "path") {
        EXPECT_EQ(0U, value.find(dcim)) << value;
        return " " + value.substr(dcim.size());
    }
    if (value == "-" || value == "no") {
        return "";
    }
    return key == "companion"    ? " +" + value.substr(value.size() - 3)
           : key == "protected"  ? " protected"
           : key == "Wi-Fi mark" ? " wifi"
           : key == "meta text"  ? " " + value
                                 : "";
}

/// One text for each operation that the shell has run: "GetCount 16", "GetNext 0 100PHOTO/KVR_0001.JPG".
Words Transcript(const std::string& output) {
    const std::regex reply(R"((\w+) (?:= (.*)|(done)))");
    constexpr std::size_t kKeyWidth = 11; // between the indent and the value
    Words texts;
    for (const std::string& line : Lines(output)) {
        std::smatch part;
        if (std::regex_match(line, part, reply)) {
            texts.push_back(part[1].str() + " " + part[2].str() + part[3].str());
        } else if (texts.empty() || line.size() < 2 + kKeyWidth) {
            texts.push_back("an unexpected line: " + line);
        } else {
            std::string key = line.substr(2, kKeyWidth);
            key.erase(key.find_last_not_of(' ') + 1);
            texts.back() += Remark(key, line.substr(2 + kKeyWidth));
        }
    }
    return texts;
}

std::string FirstWord(const std::string& text) {
    return text.substr(0, text.find(' '));
}

class AllOperations : public testing::Test {
protected:
    std::string m_text = ReadFile(std::string(kSourceRoot) + "/examples/all-operations.dcf");
    std::vector<ScriptLine> m_script = ReadScript(m_text);
};

TEST_F(AllOperations, AreTheOnesOfTheInterface) {
    std::set<std::string> named;
    for (const ScriptLine& line : m_script) {
        named.insert(FirstWord(line.operation));
    }
    EXPECT_EQ(47U, OperationsOfTheInterface().size());
    EXPECT_EQ(OperationsOfTheInterface(), named);
}

TEST_F(AllOperations, GiveOnASampleCardWhatTheScriptSays) {
    const ChangeCard card;
    std::filesystem::remove_all(card.Dcim());
    ASSERT_EQ(clitest::kSuccess, clitest::Dcfctl({"sample", card.Root()}, card.Environment()).exit);
    Words expected;
    for (const ScriptLine& line : m_script) {
        expected.push_back(FirstWord(line.operation) + " " + line.result);
    }
    Options options = card.Environment();
    options.folder = card.Root();
    options.input = m_text;
    const Outcome outcome = clitest::Dcfctl({"--card", ".", "shell"}, options);
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ("", outcome.err);
    EXPECT_EQ(expected, Transcript(outcome.out));
    EXPECT_EQ(Words{"103era"}, card.DirNames()) << "what was \"Camera\" before the renumbering";
}

} // namespace
