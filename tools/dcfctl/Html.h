// Text as HTML, in the form that is XML as well, so that any parser can read it. Names and metadata are bytes that
// anybody may have chosen: nothing of them goes into a document but through here. Pure functions.
#ifndef DCFCTL_HTML_H
#define DCFCTL_HTML_H

#include <string>
#include <string_view>

namespace dcfctl {

/// A text of this program's own, or one that is escaped already (see Escaped), as content or as the value of an
/// attribute in double quotes.
[[nodiscard]] std::string HtmlText(std::string_view text);

/// A name from a card, escaped first.
[[nodiscard]] std::string HtmlName(std::string_view bytes);

} // namespace dcfctl

#endif
