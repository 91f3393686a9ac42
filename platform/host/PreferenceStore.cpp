// The store itself. Every access opens it, looks whether it is a sound store, does its work in one transaction and
// closes it again: nothing is held between calls, so a fork, another process or a removed store is no trouble.
//
// Durable means: SQLite's rollback journal with synchronous=EXTRA. The journal is synced before the store changes, the
// store before the journal is deleted, and (what EXTRA adds to FULL) the folder after the journal has been deleted;
// without that last step a power cut could bring the journal back, and with it the old value.
#include "PreferenceStore.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

namespace host {

namespace {

constexpr std::uint32_t kApplicationId = 0x44434650; // "DCFP" in the header of the file
constexpr std::uint32_t kVersion = 1;
constexpr int kBusyTimeoutMs = 10000;

// Every number is in a row twice, the second time inverted. SQLite fills the mirrors, and its check, which knows the
// damaged page but not the damaged number, compares them: so no damaged byte reads as another value.
constexpr char kMarkStore[] = "PRAGMA application_id = 0x44434650;"
                              "PRAGMA user_version = 1";
constexpr char kMakeTable[] = "CREATE TABLE preference ("
                              " class INTEGER NOT NULL,"
                              " key INTEGER NOT NULL,"
                              " value INTEGER NOT NULL,"
                              " place_mirror INTEGER AS (~((class << 32) | (key & 0xffffffff))) STORED"
                              " CHECK (place_mirror = ~((class << 32) | (key & 0xffffffff))),"
                              " value_mirror INTEGER AS (~value) STORED CHECK (value_mirror = ~value),"
                              " PRIMARY KEY (class, key)"
                              ") STRICT, WITHOUT ROWID";
constexpr char kSelect[] = "SELECT value FROM preference WHERE class = ?1 AND key = ?2";
constexpr char kInsert[] = "INSERT OR REPLACE INTO preference (class, key, value) VALUES (?1, ?2, ?3)";

constexpr char kForeign[] = "it is not a preference store; move it away or name another file in DCF_PREFERENCES";

constexpr char kNoFile[] = "it is not a file; name one in DCF_PREFERENCES";
constexpr char kLink[] = "it is a link; name the file itself in DCF_PREFERENCES";

StoreError Damaged(const std::string& detail) {
    return StoreError("it is damaged (" + detail + "); put a copy in its place, or move it away to start anew");
}

StoreError Failure(sqlite3* database, int code) {
    const int systemError = database == nullptr ? 0 : sqlite3_system_errno(database);
    const std::string reason = systemError == 0 ? "" : std::string(": ") + std::strerror(systemError);
    switch (code & 0xff) { // the primary code
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return Damaged(sqlite3_errstr(code));
    case SQLITE_FULL:
        return StoreError("the disk is full; make room on it");
    case SQLITE_BUSY:
        return StoreError("another process has it locked; try again when that one is done");
    case SQLITE_READONLY:
        return StoreError("it is write-protected, or its folder is");
    case SQLITE_CANTOPEN:
        return StoreError("it cannot be opened as a database" +
                          (reason.empty() ? ", its path may be too long" : reason));
    default:
        return StoreError(sqlite3_errstr(code) + reason);
    }
}

struct Finalize {
    void operator()(sqlite3_stmt* statement) const {
        (void)sqlite3_finalize(statement); // repeats the error of the last step
    }
};

struct FreeText {
    void operator()(char* text) const {
        std::free(text);
    }
};

struct Close {
    void operator()(sqlite3* database) const {
        (void)sqlite3_close(database); // no statement is left; rolls back what was not committed
    }
};

class Database {
public:
    Database(const std::string& path, int flags) {
        sqlite3* opened = nullptr;
        errno = 0; // SQLite tells it even where no system call failed
        const int code =
            sqlite3_open_v2(path.c_str(), &opened, flags | SQLITE_OPEN_EXRESCODE | SQLITE_OPEN_NOFOLLOW, nullptr);
        m_database.reset(opened);
        Require(code);
        Require(sqlite3_busy_timeout(opened, kBusyTimeoutMs));
        Run("PRAGMA cell_size_check = ON"); // notices more kinds of damage
    }

