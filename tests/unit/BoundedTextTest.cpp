// Texts that cannot be composed. What the library composes always can, so nothing that it does shows this.
#include <gtest/gtest.h>

#include <cwchar>
#include <string>

#include "BoundedText.h"

namespace {

/// A character for which neither the plain locale nor the hostile one has bytes, so that formatting it fails.
constexpr wint_t kNoCharacter = 0x20ac;

TEST(BoundedText, ThatCannotBeComposedIsEmpty) {
    char text[8] = "before";
    kelp::Compose(text, sizeof text, "a%lcb", kNoCharacter);
    EXPECT_STREQ(text, "");
}

TEST(BoundedText, ThatCannotBeComposedIsNotWrittenWhereThereIsNoRoom) {
    char text[8] = "before";
    kelp::Compose(text, 0, "a%lcb", kNoCharacter);
    EXPECT_STREQ(text, "before");
}

TEST(BoundedText, IsCutToItsBufferAndEnds) {
    char text[8] = "before";
    kelp::Compose(text, 4, "%s%04d", "ab", 12);
    EXPECT_EQ(std::string(text, sizeof text), std::string("ab0\0re\0\0", 8));
}

TEST(BoundedText, NumberEndsAtTheFirstCharacterThatIsNoDigit) {
    const struct {
        const char* text;
        int number;
    } rows[] = {{"1234", 1234}, {"12:4", 12}, {"12/4", 12}, {":234", 0}, {" 234", 234}, {"-234", -234}, {"12", 12}};
    for (const auto& row : rows) {
        EXPECT_EQ(kelp::ReadNumber<4>(row.text), row.number) << row.text;
    }
}

} // namespace
