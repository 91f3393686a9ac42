// Protection: the owner-write bit on the card, set behind the mark in memory, for a file and its companion, singly, by
// list positions, toggled and for all.
#include <cerrno>

#include "Change.h"

namespace dcftest {
namespace {

class TreeProtect : public TreeTest {
protected:
    /// Position 0: 9 with a raw companion, 1: 5, 2: 2 protected; 3 and 4 in 101; 5 in 100.
    void ListThree() {
        card.AddFiles("102ABCDE", {DcfName(9), DcfName(9, "SRW"), DcfName(5)});
        card.AddFile("102ABCDE", DcfName(2), {"", 0444, {}});
        card.AddFiles("101ABCDE", {DcfName(4), DcfName(3)}).AddFiles("100ABCDE", {DcfName(1)});
        List();
    }

    Texts Calls(const std::function<void()>& operation, const std::function<void(PosixSeam&)>& rules = {}) {
        return CallsOf(card, operation, rules);
    }

    /// "102/9", "102/9 known", "102/9 protected": what the tree knows of each file, in list order.
    Texts States() const {
        Texts texts;
        for (const CSDCFDir* dir : tree->m_dirGroup) {
            for (const DCFItem& item : dir->m_itemGroup) {
                texts.push_back(std::to_string(dir->m_nDnum) + "/" + std::to_string(item.m_nFileNum) +
                                (item.m_bProtect ? " protected" : "") + (item.m_bProtectKnown ? " known" : ""));
            }
        }
        return texts;
    }

