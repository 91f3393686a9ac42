// Cards of the gallery in use; see the header.
#include "MadeCard.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <system_error>

#include "PrivateMount.h"

namespace dcftest {
namespace {

namespace fs = std::filesystem;

// Small, so that it is soon full, and with room for the folder that a card stands in.
constexpr char kMountOptions[] = "mode=0755,size=1m,nr_inodes=64";

/// Armed in the child that uses the card.
PosixSeam* g_seam = nullptr;

void Need(bool done, const std::string& what) {
    if (!done) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

bool HasMount(Circumstance circumstance) {
    return circumstance == Circumstance::kReadOnlyMount || circumstance == Circumstance::kFullMount;
}

void BecomeOrdinary() {
    if (::geteuid() == 0) {
        Need(::setgroups(0, nullptr) == 0 && ::setgid(kNobody) == 0 && ::setuid(kNobody) == 0, "another user");
    }
}

std::ptrdiff_t OpenDescriptors() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

} // namespace

MadeCard::MadeCard(const AwkwardCard& card) : m_card(card) {
    if (HasMount(card.circumstance)) {
        EnterPrivateMounts();
    }
    Make();
}

MadeCard::~MadeCard() {
    Unmake();
}

void MadeCard::MakeAnew() {
    Unmake();
    Make();
}

void MadeCard::Make() {
    m_card.rootLength > 0 ? m_place.emplace(m_card.rootLength) : m_place.emplace();
    const std::string& place = m_place->Root();
    Need(::chmod(place.c_str(), 0755) == 0, place);
    if (HasMount(m_card.circumstance)) {
        Need(::mount("card", place.c_str(), "tmpfs", 0, kMountOptions) == 0, "mounting " + place);
    }
    m_root = m_card.rootLength > 0 ? place : place + "/" + (*m_card.rootFolder != 0 ? m_card.rootFolder : "card");
    fs::create_directories(m_root);
    CardMaker maker(m_root);
    m_card.make(maker);
    if (m_card.circumstance == Circumstance::kFullMount) {
        FillUp();
    }
}

void MadeCard::Unmake() {
    if (m_place.has_value() && HasMount(m_card.circumstance)) {
        (void)::umount2(m_place->Root().c_str(), MNT_DETACH); // else its folder stays
    }
    m_place.reset();
}

void MadeCard::FillUp() const {
    for (int number = 0;; ++number) {
        const std::string path = m_place->Root() + "/full" + std::to_string(number);
        const int handle = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
        if (handle < 0) {
            Need(errno == ENOSPC && number > 0, path);
            return;
        }
        (void)::close(handle); // nothing was written
    }
}

CardEntries MadeCard::Look() const {
    CardEntries entries;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(m_root)) {
        struct stat status {};
        Need(::lstat(entry.path().c_str(), &status) == 0, entry.path());
        entries[entry.path()] = {status.st_ino, status.st_mode};
    }
    return entries;
}

bool MadeCard::TakesChanges() const {
    return m_card.circumstance == Circumstance::kNone || m_card.circumstance == Circumstance::kFullMount;
}

std::optional<unsigned> MadeCard::User() const {
    const bool other = m_card.circumstance == Circumstance::kOrdinaryUser && ::geteuid() == 0;
    return other ? std::optional(kNobody) : std::nullopt;
}

void MadeCard::Remount(unsigned long flags) const {
    Need(::mount("card", m_place->Root().c_str(), nullptr, MS_REMOUNT | flags, nullptr) == 0, "mounting again");
}

void MadeCard::Sealed(const std::function<void()>& piece) {
    const bool readOnly = m_card.circumstance == Circumstance::kReadOnlyMount;
    if (readOnly) {
        Remount(MS_RDONLY);
    }
    piece();
    if (readOnly) {
        Remount(0);
    }
}

Ending MadeCard::Use(const std::function<void(CSFileList&)>& piece) {
    Ending ending;
    Sealed([&] {
        ending = RunInChild([&] {
            if (m_card.circumstance == Circumstance::kOrdinaryUser) {
                BecomeOrdinary();
            }
            const std::ptrdiff_t descriptors = OpenDescriptors();
            {
                PosixSeam seam;
                g_seam = &seam;
                CSFileList list;
                ASSERT_EQ(list.SetBaseURI(m_root.c_str()), 0);
                piece(list);
            }
            EXPECT_EQ(OpenDescriptors(), descriptors);
        });
    });
    if (fs::exists(m_root + ".away")) {
        fs::rename(m_root + ".away", m_root);
    }
    return ending;
}

void MadeCard::AfterListing() const {
    if (m_card.circumstance == Circumstance::kTakenOut) {
        fs::rename(m_root, m_root + ".away");
    } else if (m_card.circumstance == Circumstance::kFailing) {
        g_seam->FailFrom(PosixSeam::kEveryCardCall, EIO);
    }
}

} // namespace dcftest
