// The preference store of a workstation: an input is what lies on the disk. Its first byte says in which shape (bits
// below), the next two how many bytes are the store's; what follows those is the journal that a power cut would have
// left. It is read and written through the platform functions. A write that succeeds is read back; one that fails and
// every complaint is one line; and files that are not the store's stay as they are, whatever the bytes say.
#include <fcntl.h>
#include <pref.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "Target.h"

extern "C" void __sanitizer_set_report_fd(void* fd) __attribute__((weak));

namespace dcffuzz {
namespace {

namespace fs = std::filesystem;

constexpr int kGroup = 3;
constexpr int kKey = 512;
constexpr long kValue = 10100042;

enum Shape : unsigned {
    kWithJournal = 1U << 0U,
    kStoreIsLink = 1U << 1U,     ///< To a file beside it that holds the bytes; it is not followed.
    kJournalIsLink = 1U << 2U,   ///< To the bystander, whatever bytes are there.
    kWriteFirst = 1U << 3U,      ///< Nobody looks before the write.
    kOtherPreferences = 1U << 4U ///< Other groups and keys are asked for, too.
};

/// A folder with a store and somebody else's file.
class Place {
public:
    Place() {
        const char* parent = std::getenv("TMPDIR");
        m_folder = std::string(parent != nullptr ? parent : "/tmp") + "/dcf-store-XXXXXX";
        Require(::mkdtemp(m_folder.data()) != nullptr, "there is no place for a store");
        (void)::setenv("DCF_PREFERENCES", Store().c_str(), 1);
    }
    ~Place() {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    const std::string& Folder() const {
        return m_folder;
    }
    std::string Store() const {
        return m_folder + "/preferences.sqlite";
    }
    std::string Journal() const {
        return Store() + "-journal";
    }
    std::string Target() const {
        return m_folder + "/elsewhere";
    }
    std::string Bystander() const {
        return m_folder + "/bystander";
    }
    void Clear() const {
        for (const fs::directory_entry& entry : fs::directory_iterator(m_folder)) {
            fs::remove_all(entry.path());
        }
    }
    std::size_t Files() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()));
    }

private:
    std::string m_folder;
};

