// Where the output goes: full disks, closed streams, readers that leave early, and what the library prints by itself.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "Card.h"
#include "Cli.h"

using clitest::Dcfctl;
using clitest::ErrorLine;
using clitest::OnCard;
using clitest::Options;
using clitest::Outcome;
using clitest::Words;
using dcftest::Card;

namespace {

constexpr char kFull[] = "the output cannot be written (No space left on device) and is not complete; look at where it "
                         "goes";

TEST(Output, OnAFullDiskIsAnError) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    Options options;
    options.outFile = "/dev/full";
    for (const Words& verb : {Words{"ls"}, {"ls", "--json"}, {"ls", "-0"}, {"count"}, {"show", "0"}, {"--help"}}) {
        const Outcome run = OnCard(card.Root(), verb, options);
        EXPECT_EQ(run.exit, clitest::kIncomplete) << verb[0];
        EXPECT_EQ(run.err, ErrorLine(kFull));
    }
    options.input = "Listup\nGetCount\nSetProtectAll true\n";
    const Outcome shell = OnCard(card.Root(), {"shell"}, options);
    EXPECT_EQ(shell.exit, clitest::kIncomplete);
    EXPECT_EQ(shell.err, ErrorLine(kFull));
    EXPECT_EQ(card.Mode("100ABCDE", "KVR_0001.JPG"), 0644U) << "the shell does not go on where nobody sees it";
}

TEST(Output, ThatIsClosedIsAnErrorAndGoesIntoNoOtherFile) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    Card place;
    Options options;
    options.closed = {1};
    options.environment["DCF_LOG"] = place.Root() + "/log"; // a file that is opened while 1 is free
    const Outcome run = OnCard(card.Root(), {"ls"}, options);
    EXPECT_EQ(run.exit, clitest::kIncomplete);
    EXPECT_EQ(
        run.err,
        ErrorLine("the output cannot be written (Bad file descriptor) and is not complete; look at where it goes"));
    EXPECT_EQ(clitest::ReadFile(place.Root() + "/log").find("KVR_0001.JPG\n"), std::string::npos);
}

TEST(Output, IsWholeWithEverythingElseClosed) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    Options options;
    options.closed = {0, 2};
    EXPECT_EQ(OnCard(card.Root(), {"count"}, options).out, "1\n");
    EXPECT_EQ(OnCard(card.Root() + "/no", {"count"}, options).exit, clitest::kCardUnreadable);
}

TEST(Output, WhoseReaderLeavesEarlyIsCutInSilence) {
    Card card;
    card.Fill(1, 5000);
    for (const char* arguments : {"ls", "ls --json", "ls -0"}) {
        const std::string command = std::string(DCFCTL_PROGRAM) + " --card " + card.Root() + " " + arguments + " 2>" +
                                    card.Root() + "/err | head -c 20 >/dev/null; exit ${PIPESTATUS[0]}";
        const int status = std::system(("bash -c '" + command + "'").c_str());
        EXPECT_EQ(WEXITSTATUS(status), clitest::kIncomplete) << arguments;
        EXPECT_EQ(clitest::ReadFile(card.Root() + "/err"), "");
    }
}

TEST(Output, HoldsNothingOfTheLibrarysOwn) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    std::ofstream(card.Path("101PHOTO")).flush(); // a file where the next folder belongs
    const Outcome run = clitest::Shell(card.Root(), {"Listup", "GetNewFileName JPG"}, {"--json"});
    for (const std::string& line : clitest::Lines(run.out)) {
        EXPECT_EQ(line.front(), '{') << line;
    }
    EXPECT_EQ(run.out.find("make directory fail"), std::string::npos);
}

TEST(Log, GoesWhereTheEnvironmentSays) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    Options options;
    options.environment["DCF_LOG"] = "stderr";
    const Outcome run = OnCard(card.Root(), {"count"}, options);
    EXPECT_EQ(run.out, "1\n");
    EXPECT_NE(run.err.find("CSFileList: Listup("), std::string::npos);
    EXPECT_EQ(OnCard(card.Root(), {"count"}).err, "");
}

} // namespace
