// Command lines of the changing verbs that cannot be meant: told in one line, with nothing done.
#include <gtest/gtest.h>

#include "ChangeCard.h"

using clitest::ChangeCard;
using clitest::ErrorOf;
using clitest::Outcome;
using clitest::Words;

namespace {

TEST(ChangeUsage, TellsWhatIsWrongAndDoesNothing) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    const std::vector<std::pair<Words, std::string>> rows = {
        {{"rm"}, "rm: no file is named; give paths, --pos N or --all"},
        {{"rm", "--yes"}, "rm: no file is named; give paths, --pos N or --all"},
        {{"protect"}, "protect: no file is named; give paths, --pos N or --all"},
        {{"unprotect"}, "unprotect: no file is named; give paths, --pos N or --all"},
        {{"toggle"}, "toggle: no file is named; give paths, --pos N or --all"},
        {{"rm", "--all", "--pos", "0"}, "--pos excludes --all"},
        {{"rm", "a.jpg", "--all"}, "file excludes --all"},
        {{"rm", "a.jpg", "--protected-too"}, "--protected-too requires --all"},
        {{"add"}, "file is required"},
        {{"next-name", "--type", "GIF"}, "--type: 'GIF' is no type; use JPG, SRW, MPO, MP4 or AVI"},
        {{"next-name", "--colour", "red"}, "--colour: red not in {standard,optional}"},
        {{"next-name", "--prefix", "ABCD", "--date-names"}, "--prefix excludes --date-names"},
        {{"next-name", "what"}, "The following argument was not expected: what"},
        {{"renumber", "--yes"}, "The following argument was not expected: --yes"},
        {{"series", "now"}, "series: 'now' is unknown; use show, set N or reset"},
        {{"series", "set"}, "series: the value is missing; it is set N"},
        {{"series", "reset", "5"}, "series: '5' is one word too many"},
        {{"series", "set", "5", "6"}, "series: '6' is one word too many"},
    };
    const Words before = card.Before();
    for (const auto& [words, expected] : rows) {
        const Outcome outcome = card.Run(words);
        EXPECT_EQ(clitest::kUsage, outcome.exit) << outcome.Describe();
        EXPECT_EQ(expected + "; see dcfctl --help", ErrorOf(outcome));
        EXPECT_EQ("", outcome.out);
        EXPECT_EQ(before, card.Before());
    }
}

TEST(ChangeUsage, IsInTheHelpOfEveryVerb) {
    const std::vector<std::pair<std::string, Words>> rows = {
        {"rm", {"--pos", "--all", "--protected-too", "--dry-run", "--yes", "--json", "--no-camera"}},
        {"protect", {"--pos", "--all", "--json"}},
        {"latest-name", {"--type", "--json"}},
        {"capacity", {"--series", "--date-folders", "--json"}},
        {"next-name",
         {"--type", "--prefix", "--date-names", "--date-folders", "--colour", "--3d", "--series", "--dry-run"}},
        {"add", {"--prefix", "--series", "--dry-run", "--json"}},
        {"renumber", {"--dry-run", "--force", "--json"}},
        {"series", {"show", "set N", "reset"}},
    };
    for (const auto& [verb, words] : rows) {
        const Outcome outcome = clitest::Dcfctl({verb, "--help"});
        EXPECT_EQ(clitest::kSuccess, outcome.exit);
        for (const std::string& word : words) {
            EXPECT_NE(std::string::npos, outcome.out.find(word)) << verb << " " << word << outcome.out;
        }
        EXPECT_NE(std::string::npos, clitest::Dcfctl({"--help"}).out.find("  " + verb + " "));
    }
}

} // namespace
