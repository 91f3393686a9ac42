// The command line: what it takes, and the one line in which it says what it does not understand.
#include <gtest/gtest.h>

#include <string>

#include "Card.h"
#include "Cli.h"

using clitest::Dcfctl;
using clitest::ErrorLine;
using clitest::OnCard;
using clitest::Outcome;
using clitest::Words;
using dcftest::Card;

namespace {

constexpr char kVerbs[] =
    "use one of ls, count, show, shell, sample, browse, rm, protect, unprotect, toggle, latest-name, "
    "capacity, next-name, add, renumber, series, check, explain, sheet";

TEST(CommandLine, ThatIsNotUnderstoodGivesOneLineAndChangesNothing) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    const auto before = clitest::Snapshot(card.Root());
    const struct {
        Words arguments;
        std::string error;
    } rows[] = {
        {{"ls", "--unknown"}, "The following argument was not expected: --unknown"},
        {{"--unknown", "ls"}, "The following argument was not expected: --unknown"},
        {{"ls", "extra"}, "The following argument was not expected: extra"},
        {{"ls", "count"}, "The following argument was not expected: count"},
        {{"count", "--paths"}, "The following argument was not expected: --paths"},
        {{"ls", "--type", "GIF"}, "--type: 'GIF' is no type; use JPG, SRW, MPO, MP4 or AVI"},
        {{"ls", "--type", ""}, "--type: '' is no type; use JPG, SRW, MPO, MP4 or AVI"},
        {{"count", "--type", "\x1b[2J"}, "--type: '\\x1b[2J' is no type; use JPG, SRW, MPO, MP4 or AVI"},
        {{"ls", "--limit", "-1"}, "--limit: '-1' is no number of files; use 0 or more"},
        {{"ls", "--limit", "many"}, "--limit: 'many' is no number of files; use 0 or more"},
        {{"ls", "--limit", "1.5"}, "--limit: '1.5' is no number of files; use 0 or more"},
        {{"ls", "--limit", "99999999999999999999"},
         "--limit: '99999999999999999999' is no number of files; use 0 or more"},
        {{"ls", "--json", "--paths"}, "--json excludes --paths"},
        {{"ls", "-0", "--json"}, "--json excludes --null"},
        {{"show"}, "file is required"},
        {{"sample"}, "folder is required"},
        {{"ls", "--limit"}, "--limit: 1 required N missing"},
    };
    for (const auto& row : rows) {
        const Outcome run = OnCard(card.Root(), row.arguments);
        EXPECT_EQ(run.exit, clitest::kUsage) << row.error;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, ErrorLine(row.error + "; see dcfctl --help"));
    }
    EXPECT_EQ(clitest::Snapshot(card.Root()), before);
}

TEST(CommandLine, NamesTheVerbsWhenThereIsNoneThatItKnows) {
    const struct {
        Words arguments;
        std::string error;
    } rows[] = {
        {{}, "no verb is given"},
        {{"--card", "/tmp"}, "no verb is given"},
        {{"list"}, "there is no verb 'list'"},
        {{"LS", "--json"}, "there is no verb 'LS'"},
        {{""}, "there is no verb ''"},
        {{"\n"}, "there is no verb '\\n'"},
    };
    for (const auto& row : rows) {
        const Outcome run = Dcfctl(row.arguments);
        EXPECT_EQ(run.exit, clitest::kUsage) << row.error;
        EXPECT_EQ(run.err, ErrorLine(row.error + "; " + kVerbs + "; see dcfctl --help"));
    }
}

TEST(CommandLine, RefusesAnEmptyNameOfAFolder) {
    for (const Words& arguments : {Words{"--card", "", "ls"}, {"sample", ""}}) {
        const Outcome run = Dcfctl(arguments);
        EXPECT_EQ(run.exit, clitest::kUsage);
        EXPECT_EQ(run.err, ErrorLine("the folder's name is empty; name the card's folder; see dcfctl --help"));
    }
}

