// The contact sheet; see the header.
#include "SheetVerb.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "CardFiles.h"
#include "CardListing.h"
#include "CheckVerb.h"
#include "FileCopy.h"
#include "Phrases.h"
#include "PictureFile.h"
#include "SheetHtml.h"
#include "Terminal.h"
#include "Text.h"
#include "Thumbnail.h"

namespace dcfctl {
namespace {

// ---- Where the sheet goes ----

struct Place {
    std::string path;
    std::string folder;
    bool replaces = false;
};

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

/// Without links and dots; empty when there is no such folder.
std::string RealPath(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), std::free);
    return real == nullptr ? std::string() : std::string(real.get());
}

bool IsWithin(const std::string& path, const std::string& folder) {
    return !folder.empty() && (path == folder || path.rfind(folder + "/", 0) == 0);
}

bool IsSheet(const std::string& path) {
    const PictureFile file(path);
    return file.IsOpen() && file.Read(0, SheetSignature().size()) == SheetSignature();
}

std::optional<Finding> CheckPlace(const CardOptions& card, const SheetOptions& options, Place& place) {
    place.path = options.out;
    place.folder = FolderOf(options.out);
    const std::string real = RealPath(place.folder);
    if (real.empty()) {
        return Refused("out-folder-missing", "the folder of " + Quoted(options.out) + " cannot be reached (" +
                                                 std::strerror(errno) + "); make it, or name another file");
    }
    if (IsWithin(real, RealPath(card.root + "/" + std::string(kDcim)))) {
        return Refused("out-on-card", Quoted(options.out) + " lies among the pictures of the card, where only pictures "
                                                            "belong; name a file elsewhere");
    }
    const auto there = LookAt(options.out);
    if (!there.has_value()) {
        return std::nullopt;
    }
    if (!there->IsFile()) {
        return Refused("out-not-file", Quoted(options.out) + " is " + KindText(there->mode) +
                                           "; name a file, or - for standard output");
    }
    if (!options.force && !IsSheet(options.out)) {
        return Refused("out-exists", Quoted(options.out) + " is there already and is no contact sheet; name another "
                                                           "file, or give --force to replace it");
    }
    place.replaces = true;
    return std::nullopt;
}

// ---- What it shows ----

/// The folders of the list, and the stretch of the list that is in each. A card that has changed since it was looked at
/// may have files in others: they come behind.
std::vector<SheetFolder> FoldersOf(const std::vector<CardFolder>& listed, const std::vector<FileEntry>& files) {
    std::vector<SheetFolder> folders;
    std::size_t at = 0;
    const auto take = [&](const std::string& name, int number) {
        SheetFolder folder = {name, number, at, 0};
        while (at < files.size() && SplitPath(files[at].path).folder == name) {
            ++at;
        }
        folder.count = at - folder.first;
        folders.push_back(std::move(folder));
    };
    for (const CardFolder& folder : listed) {
        take(folder.name, folder.number);
    }
    while (at < files.size()) {
        const std::string name = SplitPath(files[at].path).folder;
        take(name, FolderNumber(name).value_or(0));
    }
    return folders;
}

/// Where files really lie: the list has their names in capitals.
class RealNames {
public:
    std::string Of(const std::string& path) {
        if (LookAt(path).has_value()) {
            return path;
        }
        const std::size_t slash = path.rfind('/');
        const std::string folder = path.substr(0, slash);
        auto known = m_folders.find(folder);
        if (known == m_folders.end()) {
            known = m_folders.emplace(folder, NamesIn(folder)).first;
        }
        const auto name = known->second.find(path.substr(slash + 1));
        return name == known->second.end() ? path : folder + "/" + name->second;
    }

private:
    using ByListedName = std::map<std::string, std::string>;

    static ByListedName NamesIn(const std::string& folder) {
        ByListedName names;
        const FolderContents contents(folder, false);
        for (const std::string& name : contents.Names()) {
            names.emplace(UpperCased(name), name);
        }
        return names;
    }

    std::map<std::string, ByListedName> m_folders;
};

/// Thrown and caught in this file alone.
struct Interruption {};

/// Finds or makes the thumbnails, one file after the other.
class Illustrator {
public:
    Illustrator(SheetResult& result, long long most, Output& err)
        : m_result(result), m_left(most), m_progress(err, "Making the contact sheet") {}

