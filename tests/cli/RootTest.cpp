// Where the card lies: what the tool says when there is none, when it cannot be read, and when its path does harm.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "Card.h"
#include "Cli.h"
#include "PrivateMount.h"

using clitest::Dcfctl;
using clitest::ErrorLine;
using clitest::OnCard;
using clitest::Options;
using clitest::Outcome;
using clitest::WarningLine;
using clitest::Words;
using dcftest::Card;

namespace {

constexpr unsigned kNobody = 65534;

std::string CutCure(const std::string& root) {
    return "go there with cd '" + root + "' and use --card .";
}

/// A folder of the test's own with a name of its choice.
class NamedCard {
public:
    explicit NamedCard(const std::string& name) {
        char base[] = "/tmp/dcfXXXXXX";
        m_base = mkdtemp(base);
        m_root = m_base + "/" + name;
        std::filesystem::create_directories(m_root + "/DCIM");
    }
    NamedCard(const NamedCard&) = delete;
    NamedCard& operator=(const NamedCard&) = delete;
    ~NamedCard() {
        std::filesystem::remove_all(m_base);
    }
    [[nodiscard]] const std::string& Root() const {
        return m_root;
    }
    void AddFile(const std::string& folder, const std::string& name) const {
        std::filesystem::create_directories(m_root + "/DCIM/" + folder);
        std::ofstream(m_root + "/DCIM/" + folder + "/" + name).flush();
    }

private:
    std::string m_base;
    std::string m_root;
};

TEST(Root, MustBeThere) {
    Card card;
    for (const char* verb : {"ls", "count", "shell"}) {
        const Outcome run = OnCard(card.Root() + "/no", {verb});
        EXPECT_EQ(run.exit, clitest::kCardUnreadable);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, ErrorLine("there is no card at '" + card.Root() +
                                     "/no'; mount it there, or name its folder with --card DIR"));
    }
}

TEST(Root, MustBeAFolder) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    const std::string file = card.Path("100ABCDE", "KVR_0001.JPG");
    for (const auto& [path, kind] : {std::pair<std::string, std::string>{file, "a file"}, {"/dev/null", "a device"}}) {
        const Outcome run = OnCard(path, {"ls"});
        EXPECT_EQ(run.exit, clitest::kCardUnreadable);
        EXPECT_EQ(run.err, ErrorLine("'" + path + "' is " + kind +
                                     ", not a card; name the folder at which the card is mounted"));
    }
    EXPECT_EQ(
        OnCard(file + "/below", {"ls"}).err,
        ErrorLine("there is no card at '" + file + "/below'; mount it there, or name its folder with --card DIR"));
}

TEST(Root, WithoutDcimIsLeftAsItIs) {
    Card card;
    const auto before = clitest::Snapshot(card.Root());
    for (const Words& verb : {Words{"ls"}, {"ls", "--json"}, {"count"}, {"show", "0"}}) {
        const Outcome run = OnCard(card.Root(), verb);
        EXPECT_EQ(run.exit, clitest::kCardUnreadable);
        EXPECT_EQ(run.err,
                  ErrorLine("there is no folder 'DCIM' on the card at '" + card.Root() +
                            "'; is this the card's folder? 'dcfctl sample DIR' makes a card to try things on"));
    }
    EXPECT_EQ(clitest::Snapshot(card.Root()), before);
}

TEST(Root, GivesAHintWhereTheFolderIsNearlyRight) {
    Card card;
    card.AddDir("100ABCDE");
    EXPECT_EQ(OnCard(card.Dcim(), {"ls"}).err, ErrorLine("there is no folder 'DCIM' on the card at '" + card.Dcim() +
                                                         "'; name the folder above it with --card"));
    Card small;
    std::filesystem::create_directory(small.Root() + "/dcim");
    EXPECT_EQ(OnCard(small.Root(), {"ls"}).err, ErrorLine("there is no folder 'DCIM' on the card at '" + small.Root() +
                                                          "'; there is a 'dcim' in small letters: rename it to DCIM"));
}

TEST(Root, NeedsADcimThatIsAFolder) {
    Card card;
    std::ofstream(card.Dcim()).flush();
    EXPECT_EQ(OnCard(card.Root(), {"ls"}).err,
              ErrorLine("'" + card.Dcim() + "' is not a folder; move it away, or name the right card with --card DIR"));
    std::filesystem::remove(card.Dcim());
    std::filesystem::create_symlink(card.Root() + "/nothing", card.Dcim());
    const Outcome run = OnCard(card.Root(), {"ls"});
    EXPECT_EQ(run.exit, clitest::kCardUnreadable);
    EXPECT_EQ(run.err,
              ErrorLine("'" + card.Dcim() +
                        "' is a link that leads nowhere; move it away, or name the right card with --card DIR"));
}