    std::string Modes() const {
        std::string modes;
        for (const std::string& text : CardTexts(card)) {
            if (text.find("/ ") == std::string::npos) {
                modes += text.substr(text.rfind(' ') + 1) + " ";
            }
        }
        return modes;
    }
};

TEST_F(TreeProtect, OfOneFileSetsTheMarkAndClearsTheWriteBitOfFileAndCompanionWithASyncEach) {
    ListThree();
    EXPECT_EQ(Calls([&] { tree->SetProtect(Text(Path("102ABCDE", DcfName(9))), true); }),
              (Texts{"stat 102ABCDE/KVR_0009.JPG", "chmod 102ABCDE/KVR_0009.JPG 0444", "sync",
                     "stat 102ABCDE/KVR_0009.SRW", "chmod 102ABCDE/KVR_0009.SRW 0444", "sync"}));
    EXPECT_EQ(States(), (Texts{"102/9 protected known", "102/5", "102/2", "101/4", "101/3", "100/1"}));
    EXPECT_EQ(Calls([&] { tree->SetProtect(Text(Path("102ABCDE", DcfName(9))), false); }),
              (Texts{"stat 102ABCDE/KVR_0009.JPG", "chmod 102ABCDE/KVR_0009.JPG 0644", "sync",
                     "stat 102ABCDE/KVR_0009.SRW", "chmod 102ABCDE/KVR_0009.SRW 0644", "sync"}));
    EXPECT_EQ(States().front(), "102/9 known");
}

TEST_F(TreeProtect, ChangesTheOwnersWriteBitAlone) {
    card.AddFile("100ABCDE", DcfName(1), {"", 0777, {}}).AddFile("100ABCDE", DcfName(2), {"", 0020, {}});
    List();
    tree->SetProtect(Text(Path("100ABCDE", DcfName(1))), true);
    tree->SetProtect(Text(Path("100ABCDE", DcfName(2))), false);
    EXPECT_EQ(card.Mode("100ABCDE", DcfName(1)), 0577U);
    EXPECT_EQ(card.Mode("100ABCDE", DcfName(2)), 0220U);
}

TEST_F(TreeProtect, SetsTheMarkInMemoryBeforeTheCard) {
    ListThree();
    bool marked = false;
    (void)Calls([&] { tree->SetProtect(Text(Path("100ABCDE", DcfName(1))), true); },
                [&](PosixSeam& seam) { seam.Before("stat", 1, [&] { marked = ItemAt(*tree, 2, 0).m_bProtect; }); });
    EXPECT_TRUE(marked);
}

TEST_F(TreeProtect, KeepsTheMarkOfAFileThatIsMissingOnTheCard) {
    ListThree();
    card.Remove("100ABCDE", DcfName(1));
    EXPECT_EQ(Calls([&] { tree->SetProtect(Text(Path("100ABCDE", DcfName(1))), true); }),
              (Texts{"stat 100ABCDE/KVR_0001.JPG"}))
        << "left alone, and no sync";
    EXPECT_EQ(States().back(), "100/1 protected known");
}

TEST_F(TreeProtect, KeepsTheMarkWhenTheCardRefuses) {
    ListThree();
    EXPECT_EQ(Calls([&] { tree->SetProtect(Text(Path("102ABCDE", DcfName(9))), true); },
                    [](PosixSeam& seam) { seam.Fail("chmod", EROFS); }),
              (Texts{"stat 102ABCDE/KVR_0009.JPG", "chmod 102ABCDE/KVR_0009.JPG 0444", "sync",
                     "stat 102ABCDE/KVR_0009.SRW", "chmod 102ABCDE/KVR_0009.SRW 0444", "sync"}))
        << "and goes on with the companion";
    EXPECT_EQ(States().front(), "102/9 protected known");
    EXPECT_EQ(card.Mode("102ABCDE", DcfName(9)), 0644U);
    EXPECT_EQ(card.Mode("102ABCDE", DcfName(9, "SRW")), 0444U);
    EXPECT_EQ(FakePlatform::Get().Lines().size(), 0U);
}

TEST_F(TreeProtect, TellsTheStateOfAFileAndReadsItFromACopy) {
    ListThree();
    const Texts before = EverythingIn(*tree);
    EXPECT_EQ(Calls([&] { EXPECT_TRUE(tree->GetProtect(Text(Path("102ABCDE", DcfName(2))))); }),
              (Texts{"stat 102ABCDE/KVR_0002.JPG"}));
    EXPECT_FALSE(tree->GetProtect(Text(Path("102ABCDE", DcfName(5)))));
    EXPECT_EQ(EverythingIn(*tree), before) << "the tree's own item stays unknowing";
    ItemAt(*tree, 0, 1).setProtect(true);
    EXPECT_EQ(Calls([&] { EXPECT_TRUE(tree->GetProtect(Text(Path("102ABCDE", DcfName(5))))); }), Texts{});
}

TEST_F(TreeProtect, OfAListSetsItemsOfSeveralDirectoriesInOnePass) {
    ListThree();
    EXPECT_EQ(Calls([&] {
                  tree->SetProtect(Positions{1, 3, 5}, true);
              }),
              (Texts{"stat 102ABCDE/KVR_0005.JPG", "chmod 102ABCDE/KVR_0005.JPG 0444", "sync",
                     "stat 101ABCDE/KVR_0004.JPG", "chmod 101ABCDE/KVR_0004.JPG 0444", "sync",
                     "stat 100ABCDE/KVR_0001.JPG", "chmod 100ABCDE/KVR_0001.JPG 0444", "sync"}));
    EXPECT_EQ(States(), (Texts{"102/9", "102/5 protected known", "102/2", "101/4 protected known", "101/3",
                               "100/1 protected known"}));
    tree->SetProtect(Positions{0, 2, 4}, false);
    EXPECT_EQ(States(), (Texts{"102/9 known", "102/5 protected known", "102/2 known", "101/4 protected known",
                               "101/3 known", "100/1 protected known"}));
    EXPECT_EQ(Modes(), "0444 0644 0444 0644 0444 0644 0644 ");
}

TEST_F(TreeProtect, OfAListPassesOverDirectoriesWithoutFiles) {
    card.AddDir("103ABCDE").AddFiles("102ABCDE", {DcfName(2)}).AddDir("101ABCDE").AddFiles("100ABCDE", {DcfName(1)});
    List();
    tree->SetProtect(Positions{0, 1}, true);
    EXPECT_EQ(States(), (Texts{"102/2 protected known", "100/1 protected known"}));
}

TEST_F(TreeProtect, OfAListBeyondTheCountEndsThere) {
    ListThree();
    EXPECT_EQ(Calls([&] {
                  tree->SetProtect(Positions{5, 6, 7, 1000}, true);
              }),
              (Texts{"stat 100ABCDE/KVR_0001.JPG", "chmod 100ABCDE/KVR_0001.JPG 0444", "sync"}));
}

TEST_F(TreeProtect, OfAListConsumesPositionsBelowTheDirectoryWithoutEffect) {
    ListThree();
    tree->SetProtect(Positions{-4, -1, 4, 0, 5}, true);
    EXPECT_EQ(States(), (Texts{"102/9", "102/5", "102/2", "101/4", "101/3 protected known", "100/1 protected known"}))
        << "position 0 came too late";
    tree->SetProtectToggle({-1, 4, 1, 5});
    EXPECT_EQ(States(), (Texts{"102/9", "102/5", "102/2", "101/4", "101/3 known", "100/1 known"}));
}

TEST_F(TreeProtect, OfAListTouchesAPositionAgainThatStandsInItTwice) {
    ListThree();
    tree->SetProtectToggle({5, 5, 5});
    EXPECT_EQ(States().back(), "100/1 protected known");
}

TEST_F(TreeProtect, OfAnEmptyListChangesNothing) {
    ListThree();
    const Texts before = EverythingIn(*tree);
    EXPECT_EQ(Calls([&] {
                  tree->SetProtect(Positions{}, true);
                  tree->SetProtectToggle({});
              }),
              Texts{});
    EXPECT_EQ(EverythingIn(*tree), before);
}

TEST_F(TreeProtect, ToggledFlipsEachFileByItself) {
    ListThree();
    EXPECT_EQ(Calls([&] {
                  tree->SetProtectToggle({1, 2, 3});
              }),
              (Texts{"stat 102ABCDE/KVR_0005.JPG", "stat 102ABCDE/KVR_0005.JPG", "chmod 102ABCDE/KVR_0005.JPG 0444",
                     "sync", "stat 102ABCDE/KVR_0002.JPG", "stat 102ABCDE/KVR_0002.JPG",
                     "chmod 102ABCDE/KVR_0002.JPG 0644", "sync", "stat 101ABCDE/KVR_0004.JPG",
                     "stat 101ABCDE/KVR_0004.JPG", "chmod 101ABCDE/KVR_0004.JPG 0444", "sync"}));
    EXPECT_EQ(States(),
              (Texts{"102/9", "102/5 protected known", "102/2 known", "101/4 protected known", "101/3", "100/1"}));
}

TEST_F(TreeProtect, ToggledGoesByTheMarkInMemoryOnceThatIsKnown) {
    ListThree();
    ItemAt(*tree, 0, 1).setProtect(true);
    EXPECT_EQ(Calls([&] { tree->SetProtectToggle({1}); }),
              (Texts{"stat 102ABCDE/KVR_0005.JPG", "chmod 102ABCDE/KVR_0005.JPG 0644", "sync"}));
    EXPECT_EQ(States().at(1), "102/5 known");
}

TEST_F(TreeProtect, ToggledGivesTheCompanionTheStateOfItsFile) {
    ListThree();
    card.SetMode("102ABCDE", DcfName(9, "SRW"), 0444);
    tree->SetProtectToggle({0});
    EXPECT_EQ(card.Mode("102ABCDE", DcfName(9)), 0444U);
    EXPECT_EQ(card.Mode("102ABCDE", DcfName(9, "SRW")), 0444U);
    tree->SetProtectToggle({0});
    EXPECT_EQ(card.Mode("102ABCDE", DcfName(9, "SRW")), 0644U);
}

TEST_F(TreeProtect, ToggledIgnoresPositionsOutsideTheList) {
    ListThree();
    const Texts before = EverythingIn(*tree);
    EXPECT_EQ(Calls([&] { tree->SetProtectToggle({-2, 6}); }), Texts{});
    EXPECT_EQ(EverythingIn(*tree), before);
}

TEST_F(TreeProtect, OfAllSetsEveryFileWhateverItsState) {
    card.AddFiles("101ABCDE", {DcfName(4), DcfName(4, "MPO")}).AddDir("100ABCDE");
    card.AddFile("100ABCDE", DcfName(1), {"", 0444, {}});
    List();
    EXPECT_EQ(Calls([&] { tree->SetProtectAll(true); }),
              (Texts{"stat 101ABCDE/KVR_0004.JPG", "chmod 101ABCDE/KVR_0004.JPG 0444", "sync",
                     "stat 101ABCDE/KVR_0004.MPO", "chmod 101ABCDE/KVR_0004.MPO 0444", "sync",
                     "stat 100ABCDE/KVR_0001.JPG", "chmod 100ABCDE/KVR_0001.JPG 0444", "sync"}));
    EXPECT_EQ(States(), (Texts{"101/4 protected known", "100/1 protected known"}));
    tree->SetProtectAll(false);
    EXPECT_EQ(States(), (Texts{"101/4 known", "100/1 known"}));
    EXPECT_EQ(Modes(), "0644 0644 0644 ");
}

TEST_F(TreeProtect, OfAnEmptyTreeDoesNothing) {
    List();
    EXPECT_EQ(Calls([&] {
                  tree->SetProtectAll(true);
                  tree->SetProtect(Positions{0, 1}, true);
                  tree->SetProtectToggle({0});
                  tree->SetWifiAll(true);
              }),
              Texts{});
}

TEST_F(TreeProtect, InCameraAsksForACompanionNameThatIsNeverARealOne) {
    card.AddFiles("Camera", {CameraName(1), CameraName(1, "SRW")});
    List();
    EXPECT_EQ(Calls([&] { tree->SetProtectAll(true); }),
              (Texts{"stat Camera/20240131_000001.JPG", "chmod Camera/20240131_000001.JPG 0444", "sync",
                     "stat Camera/20240131_SRW"}));
    EXPECT_EQ(card.Mode("Camera", CameraName(1, "SRW")), 0644U);
}

TEST_F(TreeProtect, MissesAFileWhoseNameOnTheCardIsInLowerCase) {
    card.AddFile("100ABCDE", "kvr_0001.jpg");
    List();
    tree->SetProtect(Positions{0}, true);
    EXPECT_EQ(States().back(), "100/1 protected known");
    EXPECT_EQ(card.Mode("100ABCDE", "kvr_0001.jpg"), 0644U) << "the names of the list are in upper case";
}

TEST_F(TreeProtect, OfAnUnknownDirectoryOrFileIsFatal) {
    ListThree();
    const std::string elsewhere = Path("105ABCDE", DcfName(1));
    const std::string missing = Path("102ABCDE", DcfName(7));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { tree->SetProtect(Text(elsewhere), true); }), NoDirectory(105)));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { tree->SetProtect(Text(missing), true); }), NoFile(7)));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { (void)tree->GetProtect(Text(elsewhere)); }), NoDirectory(105)));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { (void)tree->GetProtect(Text(missing)); }), NoFile(7)));
}

