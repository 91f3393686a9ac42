// The gallery of awkward cards: what each is and what comes of it stands in the tables of the four *Cards.cpp, and the
// road along which all of them are led in Road.h.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "Cli.h"
#include "Road.h"

namespace dcftest {
namespace {

AwkwardCards AllCards() {
    AwkwardCards all;
    for (const AwkwardCards& cards : {FolderCards(), EntryCards(), NumberCards(), StorageCards()}) {
        all.insert(all.end(), cards.begin(), cards.end());
    }
    return all;
}

class Gallery : public testing::TestWithParam<AwkwardCard> {
protected:
    Gallery() {
        // In memory where there is room: making so many files takes long on a disk.
        if (std::getenv("TMPDIR") == nullptr && ::access("/dev/shm", W_OK) == 0) {
            (void)::setenv("TMPDIR", "/dev/shm", 1);
        }
        clitest::PrepareToRun();
    }
};

TEST_P(Gallery, IsLedAlongTheRoadWithoutHarm) {
    const Ending ending = RunInChild([] {
        MadeCard made(GetParam());
        ExpectToldByDcfctl(made); // first: the list makes a missing "DCIM"
        ExpectRead(made);
        ExpectProtected(made);
        ExpectNamedAndRenumbered(made);
        if (GetParam().listed.files <= kMany) { // renumbered, but whole
            made.MakeAnew();
        }
        ExpectDeleted(made);
    });
    if (ending.refused) {
        GTEST_SKIP() << ending.err;
    }
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
}

INSTANTIATE_TEST_SUITE_P(OfAwkwardCards, Gallery, testing::ValuesIn(AllCards()),
                         [](const auto& card) { return std::string(card.param.name); });

} // namespace
} // namespace dcftest
