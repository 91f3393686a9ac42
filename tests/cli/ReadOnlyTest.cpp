// The verbs that read leave no trace on the card.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include "Card.h"
#include "Cli.h"

using clitest::Dcfctl;
using clitest::OnCard;
using clitest::Words;
using dcftest::Card;

namespace {

const Words kReadingCommands[] = {
    {"ls"},
    {"ls", "--json"},
    {"ls", "--paths"},
    {"ls", "-0", "--type", "JPG"},
    {"ls", "--dir", "100", "--limit", "1", "--no-camera"},
    {"count"},
    {"count", "--json"},
    {"show", "0"},
    {"show", "99"},
    {"show", "--json", "1"},
    {"show", "nothing"},
};

void ExpectUnchangedBy(const std::string& root) {
    const auto before = clitest::Snapshot(root);
    for (const Words& command : kReadingCommands) {
        const auto run = OnCard(root, command);
        EXPECT_EQ(run.signal, 0) << run.Describe();
        EXPECT_EQ(clitest::Snapshot(root), before) << command[0];
    }
}

TEST(Reading, ChangesNothingOnASampleCard) {
    Card card;
    ASSERT_EQ(Dcfctl({"sample", card.Root()}).exit, clitest::kSuccess);
    ExpectUnchangedBy(card.Root());
}

TEST(Reading, ChangesNothingOnAwkwardCards) {
    Card card;
    card.AddFile("100AAAAA", "KVR_0000.JPG").AddFile("100BBBBB", "kvr_0002.jpg").AddFile("100PHOTO", "KVR_0002.JPG");
    card.AddFile("Camera", "IMG_2024-ABCDEF.JPG").AddDir("101ABCDE");
    ExpectUnchangedBy(card.Root());
    Card fatal;
    fatal.AddDir("100BBBBB");
    fatal.AddFile("100AAAAA", "KVR_0001.JPG");
    ExpectUnchangedBy(fatal.Root());
}

TEST(Reading, MakesNoDcimWhereThereIsNone) {
    Card card;
    ExpectUnchangedBy(card.Root());
}

TEST(Reading, WorksOnACardThatCannotBeWritten) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    ASSERT_EQ(chmod(card.Path("100ABCDE").c_str(), 0555), 0);
    ASSERT_EQ(chmod(card.Dcim().c_str(), 0555), 0);
    EXPECT_EQ(OnCard(card.Root(), {"count"}).out, "1\n");
}

TEST(ShellThatIsNotAskedToChangeAnything, ChangesNothing) {
    Card card;
    ASSERT_EQ(Dcfctl({"sample", card.Root()}).exit, clitest::kSuccess);
    const auto before = clitest::Snapshot(card.Root());
    const auto run = clitest::Shell(card.Root(), {"Listup", "GetFirst", "GetAt 3", "GetAt 99", "GetNext", "GetLast",
                                                  "SetCurIndex 2", "SetSel 1 true", "GetFileCount JPG",
                                                  "RegisterPhotoMetadataCB demo", "GetCurrent", "Destroy"});
    EXPECT_EQ(run.signal, 0);
    EXPECT_EQ(clitest::Snapshot(card.Root()), before);
}

} // namespace
