// Escaping, UTF-8, Base64 and time; see the header.
#include "Text.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <ctime>

namespace dcfctl {
namespace {

struct Decoded {
    char32_t codePoint;
    std::size_t length; // 0 for a byte that is not part of valid UTF-8
};

/// The code point at the front. Overlong forms, surrogates and numbers beyond U+10FFFF are not valid.
Decoded DecodeFront(std::string_view bytes) {
    const auto at = [bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned char lead = at(0);
    if (lead < 0x80) {
        return {lead, 1};
    }
    const std::size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
    if (lead < 0xc2 || lead > 0xf4 || bytes.size() < length) {
        return {0, 0};
    }
    char32_t value = lead & (0x7fU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((at(i) & 0xc0U) != 0x80) {
            return {0, 0};
        }
        value = (value << 6U) | (at(i) & 0x3fU);
    }
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = value >= 0xd800 && value <= 0xdfff;
    if (value < kSmallest[length] || surrogate || value > 0x10ffff) {
        return {0, 0};
    }
    return {value, length};
}

/// Characters that move the cursor, change the direction of the text or cannot be seen.
bool IsHarmful(char32_t c) {
    const auto within = [c](char32_t first, char32_t last) { return c >= first && c <= last; };
    return c < 0x20 || within(0x7f, 0x9f) || c == 0xad || c == 0x61c || within(0x200b, 0x200f) ||
           within(0x2028, 0x202e) || within(0x2060, 0x206f) || c == 0xfeff || within(0xfff0, 0xfffb) ||
           within(0xe0000, 0xe0fff);
}

std::string HexByte(unsigned char byte) {
    char text[5];
    std::snprintf(text, sizeof text, "\\x%02x", byte);
    return text;
}

void AppendEscaped(std::string& out, char32_t c) {
    if (c == '\n') {
        out += "\\n";
    } else if (c == '\t') {
        out += "\\t";
    } else if (c < 0x80) {
        out += HexByte(static_cast<unsigned char>(c));
    } else {
        char text[16];
        std::snprintf(text, sizeof text, "\\u{%x}", static_cast<unsigned>(c));
        out += text;
    }
}

void AppendUtf8(std::string& out, char32_t c) {
    const auto byte = [&out](char32_t value) { out += static_cast<char>(value); };
    if (c < 0x80) {
        byte(c);
    } else if (c < 0x800) {
        byte(0xc0 | (c >> 6U));
        byte(0x80 | (c & 0x3fU));
    } else if (c < 0x10000) {
        byte(0xe0 | (c >> 12U));
        byte(0x80 | ((c >> 6U) & 0x3fU));
        byte(0x80 | (c & 0x3fU));
    } else {
        byte(0xf0 | (c >> 18U));
        byte(0x80 | ((c >> 12U) & 0x3fU));
        byte(0x80 | ((c >> 6U) & 0x3fU));
        byte(0x80 | (c & 0x3fU));
    }
}

std::optional<unsigned> Hex(std::string_view digits) {
    unsigned value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    const bool whole = error == std::errc() && end == digits.data() + digits.size();
    return whole ? std::optional<unsigned>(value) : std::nullopt;
}

/// Turns back one escape whose backslash is gone. @return the number of characters read, 0 for no escape.
std::size_t UnescapeFront(std::string_view text, std::string& out) {
    if (text.empty()) {
        return 0;
    }
    constexpr std::string_view kPlain = "\\\"' #";
    if (kPlain.find(text[0]) != std::string_view::npos) {
        out += text[0];
        return 1;
    }
    if (text[0] == 'n' || text[0] == 't') {
        out += text[0] == 'n' ? '\n' : '\t';
        return 1;
    }
    if (text[0] == 'x' && text.size() >= 3) {
        const auto value = Hex(text.substr(1, 2));
        out += static_cast<char>(value.value_or(0));
        return value.has_value() ? 3 : 0;
    }
    const std::size_t close = text.find('}');
    if (text.substr(0, 2) != "u{" || close == std::string_view::npos) {
        return 0;
    }
    const auto value = Hex(text.substr(2, close - 2));
    if (!value.has_value() || *value > 0x10ffff) {
        return 0;
    }
    AppendUtf8(out, *value);
    return close + 1;
}

} // namespace

bool IsUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        const Decoded front = DecodeFront(bytes);
        if (front.length == 0) {
            return false;
        }
        bytes.remove_prefix(front.length);
    }
    return true;
}

std::string Escaped(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    while (!bytes.empty()) {
        const Decoded front = DecodeFront(bytes);
        const std::size_t length = std::max<std::size_t>(front.length, 1);
        if (front.length == 0) {
            out += HexByte(static_cast<unsigned char>(bytes[0]));
        } else if (front.codePoint == '\\') {
            out += "\\\\";
        } else if (IsHarmful(front.codePoint)) {
            AppendEscaped(out, front.codePoint);
        } else {
            out += bytes.substr(0, length);
        }
        bytes.remove_prefix(length);
    }
    return out;
}

std::string Quoted(std::string_view bytes) {
    return "'" + Escaped(bytes) + "'";
}

std::string AsciiOnly(std::string_view escaped) {
    std::string out;
    for (const char c : escaped) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte > 0x7e) {
            out += HexByte(byte);
        } else {
            out += c;
        }
    }
    return out;
}

std::optional<std::string> Unescaped(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        if (text[0] != '\\') {
            out += text[0];
            text.remove_prefix(1);
            continue;
        }
        const std::size_t length = UnescapeFront(text.substr(1), out);
        if (length == 0) {
            return std::nullopt;
        }
        text.remove_prefix(1 + length);
    }
    return out;
}

std::string Utf8Replaced(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    while (!bytes.empty()) {
        const Decoded front = DecodeFront(bytes);
        if (front.length == 0) {
            AppendUtf8(out, 0xfffd);
            bytes.remove_prefix(1);
        } else {
            out += bytes.substr(0, front.length);
            bytes.remove_prefix(front.length);
        }
    }
    return out;
}

std::string Base64(std::string_view bytes) {
    constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        unsigned group = 0;
        for (std::size_t j = 0; j < 3; ++j) {
            group = (group << 8U) | (j < count ? static_cast<unsigned char>(bytes[i + j]) : 0U);
        }
        for (std::size_t j = 0; j < 4; ++j) {
            out += j <= count ? kAlphabet[(group >> (18U - 6U * j)) & 0x3fU] : '=';
        }
    }
    return out;
}

std::string UtcTime(std::uint32_t seconds) {
    if (seconds == 0) {
        return {};
    }
    const std::time_t time = seconds;
    std::tm parts = {};
    char text[32];
    const bool written =
        gmtime_r(&time, &parts) != nullptr && std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts) > 0;
    return written ? text : "";
}

std::optional<long long> WholeNumber(std::string_view text) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
        text.remove_prefix(1);
    }
    long long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = error == std::errc() && end == text.data() + text.size() && !text.empty();
    return whole ? std::optional<long long>(value) : std::nullopt;
}

char UpperCase(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

bool EqualNoCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return UpperCase(x) == UpperCase(y); });
}

} // namespace dcfctl
