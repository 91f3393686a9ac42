// The road of a full card: refused, renumbered, recording again.
#include <gtest/gtest.h>

#include "ChangeCard.h"

using clitest::ChangeCard;
using clitest::ErrorOf;
using clitest::Json;
using clitest::Outcome;
using clitest::ReadFile;
using clitest::Words;

namespace {

TEST(FullCard, IsRefusedThenRenumberedThenRecordsAgain) {
    ChangeCard card;
    card.Put("998PHOTO", {"KVR_0001.JPG", "KVR_9998.JPG"}).Put("999PHOTO", {"KVR_9998.JPG"});
    const std::string last = card.Source("last.jpg", "the last one");
    const std::string next = card.Source("next.jpg", "the next one");

    EXPECT_EQ(1, card.RunJson({"capacity"})["numbers_left"]);
    EXPECT_EQ(clitest::kSuccess, card.Run({"add", last}).exit);
    EXPECT_EQ("the last one", ReadFile(card.Path("999PHOTO", "KVR_9999.JPG")));
    EXPECT_EQ(99909999, card.Series());
    EXPECT_EQ(0, card.RunJson({"capacity"})["numbers_left"]);

    const Words before = card.Before();
    for (const Words& words : {Words{"add", next}, Words{"next-name"}, Words{"add", "--series", next}}) {
        const Outcome refused = card.Run(words);
        EXPECT_EQ(clitest::kRefused, refused.exit) << refused.Describe();
        EXPECT_EQ("there is no number left for a new file, the newest one being 999-9999; 'dcfctl renumber' frees "
                  "numbers, or take another card",
                  ErrorOf(refused));
        EXPECT_EQ(before, card.Before());
    }

    EXPECT_EQ(clitest::kSuccess, card.Run({"renumber"}).exit);
    EXPECT_EQ((Words{"100PHOTO", "101PHOTO"}), card.DirNames());
    EXPECT_EQ(0, card.Series());
    EXPECT_EQ("the last one", ReadFile(card.Path("100PHOTO", "KVR_9999.JPG")));

    EXPECT_EQ(20000, card.RunJson({"capacity"})["numbers_left"]);
    EXPECT_EQ(clitest::kSuccess, card.Run({"add", next}).exit);
    EXPECT_EQ("the next one", ReadFile(card.Path("101PHOTO", "KVR_9999.JPG")));
    EXPECT_EQ(card.Path("102PHOTO", "KVR_0001.JPG"), card.RunJson({"next-name"})["path"]);
}

} // namespace