TEST(Root, MayBeReachedThroughALink) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    NamedCard place("x");
    const std::string link = place.Root() + "/link";
    std::filesystem::create_symlink(card.Root(), link);
    EXPECT_EQ(OnCard(link, {"ls", "--paths"}).out, link + "/DCIM/100ABCDE/KVR_0001.JPG\n");
}

TEST(Root, MayEndInSlashesAndBeRelative) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    EXPECT_EQ(OnCard(card.Root() + "///", {"ls", "--paths"}).out, card.Path("100ABCDE", "KVR_0001.JPG") + "\n");
    Options options;
    options.folder = card.Root();
    for (const char* root : {".", "./"}) {
        EXPECT_EQ(OnCard(root, {"ls", "--paths"}, options).out, "./DCIM/100ABCDE/KVR_0001.JPG\n");
    }
}

TEST(Root, ComesFromTheEnvironmentUnlessItIsGiven) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    Options options;
    options.environment["DCF_CARD"] = card.Root();
    EXPECT_EQ(Dcfctl({"count"}, options).out, "1\n");
    Card other;
    other.AddFiles("100ABCDE", {"KVR_0001.JPG", "KVR_0002.JPG"});
    EXPECT_EQ(OnCard(other.Root(), {"count"}, options).out, "2\n");
    EXPECT_EQ(Dcfctl({"count", "--card", other.Root()}, options).out, "2\n") << "behind the verb";
}

TEST(Root, IsTheDefaultOneWithoutAnything) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    clitest::PrepareToRun();
    const auto ending = dcftest::RunWithDefaultRoot(card.Root(), [] {
        Options empty;
        empty.environment["DCF_CARD"] = "";
        for (const Outcome& run : {Dcfctl({"ls", "--paths"}), Dcfctl({"ls", "--paths"}, empty)}) {
            EXPECT_EQ(run.out, "/mnt/mmc/DCIM/100ABCDE/KVR_0001.JPG\n") << run.Describe();
        }
    });
    if (ending.refused) {
        GTEST_SKIP() << "no private mounts here";
    }
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
}

TEST(Root, OfMoreThan97CharactersIsRefused) {
    Card card(98);
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    for (const char* verb : {"ls", "shell"}) {
        const Outcome run = OnCard(card.Root(), {verb});
        EXPECT_EQ(run.exit, clitest::kRefused);
        EXPECT_EQ(run.err, ErrorLine("the path of the card has 98 characters, 97 are the most that the file list "
                                     "takes; " +
                                     CutCure(card.Root())));
    }
    EXPECT_NE(OnCard(std::string(5000, 'x'), {"ls"}).err.find("has 5000 characters, 97 are the most"),
              std::string::npos);
}

TEST(Root, IsRefusedFromTheLengthOnAtWhichPathsWouldBeCut) {
    for (const std::size_t length : {72U, 97U}) {
        Card card(length);
        card.AddFile("100ABCDE", "KVR_0001.JPG");
        const Outcome run = OnCard(card.Root(), {"ls"});
        EXPECT_EQ(run.exit, clitest::kRefused) << length;
        EXPECT_EQ(run.err, ErrorLine("the path of the card has " + std::to_string(length) +
                                     " characters, and with more than 71 the paths of its files would be cut at 98; " +
                                     CutCure(card.Root())));
    }
    Card longest(71);
    longest.AddFile("100ABCDE", "KVR_0001.JPG");
    const Outcome run = OnCard(longest.Root(), {"ls", "--paths"});
    EXPECT_EQ(run.out, longest.Path("100ABCDE", "KVR_0001.JPG") + "\n") << run.Describe();
}