    void Run(const char* sql) {
        Require(sqlite3_exec(m_database.get(), sql, nullptr, nullptr, nullptr));
    }

    using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

    Statement Prepare(const char* sql) {
        sqlite3_stmt* statement = nullptr;
        Require(sqlite3_prepare_v2(m_database.get(), sql, -1, &statement, nullptr));
        return Statement(statement);
    }

    Statement Prepare(const char* sql, int group, int key) {
        Statement statement = Prepare(sql);
        Require(sqlite3_bind_int(statement.get(), 1, group));
        Require(sqlite3_bind_int(statement.get(), 2, key));
        return statement;
    }

    void Bind(const Statement& statement, int parameter, long value) {
        Require(sqlite3_bind_int64(statement.get(), parameter, value));
    }

    /// Whether the statement has given a row.
    bool Step(const Statement& statement) {
        const int code = sqlite3_step(statement.get());
        if (code != SQLITE_ROW && code != SQLITE_DONE) {
            throw Failure(m_database.get(), code);
        }
        return code == SQLITE_ROW;
    }

    std::int64_t Number(const char* sql) {
        const Statement statement = Prepare(sql);
        return Step(statement) ? sqlite3_column_int64(statement.get(), 0) : 0;
    }

private:
    void Require(int code) {
        if (code != SQLITE_OK) {
            throw Failure(m_database.get(), code);
        }
    }

    std::unique_ptr<sqlite3, Close> m_database;
};

// The store's folder without links, which may lead to it; the store itself may not be one. SQLite's own flag against
// links would refuse both.
std::string InRealFolder(const std::string& path) {
    const std::size_t slash = path.rfind('/'); // there is one, see PreferencePath()
    const std::unique_ptr<char, FreeText> folder(::realpath(path.substr(0, slash + 1).c_str(), nullptr));
    if (!folder) {
        throw StoreError(std::string("its folder cannot be found: ") + std::strerror(errno));
    }
    return folder.get() + path.substr(slash);
}

// The store as an empty file of the user's alone: SQLite would let everybody read it. Its journals take its mode.
void MakeEmptyFile(const std::string& path) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd >= 0) {
        (void)::close(fd); // nothing was written through it
    }
    // Another process may have been first; what else went wrong goes wrong for SQLite too, which tells of it.
}

enum class Found { Nothing, EmptyFile, Store };

std::uint32_t BigEndian(const unsigned char* bytes) {
    return static_cast<std::uint32_t>(bytes[0]) << 24 | static_cast<std::uint32_t>(bytes[1]) << 16 |
           static_cast<std::uint32_t>(bytes[2]) << 8 | bytes[3];
}

// SQLite's header: a magic text, the number of our version at 60 and of our application at 68.
void RequireOurHeader(const std::array<unsigned char, 100>& header) {
    static constexpr std::string_view kMagic{"SQLite format 3\0", 16};
    if (std::all_of(header.begin(), header.end(), [](unsigned char byte) { return byte == 0; })) {
        return; // what a power cut can leave of the very first write; SQLite knows whether it can be taken back
    }
    if (std::memcmp(header.data(), kMagic.data(), kMagic.size()) != 0 || BigEndian(&header[68]) != kApplicationId) {
        throw StoreError(kForeign);
    }
    if (BigEndian(&header[60]) != kVersion) {
        throw StoreError("it belongs to another version of this library; name another file in DCF_PREFERENCES");
    }
}

// A journal ends in this magic text when it belongs to a change of several databases at once, and then names a file
// that SQLite deletes once it has looked at it. A store's own changes leave none such, so the file would be somebody
// else's.
void RequireOurJournal(const std::string& path) {
    static constexpr std::string_view kMagic{"\xd9\xd5\x05\xf9\x20\xa1\x63\xd7", 8};
    const int fd = ::open((path + "-journal").c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW);
    if (fd < 0) {
        return; // there is none, or none that SQLite can use
    }
    std::array<char, kMagic.size()> end{};
    const off_t size = ::lseek(fd, 0, SEEK_END);
    const auto room = static_cast<off_t>(end.size());
    const bool named = size >= room && ::pread(fd, end.data(), end.size(), size - room) == room &&
                       std::string_view(end.data(), end.size()) == kMagic;
    (void)::close(fd); // nothing was written through it
    if (named) {
        throw StoreError("its journal belongs to other databases, too; move the journal away");
    }
}

