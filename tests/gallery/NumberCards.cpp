// Awkward cards: numbers that are shared, used up, 0, or too many.
#include "AwkwardCard.h"
#include "Card.h"

namespace dcftest {
namespace {

/// Makes folders with one file each, in this order, all the files of one name or each of its own.
std::function<void(CardMaker&)> Folders(const std::vector<const char*>& names, bool sameFile) {
    return [names, sameFile](CardMaker& card) {
        int number = 0;
        for (const char* name : names) {
            card.File(name, DcfName(sameFile ? 1 : ++number));
        }
    };
}

AwkwardCard Zeros(const char* name, const char* why, const std::vector<const char*>& files, Listed listed, Told told) {
    return {.name = name,
            .why = why,
            .make =
                [files](CardMaker& card) {
                    for (const char* file : files) {
                        card.File("100PHOTO", file);
                    }
                },
            .listed = listed,
            .told = told};
}

} // namespace

AwkwardCards NumberCards() {
    return {
        {.name = "OneNumberBothWithoutPhoto",
         .why = "both are listed, and the files of the second cannot be found by their numbers",
         .make = Folders({"100AAAAA", "100BBBBB"}, false),
         .listed = {.files = 2, .walking = "cannot found fnum = 1", .unknown = 1, .next = "101PHOTO/KVR_0001.JPG"},
         .told = {5, 1, 0}},
        {.name = "OneNumberBothWithoutPhotoMadeTheOtherWayRound",
         .why = "the order on the card must not matter",
         .make = Folders({"100BBBBB", "100AAAAA"}, false),
         .listed = {.files = 2, .walking = "cannot found fnum = 2", .unknown = 1, .next = "101PHOTO/KVR_0001.JPG"},
         .told = {5, 1, 0}},
        {.name = "OneNumberBothWithTheSameFile",
         .why = "the file of the second is taken for that of the first",
         .make = Folders({"100AAAAA", "100BBBBB"}, true),
         .listed = {.files = 2, .mistaken = 1, .next = "101PHOTO/KVR_0001.JPG"},
         .told = {5, 1, 0}},
        {.name = "OneNumberPhotoFirst",
         .why = "a folder with PHOTO keeps a later one of its number out",
         .make = Folders({"100AAAAA", "100PHOTO"}, true),
         .listed = {.files = 1, .next = "100PHOTO/KVR_0002.JPG"},
         .told = {5, 1, 5}},
        {.name = "OneNumberPhotoFirstMadeTheOtherWayRound",
         .why = "the order on the card must not matter",
         .make = Folders({"100PHOTO", "100AAAAA"}, true),
         .listed = {.files = 1, .next = "100PHOTO/KVR_0002.JPG"},
         .told = {5, 1, 5}},
        {.name = "OneNumberPhotoLast",
         .why = "a folder without PHOTO lets a later one of its number in",
         .make = Folders({"100PHOTO", "100ZZZZZ"}, true),
         .listed = {.files = 2, .mistaken = 1, .next = "100ZZZZZ/KVR_0002.JPG"},
         .told = {5, 1, 0}},
        {.name = "OneNumberPhotoLastMadeTheOtherWayRound",
         .why = "the order on the card must not matter",
         .make = Folders({"100ZZZZZ", "100PHOTO"}, true),
         .listed = {.files = 2, .mistaken = 1, .next = "100ZZZZZ/KVR_0002.JPG"},
         .told = {5, 1, 0}},
        {.name = "OneNumberThreeTimes",
         .why = "the last of them is kept out by the one in the middle",
         .make = Folders({"100AAAAA", "100PHOTO", "100ZZZZZ"}, false),
         .listed = {.files = 2, .walking = "cannot found fnum = 2", .unknown = 1, .next = "100ZZZZZ/KVR_0004.JPG"},
         .told = {5, 1, 5}},
        {.name = "OneNumberFirstOfThemEmpty",
         .why = "the file that a listing begins with is in the second of them",
         .make = [](CardMaker& card) { card.Folder("100ZZZZZ").File("100AAAAA", "KVR_0001.JPG"); },
         .listed = {.files = -1, .listing = "cannot found fnum = 1", .next = kFatal},
         .told = {3, 1, 3}},
        {.name = "OneNumberBelowAnother",
         .why = "browsing begins well and ends at the folder that cannot be told apart",
         .make = Folders({"100AAAAA", "100BBBBB", "101PHOTO"}, false),
         .listed = {.files = 3, .walking = "cannot found fnum = 1", .unknown = 1, .next = "101PHOTO/KVR_0004.JPG"},
         .told = {5, 1, 0}},
        {.name = "TheNumberOfCamera",
         .why = "its name passes for directory 99, and Camera has that number too",
         .make = [](CardMaker& card) { card.File("0990ABCD", "KVR_0001.JPG").File("Camera", "20240501_101010.JPG"); },
         .listed = {.files = 2, .walking = "cannot found fnum = 101010", .unknown = 1, .next = "100PHOTO/KVR_0001.JPG"},
         .listedWithoutCamera = Listed{},
         .told = {5, 1, 0}},
        {.name = "TheNumberOfCameraAndZero",
         .why = "a number 0 in a folder that passes for Camera",
         .make = [](CardMaker& card) { card.File("0990ABCD", "KVR_0000.JPG").File("0990ABCD", "KVR_0001.JPG"); },
         .listed = {.files = 2, .next = "100PHOTO/KVR_0001.JPG"},
         .listedWithoutCamera = Listed{},
         .told = {0, 1, 0}},
        Zeros("ZeroAlone", "a number equal to the start value is dropped", {"KVR_0000.JPG"},
              {.next = "100PHOTO/KVR_0001.JPG"}, {5, 1, 5}),
        Zeros("ZeroWithACompanionAlone", "there is no item to attach it to", {"KVR_0000.JPG", "KVR_0000.SRW"},
              {.next = "100PHOTO/KVR_0001.JPG"}, {5, 1, 5}),
        Zeros("ZeroAsRawFileAlone", "there is no item to attach it to", {"KVR_0000.SRW"},
              {.next = "100PHOTO/KVR_0001.JPG"}, {5, 1, 5}),
        Zeros("ZeroAsMultiPictureAlone", "there is no item to attach it to", {"KVR_0000.MPO"},
              {.next = "100PHOTO/KVR_0001.JPG"}, {5, 1, 5}),
        Zeros("ZeroBesideOthers", "it is listed behind them, and no cursor stands on it",
              {"KVR_0000.JPG", "KVR_0001.JPG", "KVR_0002.JPG"},
              {.files = 3, .walking = "invalid cursor", .next = "100PHOTO/KVR_0003.JPG"}, {0, 1, 0}),
        Zeros("ZeroWithACompanionBesideOthers", "it is listed behind them, and no cursor stands on it",
              {"KVR_0000.JPG", "KVR_0000.SRW", "KVR_0001.JPG"},
              {.files = 2, .walking = "invalid cursor", .next = "100PHOTO/KVR_0002.JPG"}, {0, 1, 0}),
        {.name = "ZeroInEveryFolder",
         .why = "dropped in one folder, listed in the next",
         .make =
             [](CardMaker& card) {
                 card.File("102PHOTO", "KVR_0000.JPG")
                     .File("101PHOTO", "KVR_0000.JPG")
                     .File("101PHOTO", "KVR_0001.JPG");
                 card.File("100PHOTO", "KVR_0000.JPG");
             },
         .listed = {.files = 2, .walking = "invalid cursor", .next = "102PHOTO/KVR_0001.JPG"},
         .told = {5, 1, 5}},
        {.name = "MidnightInCamera",
         .why = "there a number 0 is a time of day",
         .make =
             [](CardMaker& card) { card.File("Camera", "20240501_000000.JPG").File("Camera", "20240501_000001.JPG"); },
         .listed = {.files = 1, .next = "100PHOTO/KVR_0001.JPG"},
         .listedWithoutCamera = Listed{},
         .told = {5, 1, 5}},
        {.name = "OneTimeTwiceInCamera",
         .why = "two days, one number",
         .make =
             [](CardMaker& card) {
                 card.File("Camera", "20240501_101010.JPG").File("Camera", "20240501_111111.JPG");
                 card.File("Camera", "20240502_101010.JPG");
             },
         .listed = {.files = 3, .mistaken = 1, .next = "100PHOTO/KVR_0001.JPG"},
         .listedWithoutCamera = Listed{},
         .told = {0, 1, 0}},
        {.name = "TheLastNumber",
         .why = "there is no next one",
         .make = [](CardMaker& card) { card.File("999PHOTO", "KVR_9999.JPG"); },
         .listed = {.files = 1},
         .told = {0, 1, 0}},
        {.name = "TheLastNumberOfAFolder",
         .why = "the next one is in the next folder",
         .make = [](CardMaker& card) { card.File("100PHOTO", "KVR_9999.JPG"); },
         .listed = {.files = 1, .next = "101PHOTO/KVR_0001.JPG"}},
        {.name = "AFullFolder",
         .why = "as many files as numbers",
         .make = [](CardMaker& card) { card.Files("100PHOTO", 9999); },
         .listed = {.files = 9999, .next = "101PHOTO/KVR_0001.JPG"},
         .told = {0, 1, 0}},
        {.name = "AHundredThousandFiles",
         .why = "as many files as the list takes",
         .make =
             [](CardMaker& card) {
                 for (int number = 100; number < 110; ++number) {
                     card.Files(DirName(number, "PHOTO"), 9999);
                 }
                 card.Files("110PHOTO", 10);
             },
         .listed = {.files = 100000},
         .told = {0, 1, 0}},
        {.name = "AllFolders",
         .why = "as many folders as numbers",
         .make =
             [](CardMaker& card) {
                 for (int number = 100; number <= 999; ++number) {
                     card.File(DirName(number, "PHOTO"), DcfName(1));
                 }
             },
         .listed = {.files = 900, .next = "999PHOTO/KVR_0002.JPG"}},
    };
}

} // namespace dcftest
