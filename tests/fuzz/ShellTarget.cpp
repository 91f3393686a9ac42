// The script of dcfctl's shell: an input is one. It is read line by line as a script is; each line has to fall into the
// words that the rules give it, as they are stated over again here, and the words into the arguments of an operation.
// What is shown of a text must be harmless and must be read back as that text.
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "LineReader.h"
#include "ShellOperations.h"
#include "ShellParser.h"
#include "Target.h"
#include "Text.h"

namespace dcffuzz {
namespace {

using dcfctl::Word;

// ---- The rules ----

bool IsBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

std::optional<unsigned> HexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return static_cast<unsigned>(c - '0');
    }
    const char lower = c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
    return lower >= 'a' && lower <= 'f' ? std::optional(static_cast<unsigned>(lower - 'a') + 10U) : std::nullopt;
}

std::optional<unsigned> HexNumber(const std::string& digits, unsigned most) {
    unsigned value = 0;
    for (const char c : digits) {
        const auto digit = HexDigit(c);
        if (!digit || value > most) {
            return std::nullopt;
        }
        value = value * 16U + *digit;
    }
    return digits.empty() || value > most ? std::nullopt : std::optional(value);
}

std::string Utf8(unsigned codePoint) {
    std::string bytes;
    const auto tail = [&](unsigned shift) { bytes += static_cast<char>(0x80U | ((codePoint >> shift) & 0x3fU)); };
    if (codePoint < 0x80U) {
        bytes += static_cast<char>(codePoint);
    } else if (codePoint < 0x800U) {
        bytes += static_cast<char>(0xc0U | (codePoint >> 6U));
    } else if (codePoint < 0x10000U) {
        bytes += static_cast<char>(0xe0U | (codePoint >> 12U));
        tail(6);
    } else {
        bytes += static_cast<char>(0xf0U | (codePoint >> 18U));
        tail(12);
        tail(6);
    }
    if (codePoint >= 0x80U) {
        tail(0);
    }
    return bytes;
}

/// Reads the escape whose backslash stands at a place, and moves the place behind it. @return nothing for none.
std::optional<std::string> Escape(const std::string& line, std::size_t& at) {
    const std::string rest = line.substr(at + 1);
    const char first = rest.empty() ? '\0' : rest[0];
    if (!rest.empty() && std::string("\\\"' #nt").find(first) != std::string::npos) {
        at += 2;
        return std::string(1, first == 'n' ? '\n' : first == 't' ? '\t' : first);
    }
    if (first == 'x' && rest.size() >= 3) {
        const auto byte = HexNumber(rest.substr(1, 2), 0xff);
        at += 4;
        return byte ? std::optional(std::string(1, static_cast<char>(*byte))) : std::nullopt;
    }
    const std::size_t close = rest.find('}');
    if (rest.compare(0, 2, "u{") != 0 || close == std::string::npos) {
        return std::nullopt;
    }
    const auto codePoint = HexNumber(rest.substr(2, close - 2), 0x10ffff);
    at += close + 2;
    return codePoint ? std::optional(Utf8(*codePoint)) : std::nullopt;
}

/// One word from a place on. @return nothing when it cannot be understood.
std::optional<Word> WordAt(const std::string& line, std::size_t& at) {
    Word word;
    char quote = '\0';
    while (at < line.size() && (quote != '\0' || !IsBlank(line[at]))) {
        const char c = line[at];
        if (c == '\\') {
            const auto escaped = Escape(line, at);
            if (!escaped) {
                return std::nullopt;
            }
            word.text += *escaped;
            continue;
        }
        ++at;
        if (quote == '\0' && (c == '"' || c == '\'')) {
            quote = c;
            word.quoted = true;
        } else if (quote != '\0' && c == quote) {
            quote = '\0';
        } else {
            word.text += c;
        }
    }
    const bool whole = quote == '\0' && word.text.find('\0') == std::string::npos;
    return whole ? std::optional(word) : std::nullopt;
}

/// Nothing for a line that cannot be understood.
std::optional<std::vector<Word>> WordsOf(const std::string& line) {
    std::vector<Word> words;
    std::size_t at = 0;
    while (true) {
        while (at < line.size() && IsBlank(line[at])) {
            ++at;
        }
        if (at == line.size() || line[at] == '#') {
            return words;
        }
        const auto word = WordAt(line, at);
        if (!word) {
            return std::nullopt;
        }
        words.push_back(*word);
    }
}

std::vector<std::string> LinesOf(const std::string& script) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < script.size();) {
        const std::size_t end = std::min(script.find('\n', at), script.size());
        std::string line = script.substr(at, end - at);
        while (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        lines.push_back(line);
        at = end + 1;
    }
    return lines;
}

// ---- The tool against them ----

/// Hands the script to the tool's own reader, as standard input.
std::vector<std::string> ReadAsScript(const std::string& script) {
    FILE* const before = stdin;
    std::string copy = script;
    stdin = script.empty() ? std::fopen("/dev/null", "r") : ::fmemopen(copy.data(), copy.size(), "r");
    Require(stdin != nullptr, "there is no stream for the script");
    std::vector<std::string> lines;
    {
        const auto reader = dcfctl::MakeScriptReader();
        while (const auto line = reader->Next()) {
            lines.push_back(*line);
        }
        Require(reader->Error() == 0, "the script cannot be read");
    }
    (void)std::fclose(stdin);
    stdin = before;
    return lines;
}