TEST(TreeProtectOnALongRoot, CutsThePathsAndMissesTheFiles) {
    StartAfresh();
    Card card(73); // the path of a file has 100 characters
    card.AddFiles("100ABCDE", {DcfName(1), DcfName(1, "SRW")});
    const auto tree = ListTree(card);
    EXPECT_EQ(CallsOf(card, [&] { tree->SetProtectAll(true); }),
              (Texts{"stat 100ABCDE/KVR_0001.J", "stat 100ABCDE/KVR_0001.S"}));
    EXPECT_TRUE(ItemAt(*tree, 0, 0).m_bProtect);
    EXPECT_EQ(card.Mode("100ABCDE", DcfName(1)), 0644U);
}

class TreeWifi : public TreeTest {
protected:
    Texts Marked() const {
        Texts texts;
        for (const CSDCFDir* dir : tree->m_dirGroup) {
            for (const DCFItem& item : dir->m_itemGroup) {
                if (item.m_bWifi) {
                    texts.push_back(std::to_string(dir->m_nDnum) + "/" + std::to_string(item.m_nFileNum));
                }
            }
        }
        return texts;
    }
};

TEST_F(TreeWifi, IsSetAndClearedInMemoryAlone) {
    card.AddFiles("101ABCDE", {DcfName(4), DcfName(4, "SRW")}).AddFiles("100ABCDE", {DcfName(2), DcfName(1)});
    List();
    const Texts before = CardTexts(card);
    EXPECT_EQ(CallsOf(card,
                      [&] {
                          tree->SetWifi(Text(Path("101ABCDE", DcfName(4))), true);
                          tree->SetWifi(Text(Path("100ABCDE", DcfName(1))), true);
                          EXPECT_TRUE(tree->GetWifi(Text(Path("101ABCDE", DcfName(4)))));
                          EXPECT_FALSE(tree->GetWifi(Text(Path("100ABCDE", DcfName(2)))));
                          EXPECT_EQ(Marked(), (Texts{"101/4", "100/1"}));
                          tree->SetWifi(Text(Path("101ABCDE", DcfName(4))), false);
                          EXPECT_EQ(Marked(), (Texts{"100/1"}));
                          tree->SetWifiAll(true);
                          EXPECT_EQ(Marked(), (Texts{"101/4", "100/2", "100/1"}));
                          tree->SetWifiAll(false);
                          EXPECT_EQ(Marked(), Texts{});
                      }),
              Texts{});
    EXPECT_EQ(CardTexts(card), before);
}

TEST_F(TreeWifi, IsLostWhenTheCardIsListedAgain) {
    card.AddFiles("100ABCDE", {DcfName(1)});
    List();
    tree->SetWifiAll(true);
    List();
    EXPECT_EQ(Marked(), Texts{});
}

TEST_F(TreeWifi, LeavesTheProtectStateUnknown) {
    card.AddFiles("100ABCDE", {DcfName(1)});
    List();
    tree->SetWifiAll(true);
    EXPECT_FALSE(ItemAt(*tree, 0, 0).m_bProtectKnown);
}

TEST_F(TreeWifi, OfAnUnknownDirectoryOrFileIsFatal) {
    card.AddFiles("100ABCDE", {DcfName(1)});
    List();
    const std::string elsewhere = Path("105ABCDE", DcfName(1));
    const std::string missing = Path("100ABCDE", DcfName(7));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { tree->SetWifi(Text(elsewhere), true); }), NoDirectory(105)));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { (void)tree->GetWifi(Text(missing)); }), NoFile(7)));
}

} // namespace
} // namespace dcftest
