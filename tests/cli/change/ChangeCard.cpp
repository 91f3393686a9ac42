// Cards for tests of the changing verbs; see the header.
#include "ChangeCard.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace clitest {

namespace fs = std::filesystem;

ChangeCard::ChangeCard() {
    fs::create_directories(Dcim());
}

std::string ChangeCard::ContentOf(const std::string& folder, const std::string& name) {
    return "this is " + name + " of " + folder + "\n";
}

ChangeCard& ChangeCard::Put(const std::string& folder, const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        dcftest::FileTraits traits;
        traits.content = ContentOf(folder, name);
        traits.mtime = 1714557600;
        AddFile(folder, name, traits);
    }
    return *this;
}

ChangeCard& ChangeCard::PutProtected(const std::string& folder, const std::vector<std::string>& names) {
    Put(folder, names);
    for (const std::string& name : names) {
        SetMode(folder, name, 0444);
    }
    return *this;
}

bool ChangeCard::Holds(const std::string& folder, const std::string& name) const {
    struct stat info = {};
    return lstat(Path(folder, name).c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
           ReadFile(Path(folder, name)) == ContentOf(folder, name);
}

Options ChangeCard::Environment() const {
    Options options;
    options.environment["DCF_PREFERENCES"] = Store();
    return options;
}

Outcome ChangeCard::Run(const Words& words) const {
    return OnCard(Root(), words, Environment());
}

Outcome ChangeCard::Run(const Words& words, Options options) const {
    options.environment.emplace("DCF_PREFERENCES", Store());
    return OnCard(Root(), words, options);
}

Json ChangeCard::RunJson(const Words& words) const {
    Words all = words;
    all.emplace_back("--json");
    const Outcome outcome = Run(all);
    Json json = Json::parse(outcome.out, nullptr, false);
    EXPECT_FALSE(json.is_discarded()) << outcome.Describe();
    EXPECT_EQ(1U, Lines(outcome.out).size()) << outcome.Describe();
    return json;
}

long ChangeCard::Series() const {
    return RunJson({"series"})["value"].get<long>();
}

void ChangeCard::SetSeries(long value) const {
    const Outcome outcome = Run({"series", "set", std::to_string(value)});
    EXPECT_EQ(kSuccess, outcome.exit) << outcome.Describe();
}

Words ChangeCard::Before() const {
    Words all = Snapshot(Root());
    all.push_back(fs::exists(Store()) ? ReadFile(Store()) : "no store");
    return all;
}

std::string ChangeCard::Beside() const {
    return m_beside.Root();
}

std::string ChangeCard::Source(const std::string& name, const std::string& content, long mtime) const {
    const fs::path path = Beside() + "/" + name;
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
    const timespec times[] = {{mtime, 0}, {mtime, 0}};
    EXPECT_EQ(0, utimensat(AT_FDCWD, path.c_str(), times, 0));
    return path;
}

std::string ErrorOf(const Outcome& outcome) {
    const std::string before = "dcfctl: error: ";
    std::string found;
    for (const std::string& line : Lines(outcome.err)) {
        if (line.rfind(before, 0) == 0) {
            EXPECT_TRUE(found.empty()) << outcome.Describe();
            found = line.substr(before.size());
        }
    }
    return found;
}

std::string RefusalOf(const ChangeCard& card, const Words& words, int code) {
    const Words before = card.Before();
    const Outcome outcome = card.Run(words);
    EXPECT_EQ(code, outcome.exit) << outcome.Describe();
    EXPECT_EQ("", outcome.out);
    EXPECT_EQ(before, card.Before());
    return ErrorOf(outcome);
}

Words PathsIn(const Json& array) {
    Words paths;
    for (const Json& entry : array) {
        paths.push_back(entry["path"].get<std::string>());
    }
    return paths;
}

Options WithShim(Options options, const std::string& what) {
    options.environment["LD_PRELOAD"] = CLI_CHANGE_SHIM;
    options.environment["CLI_CHANGE_SHIM"] = what;
    const char* sanitizer = std::getenv("ASAN_OPTIONS");
    options.environment["ASAN_OPTIONS"] =
        (sanitizer != nullptr ? std::string(sanitizer) + ":" : std::string()) + "verify_asan_link_order=0";
    return options;
}

} // namespace clitest