TEST(Root, MayBeShorterByFiveWhereCameraIsListed) {
    Card cut(67);
    cut.AddFile("100ABCDE", "KVR_0001.JPG").AddFile("Camera", "20240501_101010.JPG");
    const Outcome refused = OnCard(cut.Root(), {"ls"});
    EXPECT_EQ(refused.exit, clitest::kRefused);
    EXPECT_EQ(refused.err, ErrorLine("the path of the card has 67 characters, and with more than 66 the paths of the "
                                     "files in 'Camera' would be cut at 98; leave 'Camera' out, or " +
                                     CutCure(cut.Root())));
    EXPECT_EQ(OnCard(cut.Root(), {"ls", "--no-camera"}).exit, clitest::kSuccess);
    Card longest(66);
    longest.AddFile("Camera", "20240501_101010.JPG");
    EXPECT_EQ(OnCard(longest.Root(), {"ls", "--paths"}).out, longest.Path("Camera", "20240501_101010.JPG") + "\n");
}

TEST(Root, IsReachedByTheCureThatIsNamed) {
    Card card(97);
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    Options options;
    options.folder = card.Root();
    EXPECT_EQ(OnCard(".", {"ls", "--paths"}, options).out, "./DCIM/100ABCDE/KVR_0001.JPG\n");
}

TEST(Root, WithCameraInItIsRefused) {
    NamedCard card("xCameray");
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    const Outcome run = OnCard(card.Root(), {"ls"});
    EXPECT_EQ(run.exit, clitest::kRefused);
    EXPECT_EQ(run.err, ErrorLine("the path of the card, '" + card.Root() +
                                 "', contains \"Camera\", which would make every folder a \"Camera\" folder; " +
                                 CutCure(card.Root())));
    NamedCard other("xcamera");
    EXPECT_EQ(OnCard(other.Root(), {"ls"}).exit, clitest::kSuccess) << "small letters do no harm";
}

TEST(Root, WithPhotoInItLetsOneFolderOfANumberIn) {
    NamedCard card("PHOTOS");
    card.AddFile("101ABCDE", "KVR_0001.JPG");
    EXPECT_EQ(OnCard(card.Root(), {"ls"}).err, "") << "harmless while no number is shared";
    card.AddFile("100BBBBB", "KVR_0001.JPG");
    card.AddFile("100AAAAA", "KVR_0002.JPG");
    const Outcome run = OnCard(card.Root(), {"ls", "--paths"});
    EXPECT_EQ(run.exit, clitest::kPartial);
    EXPECT_EQ(run.out, clitest::Joined(
                           {card.Root() + "/DCIM/101ABCDE/KVR_0001.JPG", card.Root() + "/DCIM/100BBBBB/KVR_0001.JPG"}));
    EXPECT_EQ(run.err, WarningLine("the folder '100AAAAA' is not listed: '100BBBBB' has the number 100 too, and the "
                                   "card's path '" +
                                   card.Root() +
                                   "' contains \"PHOTO\", which lets one folder of a number in; give one of them a "
                                   "free number, for example by renaming it"));
}

TEST(Root, ThatMayNotBeReadIsTold) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs root, to run the tool as another user";
    }
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG").AddFile("101ABCDE", "KVR_0001.JPG");
    chmod(card.Root().c_str(), 0755);
    Options nobody;
    nobody.user = kNobody;

    chmod(card.Path("100ABCDE").c_str(), 0);
    const Outcome part = OnCard(card.Root(), {"ls", "--paths"}, nobody);
    EXPECT_EQ(part.exit, clitest::kPartial);
    EXPECT_EQ(part.out, card.Path("101ABCDE", "KVR_0001.JPG") + "\n");
    EXPECT_EQ(part.err, WarningLine("the folder '100ABCDE' cannot be read (Permission denied), its files are missing "
                                    "from the list; check its permissions and the card"));

    chmod(card.Dcim().c_str(), 0);
    const Outcome dcim = OnCard(card.Root(), {"ls"}, nobody);
    EXPECT_EQ(dcim.exit, clitest::kCardUnreadable);
    EXPECT_EQ(dcim.err, ErrorLine("'" + card.Dcim() +
                                  "' cannot be read (Permission denied); check the card, and the permissions of the "
                                  "folder"));

    const Outcome beyond = OnCard(card.Dcim() + "/100ABCDE", {"ls"}, nobody);
    EXPECT_EQ(beyond.exit, clitest::kCardUnreadable);
    EXPECT_EQ(beyond.err, ErrorLine("the card at '" + card.Dcim() +
                                    "/100ABCDE' cannot be reached (Permission denied); check its mount and the "
                                    "permissions on the way to it"));
    chmod(card.Dcim().c_str(), 0755);
    chmod(card.Path("100ABCDE").c_str(), 0755);
}

} // namespace
