// Awkward cards: "DCIM" and the folders in it.
#include <filesystem>
#include <fstream>

#include "AwkwardCard.h"

namespace dcftest {
namespace {

namespace fs = std::filesystem;

void Nothing(CardMaker& /*card*/) {}

} // namespace

AwkwardCards FolderCards() {
    return {
        {.name = "NoDcim",
         .why = "a card that no camera has used; the list makes the folder",
         .make = Nothing,
         .listed = {.next = "100PHOTO/KVR_0001.JPG"},
         .told = {4, 4, 4}},
        {.name = "EmptyDcim",
         .why = "there is nothing to stand on",
         .make = [](CardMaker& card) { card.Folder(""); },
         .listed = {.next = "100PHOTO/KVR_0001.JPG"}},
        {.name = "DcimAFile",
         .why = "it can neither be listed nor made",
         .make = [](CardMaker& card) { std::ofstream(card.Path()).flush(); },
         .listed = {.next = "100PHOTO/KVR_0001.JPG"},
         .told = {4, 4, 4}},
        {.name = "DcimALink",
         .why = "the files are elsewhere on the card",
         .make =
             [](CardMaker& card) {
                 card.File("100PHOTO", "KVR_0001.JPG").File("101PHOTO", "KVR_0001.JPG");
                 fs::rename(card.Path(), card.Root() + "/elsewhere");
                 fs::create_directory_symlink("elsewhere", card.Path());
             },
         .listed = {.files = 2, .next = "101PHOTO/KVR_0002.JPG"},
         .told = {0, 1, 0}},
        {.name = "DcimALinkToNowhere",
         .why = "it is there, and cannot be listed or made",
         .make = [](CardMaker& card) { fs::create_symlink("nowhere", card.Path()); },
         .listed = {.next = "100PHOTO/KVR_0001.JPG"},
         .told = {4, 4, 4}},
        {.name = "DcimALinkToItself",
         .why = "following it has no end",
         .make = [](CardMaker& card) { fs::create_symlink("DCIM", card.Path()); },
         .listed = {.next = "100PHOTO/KVR_0001.JPG"},
         .told = {4, 4, 4}},
        {.name = "DcimThatMayNotBeRead",
         .why = "permissions as another system may leave them",
         .make = [](CardMaker& card) { card.File("100PHOTO", "KVR_0001.JPG").SetMode("", 0); },
         .listed = {.next = "100PHOTO/KVR_0001.JPG", .nextTaken = true},
         .told = {4, 4, 4},
         .circumstance = Circumstance::kOrdinaryUser},
        {.name = "DcimThatMayNotBeEntered",
         .why = "the names can be had, and nothing behind them",
         .make = [](CardMaker& card) { card.File("100PHOTO", "KVR_0001.JPG").SetMode("", 0444); },
         .listed = {.next = "100PHOTO/KVR_0001.JPG", .nextTaken = true},
         .told = {5, 1, 5},
         .circumstance = Circumstance::kOrdinaryUser},
        {.name = "AFolderThatMayNotBeRead",
         .why = "its files are missing from the list and stay on the card",
         .make =
             [](CardMaker& card) {
                 card.File("100PHOTO", "KVR_0001.JPG").File("101PHOTO", "KVR_0002.JPG").SetMode("101PHOTO", 0);
             },
         .listed = {.files = 1, .next = "101PHOTO/KVR_0001.JPG"},
         .told = {5, 1, 5},
         .circumstance = Circumstance::kOrdinaryUser},
        {.name = "ACardOfAnotherUser",
         .why = "everything can be seen and nothing changed",
         .make = [](CardMaker& card) { card.Files("100PHOTO", 3); },
         .listed = {.files = 3, .next = "100PHOTO/KVR_0004.JPG"},
         .told = {0, 1, 0},
         .circumstance = Circumstance::kOrdinaryUser},
        {.name = "AFileNamedLikeAFolder",
         .why = "it is taken for an empty directory, and goes with a deletion of everything",
         .make =
             [](CardMaker& card) {
                 card.File("100PHOTO", "KVR_0001.JPG");
                 std::ofstream(card.Path("101PHOTO")).flush();
             },
         .listed = {.files = 1, .next = "101PHOTO/KVR_0001.JPG"},
         .told = {0, 1, 0}},
        {.name = "AFolderThatIsALink",
         .why = "the same files under two numbers",
         .make =
             [](CardMaker& card) {
                 card.File("100PHOTO", "KVR_0001.JPG");
                 fs::create_directory_symlink("100PHOTO", card.Path("101PHOTO"));
             },
         .listed = {.files = 2, .next = "101PHOTO/KVR_0002.JPG"},
         .told = {0, 1, 0}},
        {.name = "AFolderThatIsALinkToNowhere",
         .why = "it is taken for an empty directory",
         .make =
             [](CardMaker& card) {
                 card.File("100PHOTO", "KVR_0001.JPG");
                 fs::create_symlink("nowhere", card.Path("101PHOTO"));
             },
         .listed = {.files = 1, .next = "101PHOTO/KVR_0001.JPG"},
         .told = {5, 1, 5}},
        {.name = "EmptyFolders",
         .why = "every move passes over them",
         .make =
             [](CardMaker& card) {
                 card.Folder("104PHOTO").Files("103PHOTO", 2).Folder("102PHOTO").Folder("101PHOTO");
                 card.Files("100PHOTO", 2).Folder("Camera");
             },
         .listed = {.files = 4, .next = "104PHOTO/KVR_0001.JPG"},
         .told = {0, 1, 0}},
        {.name = "CameraAlone",
         .why = "it has no number of its own, and new files start elsewhere",
         .make =
             [](CardMaker& card) { card.File("Camera", "20240501_101010.JPG").File("Camera", "20240501_101011.SRW"); },
         .listed = {.files = 2, .next = "100PHOTO/KVR_0001.JPG"},
         .listedWithoutCamera = Listed{}},
        {.name = "CameraWithoutDigits",
         .why = "what stands in the place of the number is none",
         .make =
             [](CardMaker& card) {
                 card.File("100PHOTO", "KVR_0001.JPG").File("Camera", "IMG-HOLIDAYS-AT.JPG");
                 card.File("Camera", "20240501_101011.JPG");
             },
         .listed = {.files = 3, .next = "100PHOTO/KVR_0002.JPG"},
         .listedWithoutCamera = Listed{.files = 1},
         .told = {0, 1, 0}},
        {.name = "FoldersWithForeignNames",
         .why = "eight characters that are no directory, and some that nearly are",
         .make =
             [](CardMaker& card) {
                 for (const char* name : {"lost+fnd", "Pictures", "099PHOTO", " 100ABCD", "+100ABCD", "1000ABCD",
                                          "10ABCDEF", "CAMERA", "Camera2", "100PHOT"}) {
                     card.File(name, "KVR_0001.JPG");
                 }
                 card.File("100PHOTO", "KVR_0001.JPG");
             },
         .listed = {.files = 1, .next = "100PHOTO/KVR_0002.JPG"},
         .told = {0, 1, 0}},
        {.name = "FoldersWithControlCharacters",
         .why = "line ends, tabs and escapes in what is printed and logged",
         .make =
             [](CardMaker& card) {
                 card.File("100\n\n\n\n\n", "KVR_0001.JPG").File("101\t\x1b[2J", "KVR_0001.JPG");
                 card.File("102%s%n%", "KVR_0001.JPG");
             },
         .listed = {.files = 3, .next = "103PHOTO/KVR_0001.JPG"}},
        {.name = "FoldersInInvalidUtf8",
         .why = "bytes that are no text in any encoding of today",
         .make =
             [](CardMaker& card) {
                 card.File("100\xff\xfe\xc0\x80\x80", "KVR_0001.JPG").File("101\xf5\x80\xe2\x82\xc3", "KVR_0001.JPG");
             },
         .listed = {.files = 2, .next = "102PHOTO/KVR_0001.JPG"}},
    };
}

} // namespace dcftest