void CheckWords(const std::string& line, const dcfctl::ParsedLine& parsed) {
    const auto expected = WordsOf(line);
    Require(expected.has_value() == parsed.error.empty(),
            "the line " + Visible(line) + (expected ? " is refused: " + parsed.error : " is understood"));
    Require(dcfctl::IsUtf8(parsed.error), "the error of " + Visible(line) + " is no text");
    if (!expected) {
        return;
    }
    Require(expected->size() == parsed.words.size(), Visible(line) + " has another number of words");
    for (std::size_t i = 0; i < expected->size(); ++i) {
        const Word& word = parsed.words[i];
        Require((*expected)[i].text == word.text && (*expected)[i].quoted == word.quoted,
                Visible(line) + " has the word " + Visible(word.text));
    }
}

/// The word as a person would write what the tool has shown.
void CheckWrittenAgain(const Word& word) {
    std::string written = "\"";
    for (const char c : dcfctl::Escaped(word.text)) {
        written += c == '"' ? "\\\"" : std::string(1, c);
    }
    const auto again = dcfctl::ParseLine(written + "\"");
    Require(again.error.empty() && again.words.size() == 1 && again.words[0].text == word.text,
            Visible(word.text) + " cannot be written again");
}

void CheckText(const std::string& bytes) {
    const std::string shown = dcfctl::Escaped(bytes);
    Require(dcfctl::IsUtf8(shown) && dcfctl::Unescaped(shown) == bytes, Visible(bytes) + " is shown wrongly");
    const std::string ascii = dcfctl::AsciiOnly(shown);
    Require(std::all_of(ascii.begin(), ascii.end(), [](char c) { return c >= ' ' && c <= '~'; }),
            Visible(bytes) + " is shown in more than ASCII");
    Require(dcfctl::Unescaped(ascii) == bytes, Visible(bytes) + " is not read back from ASCII");
    const std::string replaced = dcfctl::Utf8Replaced(bytes);
    Require(dcfctl::IsUtf8(replaced) && (replaced == bytes) == dcfctl::IsUtf8(bytes), Visible(bytes) + " is replaced");
    Require(dcfctl::Base64(bytes).size() == (bytes.size() + 2) / 3 * 4, Visible(bytes) + " is coded to another length");
}

/// "-12", "12" and "+12" that an int can hold.
bool IsInt(const std::string& text) {
    const std::size_t sign = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    const std::size_t start = std::min(text.find_first_not_of('0', sign), text.size());
    const bool digits = text.size() > sign && std::all_of(text.begin() + static_cast<std::ptrdiff_t>(sign), text.end(),
                                                          [](char c) { return c >= '0' && c <= '9'; });
    if (!digits || text.size() - start > 10) {
        return false;
    }
    const long long value = start == text.size() ? 0 : std::stoll(text.substr(start));
    return text[0] == '-' ? -value >= INT_MIN : value <= INT_MAX;
}

void CheckArgument(const Word& word, const dcfctl::Argument& argument) {
    using dcfctl::ArgumentKind;
    const bool null = !word.quoted && word.text == "null";
    switch (argument.kind) {
    case ArgumentKind::kNumber:
    case ArgumentKind::kPosition:
        Require(argument.number == std::stoi(word.text), Visible(word.text) + " is another number");
        break;
    case ArgumentKind::kPath:
    case ArgumentKind::kText:
    case ArgumentKind::kOptional:
        Require(null ? !argument.text.has_value() : argument.text == word.text,
                Visible(word.text) + " is another text");
        break;
    case ArgumentKind::kFlag:
        Require(argument.number == 0 || argument.number == 1, Visible(word.text) + " is no flag");
        break;
    default:
        break;
    }
}

void CheckArguments(const dcfctl::Operation& operation, const std::vector<Word>& words) {
    const auto read = dcfctl::ReadArguments(operation, words);
    if (const auto* reason = std::get_if<std::string>(&read)) {
        Require(!reason->empty() && dcfctl::IsUtf8(*reason), "a refusal without a reason");
        const bool onlyNumbers =
            !operation.kinds.empty() && operation.kinds.size() == words.size() &&
            std::all_of(operation.kinds.begin(), operation.kinds.end(), [](auto kind) {
                return kind == dcfctl::ArgumentKind::kNumber || kind == dcfctl::ArgumentKind::kPosition;
            });
        Require(!onlyNumbers ||
                    !std::all_of(words.begin(), words.end(), [](const Word& word) { return IsInt(word.text); }),
                std::string(operation.name) + " refuses numbers");
        return;
    }
    const auto& arguments = std::get<dcfctl::Arguments>(read);
    Require(arguments.size() == operation.kinds.size() && words.size() <= arguments.size(),
            std::string(operation.name) + " takes another number of arguments");
    for (std::size_t i = 0; i < words.size(); ++i) {
        Require(arguments[i].kind == operation.kinds[i], "an argument is of another kind");
        CheckArgument(words[i], arguments[i]);
    }
}

void CheckLine(const std::string& line) {
    const dcfctl::ParsedLine parsed = dcfctl::ParseLine(line);
    CheckWords(line, parsed);
    CheckText(line);
    if (!parsed.error.empty() || parsed.words.empty()) {
        return;
    }
    std::for_each(parsed.words.begin(), parsed.words.end(), CheckWrittenAgain);
    const std::vector<Word> rest(parsed.words.begin() + 1, parsed.words.end());
    if (const dcfctl::Operation* operation = dcfctl::FindOperation(parsed.words[0].text)) {
        CheckArguments(*operation, rest);
    }
    for (const dcfctl::Operation& operation : dcfctl::Operations()) {
        if (operation.kinds.size() >= rest.size()) {
            CheckArguments(operation, rest);
        }
    }
}

} // namespace
} // namespace dcffuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace dcffuzz;
    SetUpOnce();
    const std::string script(data, data + size);
    const std::vector<std::string> lines = ReadAsScript(script);
    Require(lines == LinesOf(script), "the script has other lines");
    std::for_each(lines.begin(), lines.end(), CheckLine);
    return 0;
}
