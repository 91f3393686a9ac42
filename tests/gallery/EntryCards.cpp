// Awkward cards: what else than a picture can have the name of one, and names that are none.
#include <sys/stat.h>

#include "AwkwardCard.h"
#include "Card.h"

namespace dcftest {
namespace {

/// A name in "Camera" of that many bytes.
std::string LongName(std::size_t length) {
    const std::string start = "20240501_101010";
    const std::string end = ".JPG";
    return start + std::string(length - start.size() - end.size(), 'x') + end;
}

} // namespace

AwkwardCards EntryCards() {
    return {
        {.name = "AnEmptyFolderNamedLikeAPicture",
         .why = "the list takes it for one, and a deletion can remove it",
         .make = [](CardMaker& card) { card.Folder("100PHOTO/KVR_0001.JPG").File("100PHOTO", "KVR_0002.JPG"); },
         .listed = {.files = 2, .next = "100PHOTO/KVR_0003.JPG"},
         .told = {0, 1, 0}},
        {.name = "AFolderNamedLikeAPicture",
         .why = "a deletion cannot remove it, and what is in it stays",
         .make =
             [](CardMaker& card) {
                 card.File("100PHOTO/KVR_0001.JPG", "KVR_0009.JPG").File("100PHOTO", "KVR_0002.JPG");
             },
         .listed = {.files = 2, .next = "100PHOTO/KVR_0003.JPG"},
         .told = {0, 1, 0}},
        {.name = "AFolderNamedLikeACompanion",
         .why = "a deletion of the picture tries to take it along",
         .make =
             [](CardMaker& card) {
                 card.File("100PHOTO", "KVR_0001.JPG").File("100PHOTO/KVR_0001.SRW", "KVR_0009.JPG");
             },
         .listed = {.files = 1, .next = "100PHOTO/KVR_0002.JPG"},
         .told = {0, 1, 0}},
        {.name = "ALinkToNowhere",
         .why = "it is listed, and there is nothing to look at",
         .make = [](CardMaker& card) { card.Link("100PHOTO", "KVR_0001.JPG", "nowhere").Files("101PHOTO", 1); },
         .listed = {.files = 2, .next = "101PHOTO/KVR_0002.JPG"},
         .told = {0, 1, 0}},
        {.name = "ALinkToItself",
         .why = "following it has no end",
         .make = [](CardMaker& card) { card.Link("100PHOTO", "KVR_0001.JPG", "KVR_0001.JPG").Files("101PHOTO", 1); },
         .listed = {.files = 2, .next = "101PHOTO/KVR_0002.JPG"},
         .told = {0, 1, 0}},
        {.name = "ALinkToAnotherPicture",
         .why = "protection goes through it, deletion does not",
         .make =
             [](CardMaker& card) {
                 card.File("100PHOTO", "KVR_0001.JPG").Link("101PHOTO", "KVR_0001.JPG", "../100PHOTO/KVR_0001.JPG");
             },
         .listed = {.files = 2, .next = "101PHOTO/KVR_0002.JPG"},
         .told = {0, 1, 0}},
        {.name = "ALinkToAFolder",
         .why = "a picture that can be entered",
         .make =
             [](CardMaker& card) {
                 card.File("100PHOTO", "KVR_0001.JPG").Link("101PHOTO", "KVR_0001.JPG", "../100PHOTO");
             },
         .listed = {.files = 2, .next = "101PHOTO/KVR_0002.JPG"},
         .told = {0, 1, 0}},
        {.name = "APipe",
         .why = "whoever opens it to read waits for somebody to write",
         .make = [](CardMaker& card) { card.Special("100PHOTO", "KVR_0001.JPG", S_IFIFO).Files("101PHOTO", 1); },
         .listed = {.files = 2, .next = "101PHOTO/KVR_0002.JPG"},
         .told = {0, 1, 0}},
        {.name = "APipeNamedLikeACompanion",
         .why = "whoever opens it to read waits for somebody to write",
         .make =
             [](CardMaker& card) {
                 card.File("100PHOTO", "KVR_0001.JPG").Special("100PHOTO", "KVR_0001.SRW", S_IFIFO);
             },
         .listed = {.files = 1, .next = "100PHOTO/KVR_0002.JPG"},
         .told = {0, 1, 0}},
        {.name = "APipeNamedLikeAFolder",
         .why = "whoever opens it to read waits for somebody to write",
         .make = [](CardMaker& card) { card.Files("100PHOTO", 1).Special("", "101PHOTO", S_IFIFO); },
         .listed = {.files = 1, .next = "101PHOTO/KVR_0001.JPG"},
         .told = {0, 1, 0}},
        {.name = "ASocket",
         .why = "it cannot be opened",
         .make = [](CardMaker& card) { card.Special("100PHOTO", "KVR_0001.JPG", S_IFSOCK).Files("101PHOTO", 1); },
         .listed = {.files = 2, .next = "101PHOTO/KVR_0002.JPG"},
         .told = {0, 1, 0}},
        {.name = "ACharacterDevice",
         .why = "who opens it may set something going",
         .make = [](CardMaker& card) { card.Special("100PHOTO", "KVR_0001.JPG", S_IFCHR).Files("101PHOTO", 1); },
         .listed = {.files = 2, .next = "101PHOTO/KVR_0002.JPG"},
         .told = {0, 1, 0}},
        {.name = "ABlockDevice",
         .why = "who opens it may set something going",
         .make = [](CardMaker& card) { card.Special("100PHOTO", "KVR_0001.JPG", S_IFBLK).Files("101PHOTO", 1); },
         .listed = {.files = 2, .next = "101PHOTO/KVR_0002.JPG"},
         .told = {0, 1, 0}},
        {.name = "AProtectedFile",
         .why = "a deletion of one file spares it, a deletion of everything does not",
         .make = [](CardMaker& card) { card.Protected("100PHOTO", "KVR_0001.JPG").File("100PHOTO", "KVR_0002.JPG"); },
         .listed = {.files = 2, .next = "100PHOTO/KVR_0003.JPG"}},
        {.name = "NamesInLowerCase",
         .why = "the list writes them in capitals, under which such a file system does not find them",
         .make =
             [](CardMaker& card) {
                 card.File("100PHOTO", "kvr_0001.jpg")
                     .File("100PHOTO", "kvr_0001.srw")
                     .File("101photo", "Kvr_0001.Jpg");
             },
         .listed = {.files = 2, .next = "102PHOTO/KVR_0001.JPG"},
         .told = {0, 1, 0}},
        {.name = "NamesThatDifferInCaseAlone",
         .why = "the list holds one name for both",
         .make = [](CardMaker& card) { card.File("100PHOTO", "kvr_0001.jpg").File("100PHOTO", "KVR_0001.JPG"); },
         .listed = {.files = 1, .next = "100PHOTO/KVR_0002.JPG"},
         .told = {0, 1, 0}},
        {.name = "CompanionsOfAllSorts",
         .why = "several files of one number, of which two make an item and others are left out",
         .make =
             [](CardMaker& card) {
                 for (const char* name : {"KVR_0001.JPG", "KVR_0001.SRW", "KVR_0001.MPO", "KVR_0001.MP4",
                                          "KVR_0002.SRW", "KVR_0002.MPO", "ABCD0003.JPG", "WXYZ0003.SRW"}) {
                     card.File("100PHOTO", name);
                 }
             },
         .listed = {.files = 3, .next = "100PHOTO/KVR_0004.JPG"},
         .told = {0, 1, 0}},
        {.name = "NamesWithTwoExtensions",
         .why = "the kind is read from anywhere in the name",
         .make = [](CardMaker& card) { card.File("100PHOTO", "JPG_0001.MP4").File("100PHOTO", "MPO_0002.AVI"); },
         .listed = {.files = 2, .next = "100PHOTO/KVR_0003.JPG"},
         .told = {0, 1, 0}},
        {.name = "NamesWithControlCharacters",
         .why = "line ends, tabs and escapes in what is printed and logged",
         .make =
             [](CardMaker& card) {
                 card.File("100PHOTO", "\n\r\t\v0001.JPG").File("100PHOTO", "\x1b[2J0002.JPG");
                 card.File("100PHOTO", "%s%n0003.JPG").File("100PHOTO", "KVR_0004\nJPG");
             },
         .listed = {.files = 4, .next = "100PHOTO/KVR_0005.JPG"},
         .told = {0, 1, 0}},
        {.name = "NamesWithLineEndsInCamera",
         .why = "one name is several lines of output",
         .make = [](CardMaker& card) { card.File("Camera", "2024\n501_101010.JPG").File("Camera", "\n"); },
         .listed = {.files = 1, .next = "100PHOTO/KVR_0001.JPG"},
         .listedWithoutCamera = Listed{},
         .told = {0, 1, 0}},
        {.name = "NamesInInvalidUtf8",
         .why = "bytes that are no text in any encoding of today",
         .make =
             [](CardMaker& card) {
                 card.File("100PHOTO", "\xff\xfe\xc0\x80"
                                       "0001.JPG")
                     .File("Camera", "\xf5\x80\xe2\x82\xc3\x28\xa0\xa1_101010.JPG");
             },
         .listed = {.files = 2, .next = "100PHOTO/KVR_0002.JPG"},
         .listedWithoutCamera = Listed{.files = 1}},
        {.name = "NamesOfTheGreatestLength",
         .why = "255 bytes are more than any buffer of a path here holds",
         .make =
             [](CardMaker& card) {
                 card.File("100PHOTO", std::string(255, '1')).File("100PHOTO", LongName(255));
                 card.File("Camera", LongName(255)).File(std::string(255, '1'), "KVR_0001.JPG");
                 card.File("100PHOTO", "KVR_0001.JPG");
             },
         .listed = {.files = 1, .next = "100PHOTO/KVR_0002.JPG"},
         .told = {0, 1, 0}},
        {.name = "NamesOfCameraAroundTheirLength",
         .why = "only 19 bytes are a name there",
         .make =
             [](CardMaker& card) {
                 for (const std::size_t length : {19U, 20U, 29U, 30U, 40U, 41U}) {
                     card.File("Camera", LongName(length));
                 }
             },
         .listed = {.files = 1, .next = "100PHOTO/KVR_0001.JPG"},
         .listedWithoutCamera = Listed{},
         .told = {0, 1, 0}},
    };
}

} // namespace dcftest
