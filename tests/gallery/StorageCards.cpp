// Awkward cards: where the card is, and what it allows.
#include "AwkwardCard.h"

namespace dcftest {
namespace {

constexpr Told kAccepted = {0, 0, 0};
constexpr Told kRefused = {3, 1, 3};

void TwoFolders(CardMaker& card) {
    card.File("101PHOTO", "KVR_0001.JPG").File("100PHOTO", "KVR_0002.JPG").File("100PHOTO", "KVR_0001.JPG");
    card.File("100PHOTO", "KVR_0001.SRW");
}

void WithCamera(CardMaker& card) {
    card.File("100PHOTO", "KVR_0001.JPG").File("Camera", "20240501_101010.JPG");
}

AwkwardCard AtLength(const char* name, const char* why, std::size_t length, Listed listed, Listed withoutCamera,
                     Told told) {
    return {.name = name,
            .why = why,
            .make = WithCamera,
            .listed = listed,
            .listedWithoutCamera = withoutCamera,
            .told = told,
            .rootLength = length};
}

} // namespace

AwkwardCards StorageCards() {
    return {
        {.name = "TakenOut",
         .why = "the card is gone behind the listing",
         .make = TwoFolders,
         .listed = {.files = 3, .next = "101PHOTO/KVR_0002.JPG"},
         .circumstance = Circumstance::kTakenOut},
        {.name = "Failing",
         .why = "every call gives an error behind the listing",
         .make = TwoFolders,
         .listed = {.files = 3, .next = "101PHOTO/KVR_0002.JPG"},
         .circumstance = Circumstance::kFailing},
        {.name = "ReadOnlyMount",
         .why = "nothing can be changed, and the list says so to nobody",
         .make = TwoFolders,
         .listed = {.files = 3, .next = "101PHOTO/KVR_0002.JPG"},
         .circumstance = Circumstance::kReadOnlyMount},
        {.name = "ReadOnlyMountWithoutDcim",
         .why = "the folder cannot be made",
         .make = [](CardMaker&) {},
         .listed = {.next = "100PHOTO/KVR_0001.JPG"},
         .told = {4, 4, 4},
         .circumstance = Circumstance::kReadOnlyMount},
        {.name = "FullMount",
         .why = "the next directory cannot be made, and is entered all the same",
         .make = [](CardMaker& card) { card.File("100PHOTO", "KVR_9999.JPG"); },
         .listed = {.files = 1, .next = "101PHOTO/KVR_0001.JPG"},
         .circumstance = Circumstance::kFullMount},
        {.name = "CameraInTheRoot",
         .why = "every path is taken for one of Camera",
         .make = WithCamera,
         .listed = {.files = 1, .next = kFatal},
         .listedWithoutCamera = Listed{},
         .told = {3, 1, 3},
         .rootFolder = "xCamera"},
        {.name = "PhotoInTheRoot",
         .why = "every folder has PHOTO in its path, so one of a number is let in",
         .make = [](CardMaker& card) { card.File("100AAAAA", "KVR_0001.JPG").File("100BBBBB", "KVR_0002.JPG"); },
         .listed = {.files = 1, .next = "101PHOTO/KVR_0001.JPG"},
         .told = {5, 1, 5},
         .rootFolder = "PHOTOS"},
        AtLength("RootOf66", "the longest with which all paths are whole", 66,
                 {.files = 2, .next = "100PHOTO/KVR_0002.JPG"}, {.files = 1}, kAccepted),
        AtLength("RootOf67", "paths in Camera lose their last letter", 67,
                 {.files = 2, .next = "100PHOTO/KVR_0002.JPG"}, {.files = 1}, kRefused),
        AtLength("RootOf71", "the longest with which the paths of directories are whole", 71,
                 {.files = 2, .walking = "cannot found fnum = 10101", .unknown = 1, .next = "100PHOTO/KVR_0002.JPG"},
                 {.files = 1}, kRefused),
        AtLength("RootOf72", "all paths lose their last letter", 72,
                 {.files = 2, .walking = "cannot found fnum = 1010", .unknown = 1, .next = "100PHOTO/KVR_0002.JPG"},
                 {.files = 1}, kRefused),
        AtLength("RootOf75", "the longest with which the number is in the path", 75,
                 {.files = 2, .walking = "cannot found fnum = 1", .unknown = 1, .next = "100PHOTO/KVR_0002.JPG"},
                 {.files = 1}, kRefused),
        AtLength("RootOf76", "the number loses its last digit", 76,
                 {.files = -1, .listing = "cannot found fnum = 0", .next = kFatal},
                 {.files = -1, .listing = "cannot found fnum = 0", .next = kFatal}, kRefused),
        AtLength("RootOf84", "the longest with which the path of a directory is whole", 84,
                 {.files = -1, .listing = "cannot found fnum = 0", .next = kFatal},
                 {.files = -1, .listing = "cannot found fnum = 0", .next = kFatal}, kRefused),
        AtLength("RootOf85", "the path of a directory is cut: it cannot be listed", 85,
                 {.files = -1, .listing = "cannot found fnum = 0", .next = kFatal}, {}, kRefused),
        AtLength("RootOf93", "the longest with which the path of DCIM is whole", 93,
                 {.next = "100PHOTO/KVR_0001.JPG", .nextTaken = true}, {.next = "100PHOTO/KVR_0001.JPG"}, kRefused),
        AtLength("RootOf94", "the path of DCIM is cut: a folder DCI is made", 94, {}, {}, kRefused),
        AtLength("RootOf97", "the longest that is taken; it stands for DCIM itself", 97, {}, {}, kRefused),
    };
}

} // namespace dcftest
