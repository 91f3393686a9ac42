#include "HostileCard.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "RandomCard.h"

namespace dcffuzz {

namespace {

using dcftest::CardFile;
using dcftest::CardFolder;
using dcftest::Dice;
using dcftest::Special;

constexpr int kMostFolders = 7;
constexpr int kMostFiles = 12;

/// One draw per statement throughout: in one expression the order would be the compiler's.
std::string RawName(Dice& dice, int length) {
    std::string name;
    for (int i = 0; i < length; ++i) {
        const char c = static_cast<char>(dice.Pick(0, 255));
        name += c == '\0' ? '0' : c == '/' ? '_' : c;
    }
    return name == "." || name == ".." ? "dot" : name;
}

std::string Digits(Dice& dice, int most, std::size_t width) {
    const std::string digits = std::to_string(dice.Pick(0, most));
    return std::string(width - std::min(width, digits.size()), '0') + digits;
}

std::string FolderName(Dice& dice) {
    switch (dice.Pick(0, 4)) {
    case 0: {
        const std::string number = Digits(dice, 999, 3);
        return number + RawName(dice, 5);
    }
    case 1:
        return RawName(dice, 8);
    case 2: {
        const int length = dice.Pick(1, 255);
        return RawName(dice, length);
    }
    default:
        return dcftest::RandomFolderName(dice);
    }
}

std::string FileName(Dice& dice, const std::string& folder) {
    switch (dice.Pick(0, 5)) {
    case 0: {
        std::string name = RawName(dice, 4);
        name += Digits(dice, 9999, 4);
        name += ".";
        return name + dice.Of<std::string>({"JPG", "SRW", "MPO", "MP4", "AVI", "jpg", "srw"});
    }
    case 1: {
        std::string name = RawName(dice, 16);
        return name + dice.Of<std::string>({"JPG", "SRW", "MPO", "jpg"});
    }
    case 2:
        return RawName(dice, 12);
    case 3: {
        const int length = dice.Pick(1, 255);
        return RawName(dice, length);
    }
    default:
        return dcftest::RandomFileName(dice, folder);
    }
}

CardFile File(Dice& dice, bool mayBeLink) {
    CardFile file;
    file.mode = dice.Of<mode_t>({0644, 0444, 0000, 0200, 0777, 0555, 04755, 01644});
    file.time = static_cast<std::uint32_t>(dice.Pick(0, 2147483647));
    switch (dice.Pick(0, 15)) {
    case 0:
        file.folder = true;
        break;
    case 1:
        file.special = Special::Pipe;
        break;
    case 2:
        file.special = mayBeLink ? Special::Link : Special::None;
        break;
    case 3:
        file.special = Special::DanglingLink;
        file.time = 0; // there is nothing that could tell one
        break;
    default:
        break;
    }
    return file;
}

void MakeOtherKind(Dice& dice, CardFolder& folder) {
    const int kind = dice.Pick(0, 23);
    folder.plain = kind < 3;
    folder.special = kind == 0   ? Special::Pipe
                     : kind == 1 ? Special::DanglingLink
                     : kind == 3 ? Special::Link
                                 : Special::None;
    folder.mode = folder.plain ? 0644 : 0755;
}

} // namespace

void DrawHostileCard(Dice& dice, Ranks ranks, dcftest::ReferenceCard& card) {
    card.dcim = dice.Pick(0, 31) != 31;
    for (int i = 0; card.dcim && i < kMostFolders && dice.Pick(0, 7) != 0; ++i) {
        const std::string name = FolderName(dice);
        if (card.folders.count(name) > 0) {
            continue;
        }
        CardFolder& folder = card.folders[name];
        MakeOtherKind(dice, folder);
        for (int j = 0; !folder.plain && j < kMostFiles && dice.Pick(0, 7) != 0; ++j) {
            const std::string file = FileName(dice, name);
            const CardFile content = File(dice, folder.special == Special::None);
            if (ranks == Ranks::Any ? folder.files.count(file) == 0 : dcftest::CanHold(folder, file)) {
                folder.files[file] = content;
            }
        }
    }
}

} // namespace dcffuzz
