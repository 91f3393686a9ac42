// dcfctl on real cards: what it promises about them, and what it says of a mount or a card that stands in its way.
#include "Cli.h"
#include "MountedCard.h"

namespace dcftest {
namespace {

class Dcfctl : public MountedCardTest {
protected:
    explicit Dcfctl(const char* device = kCardDevice) : MountedCardTest(device) {}

    clitest::Outcome Run(const clitest::Words& words) const {
        return clitest::OnCard(card->Root(), words);
    }

    static bool Says(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }
};

/// The same, over the card that is soon full.
class DcfctlOnASmallCard : public Dcfctl {
protected:
    DcfctlOnASmallCard() : Dcfctl(kSmallCardDevice) {}
};

TEST_F(Dcfctl, ListsASampleCardAsItMadeIt) {
    const std::string root = card->Root() + "/sample";
    const clitest::Outcome made = clitest::Dcfctl({"sample", root});
    ASSERT_EQ(made.exit, clitest::kSuccess) << made.Describe();
    EXPECT_EQ(made.err, "") << "no warning on this mount";
    const clitest::Outcome before = clitest::OnCard(root, {"ls"});
    EXPECT_EQ(before.exit, clitest::kSuccess) << before.Describe();
    EXPECT_TRUE(Says(before.out, "JPG")) << before.Describe();
    Mount("");
    EXPECT_EQ(clitest::OnCard(root, {"ls"}).out, before.out);
}

TEST_F(Dcfctl, ProtectsOnTheCard) {
    card->AddFiles("100PHOTO", {DcfName(2), DcfName(2, "SRW"), DcfName(1)});
    const clitest::Outcome outcome = Run({"protect", "100PHOTO/KVR_0002.JPG"});
    EXPECT_EQ(outcome.exit, clitest::kSuccess) << outcome.Describe();
    Mount("");
    EXPECT_EQ(CardTexts(*card), (Texts{"100PHOTO/ 0755", "100PHOTO/KVR_0001.JPG 0755", "100PHOTO/KVR_0002.JPG 0555",
                                       "100PHOTO/KVR_0002.SRW 0555"}));
    const clitest::Outcome kept = Run({"rm", "--yes", "100PHOTO/KVR_0002.JPG"});
    EXPECT_EQ(kept.exit, clitest::kRefused) << kept.Describe();
    EXPECT_TRUE(card->Exists("100PHOTO", DcfName(2)));
}

TEST_F(Dcfctl, TellsOfAMountThatForgetsProtectionInBothDirections) {
    card->AddFiles("100PHOTO", {DcfName(2), DcfName(1)});
    card->SetMode("100PHOTO", DcfName(2), 0555);
    for (const char* options : {"umask=0", "fmask=0111,dmask=0"}) {
        Mount(options);
        const Texts before = CardTexts(*card);
        for (const clitest::Words& words : {clitest::Words{"protect", "100PHOTO/KVR_0001.JPG"},
                                            clitest::Words{"unprotect", "100PHOTO/KVR_0002.JPG"}}) {
            const clitest::Outcome outcome = Run(words);
            EXPECT_EQ(outcome.exit, clitest::kIncomplete) << outcome.Describe();
            EXPECT_TRUE(Says(outcome.err, "fmask=0022")) << "the cure: " << outcome.Describe();
        }
        EXPECT_EQ(CardTexts(*card), before);
    }
}

TEST_F(Dcfctl, AddsRemovesAndRenumbers) {
    const std::string source = "/tmp/source.jpg";
    std::FILE* file = std::fopen(source.c_str(), "w");
    ASSERT_NE(file, nullptr);
    ASSERT_GE(std::fputs("a picture", file), 0);
    ASSERT_EQ(std::fclose(file), 0);
    card->AddFiles("300PHOTO", {DcfName(7)}).AddFiles("200PHOTO", {DcfName(5), DcfName(4)});

    const clitest::Outcome added = Run({"add", source});
    EXPECT_EQ(added.exit, clitest::kSuccess) << added.Describe();
    const clitest::Outcome removed = Run({"rm", "--yes", "200PHOTO/KVR_0005.JPG"});
    EXPECT_EQ(removed.exit, clitest::kSuccess) << removed.Describe();
    const clitest::Outcome renumbered = Run({"renumber"});
    EXPECT_EQ(renumbered.exit, clitest::kSuccess) << renumbered.Describe();
    Mount("");
    EXPECT_EQ(CardFiles(*card), (Texts{"100PHOTO/KVR_0007.JPG", "100PHOTO/KVR_0008.JPG", "101PHOTO/KVR_0004.JPG"}));
    EXPECT_EQ(clitest::ReadFile(card->Path("100PHOTO", DcfName(8))), "a picture");
}

TEST_F(Dcfctl, WorksOnNamesInSmallLettersWhereTheyAreFoundInAnyCase) {
    card->AddFiles("100PHOTO", {"kvr_0002.jpg", "kvr_0001.jpg"});
    const clitest::Outcome removed = Run({"rm", "--yes", "--pos", "0"});
    EXPECT_EQ(removed.exit, clitest::kSuccess) << removed.Describe();
    const clitest::Outcome protectedNow = Run({"protect", "--all"});
    EXPECT_EQ(protectedNow.exit, clitest::kSuccess) << protectedNow.Describe();
    Mount("");
    EXPECT_EQ(CardTexts(*card), (Texts{"100PHOTO/ 0755", "100PHOTO/kvr_0001.jpg 0555"}));
}

TEST_F(Dcfctl, LeavesAReadOnlyMountAsItIsAndNamesTheCause) {
    card->AddFiles("100PHOTO", {DcfName(2), DcfName(1)});
    Mount("ro");
    const Texts before = CardTexts(*card);
    const std::pair<clitest::Words, int> rows[] = {
        {{"rm", "--yes", "--all"}, clitest::kRefused},
        {{"next-name"}, clitest::kRefused},
        {{"renumber"}, clitest::kRefused},
        {{"protect", "--all"}, clitest::kIncomplete}, // it looks at the files afterwards
    };
    for (const auto& [words, exit] : rows) {
        const clitest::Outcome outcome = Run(words);
        EXPECT_EQ(outcome.exit, exit) << words.front() << ": " << outcome.Describe();
        EXPECT_TRUE(Says(outcome.err, "read-only")) << words.front() << ": " << outcome.Describe();
    }
    EXPECT_EQ(Run({"ls"}).exit, clitest::kSuccess);
    EXPECT_EQ(CardTexts(*card), before);
}

TEST_F(DcfctlOnASmallCard, AddsNothingThatDoesNotFit) {
    const std::string source = "/tmp/large.jpg";
    std::FILE* file = std::fopen(source.c_str(), "w");
    ASSERT_NE(file, nullptr);
    ASSERT_EQ(std::fseek(file, 100L << 20, SEEK_SET), 0);
    ASSERT_EQ(std::fputc('x', file), 'x');
    ASSERT_EQ(std::fclose(file), 0);
    card->AddFiles("100PHOTO", {DcfName(1)});
    const clitest::Outcome outcome = Run({"add", source});
    EXPECT_EQ(outcome.exit, clitest::kRefused) << outcome.Describe();
    EXPECT_EQ(CardFiles(*card), (Texts{"100PHOTO/KVR_0001.JPG"}));
}

} // namespace
} // namespace dcftest
