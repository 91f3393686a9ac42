// The story: folders of eight characters that are none of ours ("Pictures", "lost+fnd") often stand in "DCIM" beside
// "Camera". Compared pair by pair, a numbered folder came before "Camera", "Camera" before "Pictures", and "Pictures"
// before the numbered folder. A sort by such a circle leaves whatever the card's own order makes of it: "Camera" in
// front of the numbered folders, or a lower number in front of a higher one, whose next new file was then given the
// name of a picture that was already there.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "CSDCFList.h"
#include "Card.h"
#include "PCSDCFFSIO.h"

namespace {

using Names = std::vector<std::string>;

Names Listed(const std::string& folder) {
    PCSDCFFSIO listing(folder.c_str(), true);
    PCSDCFFSIO::PTFile entry;
    Names names;
    while (listing.Read(&entry) >= 0) {
        names.emplace_back(entry.szName);
    }
    return names;
}

/// "Camera", some of the foreign folders and some numbered ones, in any order.
Names RandomFolders(std::mt19937& random) {
    Names names = {"Pictures", "Download", "lost+fnd", "MISC0000", "abcdefgh", "ABCDEFGH", "Facebook"};
    for (int number = 100; number < 112; ++number) {
        names.push_back(dcftest::DirName(number, "PHOTO"));
    }
    std::shuffle(names.begin(), names.end(), random);
    names.resize(3 + random() % (names.size() - 3));
    names.emplace_back("Camera");
    std::shuffle(names.begin(), names.end(), random);
    return names;
}

TEST(ForeignFolders, StandFromTheHighestNameDownWithCameraBehindThemAll) {
    std::mt19937 random(1);
    for (int round = 0; round < 60; ++round) {
        dcftest::Card card;
        Names expected = RandomFolders(random);
        for (const std::string& name : expected) {
            card.AddDir(name);
        }
        std::sort(expected.begin(), expected.end(), [](const std::string& a, const std::string& b) {
            return (a == "Camera") != (b == "Camera") ? b == "Camera" : a > b;
        });
        ASSERT_EQ(Listed(card.Dcim()), expected) << "round " << round;
    }
}

TEST(ForeignFolders, LeaveTheNumbersOfTheListDescendingAndTheNewestFileFirst) {
    std::mt19937 random(2);
    for (int round = 0; round < 30; ++round) {
        dcftest::Card card;
        int highest = 0;
        for (const std::string& name : RandomFolders(random)) {
            card.AddFile(name, dcftest::DcfName(7));
            highest = name.find("PHOTO") == 3 ? std::max(highest, std::stoi(name)) : highest;
        }
        CSDCFList tree;
        tree.SetBaseURI(card.Root().c_str());
        tree.Listup(true);
        for (int didx = 1; didx < tree.m_nDirCount; ++didx) {
            EXPECT_GT(tree.m_dirGroup[static_cast<std::size_t>(didx) - 1]->GetDnum(),
                      tree.m_dirGroup[static_cast<std::size_t>(didx)]->GetDnum());
        }
        EXPECT_EQ(tree.m_nFirstIndex, highest == 0 ? 0 : highest * 100000 + 7) << "round " << round;
    }
}

} // namespace
