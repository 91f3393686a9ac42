// MountedCard: what the tests on a real FAT or exFAT file system share. They run in the machine that scripts/card-tests
// boots, as root, and mount its cards themselves, each with the options that are its subject. Mounting again drops what
// the kernel remembers, so that a test sees what is on the card. Anywhere else these tests are skipped. One thread.
#ifndef TESTS_CARDS_MOUNTED_CARD_H
#define TESTS_CARDS_MOUNTED_CARD_H

#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Change.h"

namespace dcftest {

/// Mounts a device of the machine at /card, and nothing else there. @param options as mount(8) takes them with -o.
void MountCard(const std::string& device, const std::string& options);
/// Nothing is at /card any more.
void UnmountCard();
/// The kernel's name of the cards' file system, "vfat" or "exfat"; empty outside of the machine.
std::string CardFileSystem();
inline bool IsFat() {
    return CardFileSystem() == "vfat";
}

inline constexpr char kCardDevice[] = "/dev/vda";      ///< An empty card of ordinary size.
inline constexpr char kSmallCardDevice[] = "/dev/vdb"; ///< One that is soon full.
inline constexpr char kCardFolder[] = "/card";

/// A test over an empty card that is mounted without options.
class MountedCardTest : public testing::Test {
protected:
    explicit MountedCardTest(std::string device = kCardDevice) : m_device(std::move(device)) {}

    void SetUp() override {
        if (CardFileSystem().empty()) {
            GTEST_SKIP() << "this runs in the machine of scripts/card-tests";
        }
        StartAfresh();
        Mount("");
        card.emplace();
        ASSERT_EQ(card->Root().rfind(kCardFolder, 0), 0U) << "TMPDIR is to name the card";
    }

    void TearDown() override {
        if (card) {
            Mount("");
            card.reset();
            UnmountCard();
        }
    }

    /// From now on the card is mounted with these options alone.
    void Mount(const std::string& options) {
        list.reset();
        MountCard(m_device, options);
    }

    /// Lists the card anew. @return the number of files.
    int List() {
        list = std::make_unique<CSFileList>();
        EXPECT_EQ(list->SetBaseURI(card->Root().c_str()), 0);
        const int count = list->Listup();
        (void)TakeLog();
        return count;
    }

    CSFileListItem ItemOf(int position) {
        CSFileListItem item;
        EXPECT_EQ(list->GetAt(position, &item), 0);
        return item;
    }

    bool Protected(int position) {
        return ItemOf(position).m_bProtect;
    }

    /// Takes the next name. @return the path below "DCIM", or the result.
    std::string NextName() {
        std::array<char, 396> out{};
        const int result = list->GetNewFileName(out.data(), FILE_TYPE_JPG);
        return result == 0 ? Relative(*card, out.data()) : std::to_string(result);
    }

    /// Writes a picture under a path below "DCIM". @return 0 or the errno.
    int Write(const std::string& path, std::size_t bytes = 1000);

    std::optional<Card> card;
    std::unique_ptr<CSFileList> list;

private:
    std::string m_device;
};

} // namespace dcftest

#endif
