// The arguments of the shell's operations; see ShellOperations.h.
#include <climits>
#include <cstddef>

#include "DcfNames.h"
#include "ShellOperations.h"
#include "Text.h"

namespace dcfctl {
namespace {

constexpr const char* kNull = "null";

/// A word that stands for a number.
struct NamedValue {
    const char* name;
    int value;
};
using NamedValues = std::vector<NamedValue>;

/// The words for a kind of argument. Where numbers are allowed too, any number is: the interface takes it.
const NamedValues& ValuesOf(ArgumentKind kind) {
    static const NamedValues flags = {{"true", 1}, {"false", 0}, {"on", 1}, {"off", 0}, {"1", 1}, {"0", 0}};
    static const NamedValues types = {{"JPG", FILE_TYPE_JPG}, {"SRW", FILE_TYPE_SRW}, {"MPO", FILE_TYPE_MPO},
                                      {"MP4", FILE_TYPE_MP4}, {"AVI", FILE_TYPE_AVI}, {"none", FILE_TYPE_NONE}};
    static const NamedValues nameMakes = {{"fixed", FILE_NAME_MAKE_FIXED}, {"date", FILE_NAME_MAKE_DATE}};
    static const NamedValues colours = {{"standard", FILE_LIST_COLOR_MODE_STANDARD},
                                        {"optional", FILE_LIST_COLOR_MODE_OPTIONAL}};
    static const NamedValues images = {{"ordinary", FILE_LIST_IMAGE_TYPE_ORDINARY},
                                       {"stereoscopic", FILE_LIST_IMAGE_TYPE_STEREOSCOPIC}};
    static const NamedValues collectors = {{"demo", 0}, {kExifCollector, 0}, {"fail", 0}, {"none", 0}};
    static const NamedValues nothing;
    switch (kind) {
    case ArgumentKind::kFlag:
        return flags;
    case ArgumentKind::kType:
        return types;
    case ArgumentKind::kNameMake:
        return nameMakes;
    case ArgumentKind::kColour:
        return colours;
    case ArgumentKind::kImage:
        return images;
    case ArgumentKind::kCollector:
        return collectors;
    default:
        return nothing;
    }
}

bool TakesNumber(ArgumentKind kind) {
    return kind != ArgumentKind::kFlag && kind != ArgumentKind::kCollector;
}

std::string OneOf(ArgumentKind kind) {
    std::string text = "one of ";
    for (const NamedValue& value : ValuesOf(kind)) {
        text += std::string(value.name) + ", ";
    }
    text.resize(text.size() - 2);
    return TakesNumber(kind) ? text + ", or a number" : text;
}

std::optional<std::string> ReadNumber(const Word& word, Argument& argument) {
    const auto number = WholeNumber(word.text);
    if (!number.has_value() || *number < INT_MIN || *number > INT_MAX) {
        return Quoted(word.text) + " is not a whole number from " + std::to_string(INT_MIN) + " to " +
               std::to_string(INT_MAX);
    }
    argument.number = static_cast<int>(*number);
    return std::nullopt;
}

std::optional<std::string> ReadNamed(const Word& word, Argument& argument) {
    for (const NamedValue& value : ValuesOf(argument.kind)) {
        if (EqualNoCase(word.text, value.name)) {
            argument.number = value.value;
            argument.text = value.name;
            return std::nullopt;
        }
    }
    if (TakesNumber(argument.kind) && !ReadNumber(word, argument).has_value()) {
        return std::nullopt;
    }
    return Quoted(word.text) + " is not " + OneOf(argument.kind);
}

/// @return why the word does not fit.
std::optional<std::string> Read(const Word& word, Argument& argument) {
    const bool null = !word.quoted && word.text == kNull;
    switch (argument.kind) {
    case ArgumentKind::kNumber:
    case ArgumentKind::kPosition:
        return ReadNumber(word, argument);
    case ArgumentKind::kPath:
    case ArgumentKind::kText:
    case ArgumentKind::kOptional:
        if (!null) {
            argument.text = word.text;
        }
        return std::nullopt;
    case ArgumentKind::kNull:
        if (!null) {
            return Quoted(word.text) + " is one word too many; only 'null' may stand here";
        }
        argument.number = 1;
        return std::nullopt;
    default:
        return ReadNamed(word, argument);
    }
}

bool MayBeMissing(ArgumentKind kind) {
    return kind == ArgumentKind::kNull || kind == ArgumentKind::kOptional;
}

} // namespace

std::variant<Arguments, std::string> ReadArguments(const Operation& operation, const std::vector<Word>& words) {
    const std::string usage =
        std::string("; it is ") + operation.name + (*operation.signature != '\0' ? " " : "") + operation.signature;
    Arguments arguments;
    for (std::size_t i = 0; i < operation.kinds.size(); ++i) {
        Argument argument;
        argument.kind = operation.kinds[i];
        if (i < words.size()) {
            if (const auto reason = Read(words[i], argument)) {
                return *reason + usage;
            }
        } else if (!MayBeMissing(argument.kind)) {
            return "an argument is missing" + usage;
        }
        arguments.push_back(argument);
    }
    if (words.size() > operation.kinds.size()) {
        return Quoted(words[operation.kinds.size()].text) + " is one word too many" + usage;
    }
    return arguments;
}

std::vector<std::string> WordsFor(ArgumentKind kind) {
    std::vector<std::string> words;
    for (const NamedValue& value : ValuesOf(kind)) {
        words.emplace_back(value.name);
    }
    if (kind == ArgumentKind::kNull) {
        words.emplace_back(kNull);
    }
    return words;
}

} // namespace dcfctl
