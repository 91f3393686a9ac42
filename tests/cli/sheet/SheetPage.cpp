// A sheet as a parser sees it; see the header.
#include "SheetPage.h"

#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>

#include <stdexcept>

namespace clitest {
namespace {

template <typename Pointer>
Pointer* Needed(Pointer* pointer, const std::string& what) {
    if (pointer == nullptr) {
        throw std::runtime_error(what);
    }
    return pointer;
}

const xmlChar* Xml(const std::string& text) {
    return reinterpret_cast<const xmlChar*>(text.c_str()); // the library's own type
}

std::string TextOf(const xmlNode* node) {
    const std::unique_ptr<xmlChar, decltype(xmlFree)> text(xmlNodeGetContent(node), xmlFree);
    return reinterpret_cast<const char*>(Needed(text.get(), "a node without a content")); // as above
}

} // namespace

SheetPage::SheetPage(const std::string& html)
    : m_document(xmlReadMemory(html.data(), static_cast<int>(html.size()), "sheet", nullptr,
                               XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_HUGE),
                 xmlFreeDoc) {
    if (m_document == nullptr) {
        const xmlError* error = xmlGetLastError();
        throw std::runtime_error(std::string("not well-formed: ") + (error == nullptr ? "?" : error->message));
    }
}

Words SheetPage::All(const std::string& xpath) const {
    const std::unique_ptr<xmlXPathContext, decltype(&xmlXPathFreeContext)> context(xmlXPathNewContext(m_document.get()),
                                                                                   xmlXPathFreeContext);
    (void)xmlXPathRegisterNs(Needed(context.get(), xpath), Xml("h"), Xml("http://www.w3.org/1999/xhtml")); // a new one
    const std::unique_ptr<xmlXPathObject, decltype(&xmlXPathFreeObject)> found(
        xmlXPathEvalExpression(Xml(xpath), context.get()), xmlXPathFreeObject);
    const xmlNodeSet* nodes = Needed(found.get(), "no XPath: " + xpath)->nodesetval;
    Words texts;
    for (int i = 0; nodes != nullptr && i < nodes->nodeNr; ++i) {
        texts.push_back(TextOf(nodes->nodeTab[i]));
    }
    return texts;
}

std::string SheetPage::One(const std::string& xpath) const {
    const Words texts = All(xpath);
    if (texts.size() != 1) {
        throw std::runtime_error(std::to_string(texts.size()) + " nodes for " + xpath);
    }
    return texts[0];
}

std::string SheetPage::Thumbnail(int position) const {
    const Words sources = All(File(position) + "//h:img/@src");
    const std::string prefix = "data:image/jpeg;base64,";
    if (sources.empty()) {
        return {};
    }
    if (sources.size() != 1 || sources[0].rfind(prefix, 0) != 0) {
        throw std::runtime_error("not one picture in the sheet itself: " + sources[0].substr(0, 80));
    }
    return FromBase64(sources[0].substr(prefix.size()));
}

std::string SheetPage::Alternative(int position) const {
    return One(File(position) + "//h:img/@alt|" + File(position) + "//*[@role='img']/@aria-label");
}

std::string SheetPage::Runs(const std::string& title, const std::string& kind) const {
    return One("//h:section[@id='numbers']/h:ul/h:li[h:h3='" + title + "']/h:p[@class='runs " + kind + "']");
}

SheetPage SheetOf(const std::string& root, const Words& options) {
    Words words = {"sheet", "--out", "-"};
    words.insert(words.end(), options.begin(), options.end());
    const Outcome run = OnCard(root, words);
    if (run.exit != kSuccess && run.exit != kPartial) {
        throw std::runtime_error(run.Describe());
    }
    return SheetPage(run.out);
}

} // namespace clitest