    Illustration Of(const FileEntry& file) {
        if (InterruptGuard::Interrupted()) {
            throw Interruption();
        }
        m_progress.Show(m_done++, static_cast<std::uint64_t>(m_result.counts.files));
        Illustration shown = Look(file);
        if (shown.thumbnail.empty()) {
            ++m_result.missing;
        }
        return shown;
    }

private:
    Illustration Look(const FileEntry& file) {
        constexpr int kSide = 192;
        constexpr std::size_t kHeavy = 16U << 10U; // more than a made one has; ten thousand of these would be too much
        Illustration shown;
        if (file.type == FILE_TYPE_MP4 || file.type == FILE_TYPE_AVI) {
            shown.missing = "movie";
            return shown;
        }
        const std::string path = m_names.Of(file.path);
        PictureHead head = m_reader.Head(path);
        shown.date = std::move(head.date);
        if (m_left <= 0) {
            shown.missing = "left out of this sheet";
            return shown;
        }
        if (head.thumbnail.empty() || head.thumbnail.size() > kHeavy) {
            shown.thumbnail = m_reader.Made(path, kSide);
        }
        m_result.made += shown.thumbnail.empty() ? 0 : 1;
        if (shown.thumbnail.empty() && !head.thumbnail.empty()) {
            shown.thumbnail = std::move(head.thumbnail);
            ++m_result.embedded;
        }
        if (shown.thumbnail.empty()) {
            shown.missing = WhyMissing(path);
        } else {
            --m_left;
        }
        return shown;
    }

    static const char* WhyMissing(const std::string& path) {
        const PictureFile file(path);
        if (!file.IsOpen()) {
            return "cannot be read";
        }
        if (file.Size() == 0) {
            return "empty file";
        }
        return kCanMakeThumbnails ? "no picture can be made out" : "no thumbnail";
    }

    SheetResult& m_result;
    long long m_left;
    std::uint64_t m_done = 0;
    Progress m_progress;
    RealNames m_names;
    ThumbnailReader m_reader;
};

// ---- Writing it ----

Finding NotWritten(const std::string& path, const std::string& why) {
    return Incomplete("sheet-not-written",
                      "the sheet " + Quoted(path) + " could not be written (" + why +
                          "), and nothing of it stays; look at the room and the permissions there");
}

/// Made at the side and put in place whole.
std::optional<Finding> WriteFile(const Place& place, const SheetContent& content, const Illustrate& illustrate,
                                 SheetResult& result) {
    try {
        RemoveLeftovers(place.folder);
        StagedFile staged(place.folder);
        Output file(staged.Fd());
        WriteSheet(file, content, illustrate);
        file.Flush();
        if (file.Error() != 0 || fsync(staged.Fd()) != 0) {
            return NotWritten(place.path, std::strerror(file.Error() != 0 ? file.Error() : errno));
        }
        struct stat state = {};
        (void)fstat(staged.Fd(), &state); // of an open file
        result.bytes = static_cast<std::uint64_t>(state.st_size);
        staged.PutInPlace(place.path, place.replaces);
    } catch (const CopyError& error) {
        return NotWritten(place.path, error.what());
    }
    return std::nullopt;
}

} // namespace

Report<SheetResult> MakeSheet(const CardOptions& card, const SheetOptions& options, Output& out, Output& err) {
    const bool toFile = options.out != kStandardOutput;
    Place place;
    if (toFile) {
        if (auto finding = CheckPlace(card, options, place)) {
            return Failed<SheetResult>(*finding);
        }
    }
    SheetContent content;
    Report<CheckResult> check = Check(card, err); // lists by itself, and there is one list at a time
    if (!check.value.has_value()) {
        return Failed<SheetResult>(*check.error);
    }
    content.check = std::move(*check.value);
    CardListing listing(card);
    if (listing.Refusal().has_value()) {
        return Failed<SheetResult>(*listing.Refusal());
    }
    content.root = card.root;
    content.name = SplitPath(RealPath(card.root + "/")).file;
    content.name = content.name.empty() ? "/" : content.name;
    content.counts = listing.CountAll();
    for (int position = 0; position < listing.Count(); ++position) {
        content.files.push_back(listing.Simple(position));
    }
    listing.AddDetails(content.files);
    content.warnings = listing.Warnings();
    if (check.error.has_value()) { // its figures do not close
        content.warnings.push_back(*check.error);
    }
    content.folders = FoldersOf(listing.Inspected().folders, content.files);

    SheetResult result;
    result.root = card.root;
    result.out = options.out;
    result.counts = content.counts;
    result.folders = content.folders.size();
    const InterruptGuard guard;
    try {
        Illustrator illustrator(result, options.thumbnails, err);
        const auto illustrate = [&](const FileEntry& file) { return illustrator.Of(file); };
        if (!toFile) {
            WriteSheet(out, content, illustrate);
        } else if (auto finding = WriteFile(place, content, illustrate, result)) {
            return Failed<SheetResult>(*finding);
        }
    } catch (const Interruption&) {
        return Failed<SheetResult>(Incomplete(
            "interrupted", toFile ? "the work was interrupted, and no sheet was made; run it again"
                                  : "the work was interrupted, and the sheet is not complete; run it again"));
    }
    return {std::move(result), std::nullopt, content.warnings};
}

} // namespace dcfctl