TEST(CommandLine, ShowsItsVersion) {
    const Outcome run = Dcfctl({"--version"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    EXPECT_EQ(run.out, "dcfctl " DCFCTL_PROJECT_VERSION "\n");
    EXPECT_EQ(run.err, "");
}

TEST(CommandLine, ShowsItsHelp) {
    for (const char* flag : {"-h", "--help"}) {
        const Outcome run = Dcfctl({flag});
        EXPECT_EQ(run.exit, clitest::kSuccess);
        EXPECT_EQ(run.err, "");
        for (const char* part : {"Usage: dcfctl [OPTIONS] [VERB]", "--card DIR (Env:DCF_CARD)", "Verbs:\n  ls ",
                                 "Exit codes:\n  0  Everything was done.\n"}) {
            EXPECT_NE(run.out.find(part), std::string::npos) << part << "\n" << run.out;
        }
        EXPECT_EQ(run.out.find("Subcommands"), std::string::npos) << "every verb has its group\n" << run.out;
    }
}

TEST(CommandLine, ShowsTheHelpOfAVerb) {
    const Outcome run = Dcfctl({"ls", "--help"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    for (const char* part : {"Usage: dcfctl ls [OPTIONS]", "--type TYPE", "--dir FOLDER", "--limit N", "--json",
                             "--no-camera", "--paths", "-0,--null"}) {
        EXPECT_NE(run.out.find(part), std::string::npos) << part << "\n" << run.out;
    }
}

/// The man page in words, without its macros.
std::string ManPage() {
    return clitest::ReadFile(DCFCTL_SOURCE_ROOT "/docs/dcfctl.1");
}

/// The rows "  CODE  MEANING" of the help.
Words ExitCodeRows() {
    const std::string help = Dcfctl({"--help"}).out;
    const std::string title = "Exit codes:\n";
    Words rows;
    for (const std::string& line : clitest::Lines(help.substr(help.find(title) + title.size()))) {
        if (line.size() > 5 && line.substr(0, 2) == "  ") {
            rows.push_back(line);
        }
    }
    return rows;
}

TEST(ExitCodes, StandInTheManPageAsInTheHelp) {
    const std::string page = ManPage();
    const Words rows = ExitCodeRows();
    EXPECT_EQ(rows.size(), 7U);
    for (const std::string& row : rows) {
        EXPECT_NE(page.find(".It " + row.substr(2, 1) + "\n" + row.substr(5) + "\n"), std::string::npos) << row;
    }
}

TEST(ExitCodes, StandInTheDocumentForProgramsAsInTheHelp) {
    const std::string page = clitest::ReadFile(DCFCTL_SOURCE_ROOT "/docs/dcfctl.md");
    for (const std::string& row : ExitCodeRows()) {
        const std::size_t meaning = page.find(" | " + row.substr(5) + " |");
        ASSERT_NE(meaning, std::string::npos) << row;
        EXPECT_NE(page.rfind("| " + row.substr(2, 1) + " | ", meaning), std::string::npos) << row;
    }
}

TEST(ManPage, NamesEveryVerbAndOption) {
    const std::string page = ManPage();
    for (const char* verb : {"ls", "count", "show", "browse", "shell", "sample", "sheet"}) {
        EXPECT_NE(page.find(std::string(".Ss ") + verb + "\n"), std::string::npos) << verb;
        EXPECT_NE(page.find(std::string(".Cm ") + verb + "\n"), std::string::npos) << verb;
    }
    for (const char* option : {"card", "help", "version", "type", "dir", "limit", "no-camera", "json", "paths", "null",
                               "out", "thumbnails", "force"}) {
        EXPECT_NE(page.find(std::string("Fl -") + option), std::string::npos) << option;
    }
    for (const char* variable : {"DCF_CARD", "DCF_LOG", "DCF_PREFERENCES", "NO_COLOR"}) {
        EXPECT_NE(page.find(std::string(".It Ev ") + variable + "\n"), std::string::npos) << variable;
    }
}

} // namespace