void Write(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string Read(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

const std::string kBystander = "somebody's own file\n";

/// What is written to standard error while it stands. The sanitizers report to the real one.
class Complaints {
public:
    Complaints() : m_saved(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3)), m_heard(::memfd_create("stderr", MFD_CLOEXEC)) {
        Require(m_saved >= 0 && m_heard >= 0 && ::dup2(m_heard, STDERR_FILENO) >= 0, "nothing can be heard");
        if (__sanitizer_set_report_fd != nullptr) {
            __sanitizer_set_report_fd(reinterpret_cast<void*>(static_cast<std::intptr_t>(m_saved)));
        }
    }
    ~Complaints() {
        if (__sanitizer_set_report_fd != nullptr) {
            __sanitizer_set_report_fd(reinterpret_cast<void*>(std::intptr_t{STDERR_FILENO}));
        }
        (void)::dup2(m_saved, STDERR_FILENO);
        (void)::close(m_saved);
        (void)::close(m_heard);
    }
    Complaints(const Complaints&) = delete;
    Complaints& operator=(const Complaints&) = delete;

    std::string Take() const {
        std::string text(static_cast<std::size_t>(::lseek(m_heard, 0, SEEK_END)), '\0');
        (void)::pread(m_heard, text.data(), text.size(), 0);
        Require(::ftruncate(m_heard, 0) == 0 && ::lseek(m_heard, 0, SEEK_SET) == 0, "nothing can be heard");
        return text;
    }

private:
    int m_saved;
    int m_heard;
};

bool IsOneLine(const std::string& text) {
    return !text.empty() && std::count(text.begin(), text.end(), '\n') == 1 && text.back() == '\n' &&
           std::none_of(text.begin(), text.end() - 1, [](char c) { return (c >= 0 && c < ' ') || c == '\x7f'; });
}

struct Answer {
    long value = 0;
    std::string complaint;
};

Answer Get(int group, int key) {
    const Complaints complaints;
    Answer answer;
    answer.value = pref_get_long(group, key);
    answer.complaint = complaints.Take();
    return answer;
}

Answer Set(int group, int key, long value) {
    const Complaints complaints;
    Answer answer;
    answer.value = pref_set_long(group, key, value);
    answer.complaint = complaints.Take();
    return answer;
}

void CheckRead(int group, int key) {
    const Answer answer = Get(group, key);
    Require(answer.complaint.empty() || (answer.value == 0 && IsOneLine(answer.complaint)),
            "a read complains of " + Visible(answer.complaint) + " and gives " + std::to_string(answer.value));
}

void CheckWrite() {
    const Answer before = Get(kGroup, kKey + 1);
    const Answer written = Set(kGroup, kKey, kValue);
    Require(written.value == 0 ? written.complaint.empty() : written.value == -1 && IsOneLine(written.complaint),
            "a write gives " + std::to_string(written.value) + " and complains of " + Visible(written.complaint));
    if (written.value != 0) {
        return;
    }
    const Answer read = Get(kGroup, kKey);
    Require(read.value == kValue && read.complaint.empty(), "what was stored is read as " + std::to_string(read.value));
    const Answer after = Get(kGroup, kKey + 1);
    Require(!before.complaint.empty() || after.value == before.value, "another value has changed");
}

/// Somebody else's file, as far as its header tells. An empty one, and one of zeros, may be a store that was begun.
bool IsForeign(const std::string& bytes) {
    const std::string header = bytes.substr(0, 100);
    const bool blank = std::all_of(header.begin(), header.end(), [](char c) { return c == '\0'; });
    return !blank && (header.compare(0, 16, std::string("SQLite format 3\0", 16)) != 0 ||
                      bytes.substr(std::min<std::size_t>(bytes.size(), 68), 4) != "DCFP");
}

/// The working folder is the store's while it stands: a name that the bytes hold is then that of a file beside it.
class WorkingFolder {
public:
    explicit WorkingFolder(const std::string& path) : m_before(::open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        Require(m_before >= 0 && ::chdir(path.c_str()) == 0, "there is no way to the store");
    }
    ~WorkingFolder() {
        Require(::fchdir(m_before) == 0, "there is no way back");
        (void)::close(m_before);
    }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

private:
    int m_before;
};

void Run(const Place& place, unsigned shape, const std::string& store, const std::string& journal) {
    place.Clear();
    const WorkingFolder here(place.Folder());
    const std::string file = (shape & kStoreIsLink) != 0 ? place.Target() : place.Store();
    Write(file, store);
    Write(place.Bystander(), kBystander);
    if ((shape & kStoreIsLink) != 0) {
        fs::create_symlink(file, place.Store());
    }
    if ((shape & kJournalIsLink) != 0) {
        fs::create_symlink(place.Bystander(), place.Journal());
    } else if ((shape & kWithJournal) != 0) {
        Write(place.Journal(), journal);
    }
    if ((shape & kStoreIsLink) != 0) {
        Require(Get(kGroup, kKey).value == 0 && Set(kGroup, kKey, kValue).value == -1, "a link was followed");
        Require(Read(file) == store, "what a link names was changed");
    }
    const std::size_t files = place.Files();
    if ((shape & kWriteFirst) == 0) {
        CheckRead(kGroup, kKey);
    }
    if ((shape & kOtherPreferences) != 0) {
        CheckRead(0, 0);
        CheckRead(-1, 2147483647);
    }
    const bool journalIsThere = (shape & (kJournalIsLink | kWithJournal)) != 0;
    Require(journalIsThere || Read(file) == store, "a read changed the store");
    CheckWrite();
    Require(!IsForeign(store) || Read(file) == store, "a file that is no store was changed");
    Require(Read(place.Bystander()) == kBystander, "a file that is not the store was changed");
    Require(place.Files() <= files, "there are more files than before");
}

} // namespace
} // namespace dcffuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace dcffuzz;
    SetUpOnce();
    static const Place place;
    constexpr std::size_t kHead = 3;
    if (size < kHead) {
        return 0;
    }
    const std::string bytes(data + kHead, data + size);
    const std::size_t length = std::min<std::size_t>(data[1] + 256U * data[2], bytes.size());
    Run(place, data[0], bytes.substr(0, length), bytes.substr(length));
    return 0;
}