// Looks before SQLite does, because SQLite repairs what it takes for an interrupted database, whoever owns it.
// Closing the file gives up all locks that this process has on it; so no other thread may be using it.
Found Examine(const std::string& path) {
    if (path.back() == '/') {
        throw StoreError(kNoFile);
    }
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW);
    if (fd < 0) {
        if (errno == ENOENT) {
            return Found::Nothing;
        }
        if (errno == ELOOP) {
            throw StoreError(kLink);
        }
        throw StoreError(std::string("it cannot be opened: ") + std::strerror(errno));
    }
    struct stat status {};
    std::array<unsigned char, 100> header{};
    const bool isFile = ::fstat(fd, &status) == 0 && S_ISREG(status.st_mode);
    const ssize_t size = isFile ? ::pread(fd, header.data(), header.size(), 0) : 0;
    const int error = errno;
    (void)::close(fd); // nothing was written through it
    if (!isFile) {
        throw StoreError(kNoFile);
    }
    if (size < 0) {
        throw StoreError(std::string("it cannot be read: ") + std::strerror(error));
    }
    RequireOurJournal(path);
    if (size == 0) {
        return Found::EmptyFile;
    }
    RequireOurHeader(header);
    return Found::Store;
}

// Nothing but our table, word for word: a view or a trigger in a file is a program, which a look at a value would run.
void RequireOurTable(Database& database) {
    const Database::Statement schema = database.Prepare("SELECT sql FROM sqlite_schema");
    if (!database.Step(schema)) {
        throw Damaged("its table is missing");
    }
    const auto* sql = reinterpret_cast<const char*>(sqlite3_column_text(schema.get(), 0));
    if (sql == nullptr || std::strcmp(sql, kMakeTable) != 0 || database.Step(schema)) {
        throw Damaged("it holds something else than its table");
    }
}

void RequireSound(Database& database) {
    RequireOurTable(database);
    const Database::Statement check = database.Prepare("PRAGMA quick_check(1)");
    const char* verdict =
        database.Step(check) ? reinterpret_cast<const char*>(sqlite3_column_text(check.get(), 0)) : nullptr;
    if (verdict == nullptr || std::strcmp(verdict, "ok") != 0) {
        throw Damaged(verdict == nullptr ? "it cannot be checked" : verdict);
    }
}

// Whether the database, which nobody can change now, is a sound store (else it is still empty).
bool HoldsStore(Database& database) {
    const std::int64_t application = database.Number("PRAGMA application_id");
    if (application == 0 && database.Number("SELECT count(*) FROM sqlite_schema") == 0) {
        return false;
    }
    if (application != kApplicationId) {
        throw StoreError(kForeign);
    }
    RequireSound(database);
    return true;
}

} // namespace

long ReadPreference(const std::string& path, int group, int key) {
    if (Examine(path) != Found::Store) {
        return 0;
    }
    // For writing, too: a set that a power cut interrupted must be taken back before the store can be read.
    Database database(InRealFolder(path), SQLITE_OPEN_READWRITE);
    database.Run("BEGIN");
    if (!HoldsStore(database)) {
        return 0;
    }
    const Database::Statement select = database.Prepare(kSelect, group, key);
    const std::int64_t value = database.Step(select) ? sqlite3_column_int64(select.get(), 0) : 0;
    if (!std::in_range<long>(value)) {
        throw Damaged("the value is too large");
    }
    return static_cast<long>(value);
}

void WritePreference(const std::string& path, int group, int key, long value) {
    if (Examine(path) == Found::Nothing) {
        MakeFoldersAbove(path);
        MakeEmptyFile(path);
    }
    Database database(InRealFolder(path), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    database.Run("PRAGMA synchronous = EXTRA");
    database.Run("BEGIN IMMEDIATE");
    if (!HoldsStore(database)) {
        database.Run(kMarkStore);
        database.Run(kMakeTable);
    }
    {
        const Database::Statement insert = database.Prepare(kInsert, group, key);
        database.Bind(insert, 3, value);
        (void)database.Step(insert); // gives no row
    }
    database.Run("COMMIT");
}

} // namespace host
