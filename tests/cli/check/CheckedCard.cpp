// Cards for tests of check and explain; see the header.
#include "CheckedCard.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>

namespace clitest {

namespace fs = std::filesystem;

CheckedCard::CheckedCard() {
    fs::create_directories(Dcim());
}

CheckedCard::CheckedCard(std::size_t rootLength) : Card(rootLength) {
    fs::create_directories(Dcim());
}

CheckedCard& CheckedCard::PutContent(const std::string& folder, const std::string& name, const std::string& content) {
    dcftest::FileTraits traits;
    traits.content = content;
    AddFile(folder, name, traits);
    return *this;
}

CheckedCard& CheckedCard::Put(const std::string& folder, const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        PutContent(folder, name, ContentFor(name));
    }
    return *this;
}

CheckedCard& CheckedCard::Make(const std::vector<std::string>& folders) {
    for (const std::string& folder : folders) {
        AddDir(folder);
    }
    return *this;
}

CheckedCard& CheckedCard::PutIntoDcim(const std::string& name) {
    std::ofstream(Dcim() + "/" + name).put('x');
    return *this;
}

Json CheckedCard::Check(const Words& more, const Options& options) const {
    Words words = {"check", "--json"};
    words.insert(words.end(), more.begin(), more.end());
    const Outcome outcome = OnCard(Root(), words, options);
    Json json = Json::parse(outcome.out, nullptr, false);
    EXPECT_FALSE(json.is_discarded()) << outcome.Describe();
    EXPECT_TRUE(json.value("error", Json(1)).is_null()) << outcome.Describe();
    const Json figures = json.value("figures", Json::object());
    const auto figure = [&](const char* name) { return figures.value(name, 1000000); };
    EXPECT_EQ(figure("entries"), figure("listed") + figure("companions") + figure("left_out")) << outcome.Describe();
    const bool clean = Codes(json).empty();
    EXPECT_EQ(clean ? kSuccess : kFindings, outcome.exit) << outcome.Describe();
    return json;
}

Json CheckedCard::Explain(const std::string& what, const Words& more) const {
    Words words = {"explain", "--json"};
    words.insert(words.end(), more.begin(), more.end());
    words.push_back("--");
    words.push_back(what);
    const Outcome outcome = OnCard(Root(), words);
    Json json = Json::parse(outcome.out, nullptr, false);
    EXPECT_FALSE(json.is_discarded()) << outcome.Describe();
    EXPECT_EQ(outcome.exit, json["error"].is_null() ? (json["warnings"].empty() ? kSuccess : kFindings) : kRefused)
        << outcome.Describe();
    return json;
}

std::string ContentFor(const std::string& name) {
    std::string extension = name.size() < 3 ? "" : name.substr(name.size() - 3);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    if (extension == "JPG" || extension == "MPO") {
        return "\xff\xd8\xff\xe1 picture";
    }
    if (extension == "SRW") {
        return std::string("II*\0 raw picture", 16);
    }
    if (extension == "MP4") {
        return std::string("\0\0\0\x18"
                           "ftypmp42 movie",
                           18);
    }
    return extension == "AVI" ? std::string("RIFF\1\0\0\0AVI movie", 17) : "something else";
}

Words Of(const Json& check, const std::string& code) {
    const std::string above = check["card"].get<std::string>() + "/DCIM/";
    Words found;
    for (const Json& finding : check["findings"]) {
        if (finding["code"] == code) {
            const std::string path = finding["path"].get<std::string>();
            found.push_back((path.compare(0, above.size(), above) == 0 ? path.substr(above.size()) : path) + ": " +
                            finding["message"].get<std::string>());
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

Words Codes(const Json& check) {
    std::set<std::string> codes;
    for (const Json& finding : check.value("findings", Json::array())) {
        if (finding["severity"] != "note") {
            codes.insert(finding["code"].get<std::string>());
        }
    }
    return {codes.begin(), codes.end()};
}

std::string Figures(const Json& check) {
    const Json& figures = check["figures"];
    return figures["entries"].dump() + " " + figures["listed"].dump() + " " + figures["companions"].dump() + " " +
           figures["left_out"].dump();
}

} // namespace clitest
