// HTML; see the header.
#include "Html.h"

#include "Text.h"

namespace dcfctl {
namespace {

/// U+FFFE and U+FFFF are valid UTF-8 and stand in no document; nor does a control character.
bool IsForbidden(std::string_view front) {
    const auto byte = static_cast<unsigned char>(front[0]);
    const std::string_view three = front.substr(0, 3);
    return (byte < 0x20 && byte != '\n' && byte != '\t') || byte == 0x7f || three == "\xef\xbf\xbe" ||
           three == "\xef\xbf\xbf";
}

} // namespace

std::string HtmlText(std::string_view text) {
    const std::string valid = Utf8Replaced(text);
    std::string html;
    html.reserve(valid.size());
    for (std::size_t i = 0; i < valid.size(); ++i) {
        const char c = valid[i];
        switch (c) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        case '\'':
            html += "&#39;";
            break;
        default:
            if (IsForbidden(std::string_view(valid).substr(i))) {
                html += "\xef\xbf\xbd";
                i += static_cast<unsigned char>(c) == 0xef ? 2 : 0;
            } else {
                html += c;
            }
        }
    }
    return html;
}

std::string HtmlName(std::string_view bytes) {
    return HtmlText(Escaped(bytes));
}

} // namespace dcfctl
