// What dcfctl says in a build without the EXIF collector; of such a build there is always one for this test.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "Card.h"
#include "Cli.h"

using clitest::ErrorLine;
using clitest::Lines;
using clitest::OnCard;
using clitest::Outcome;
using clitest::Shell;
using dcftest::Card;
using Json = nlohmann::json;

namespace {

const std::string kNotBuilt =
    "this dcfctl was built without the EXIF collector; install libexif and build it with -DDCF_EXIF=ON";

TEST(MetadataNotBuilt, IsRefusedWithTheReason) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    const Outcome run = OnCard(card.Root(), {"ls", "--metadata"});
    EXPECT_EQ(run.exit, clitest::kRefused);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, ErrorLine(kNotBuilt));
    EXPECT_EQ(Json::parse(OnCard(card.Root(), {"ls", "--metadata", "--json"}).out)["error"]["cause"],
              "metadata-not-built");
    const Outcome shell = Shell(card.Root(), {"Listup", "RegisterPhotoMetadataCB exif"});
    EXPECT_EQ(shell.exit, clitest::kRefused);
    EXPECT_EQ(shell.err, ErrorLine("line 2: RegisterPhotoMetadataCB: " + kNotBuilt));
    EXPECT_EQ(Lines(OnCard(card.Root(), {"show", "0"}).out).back(), "  metadata   not in this build");
    EXPECT_FALSE(Json::parse(OnCard(card.Root(), {"show", "0", "--json"}).out)["file"].contains("metadata"));
}

} // namespace
