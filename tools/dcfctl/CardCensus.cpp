// The census; see the header.
#include "CardCensus.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <utility>

#include "DcfNames.h"
#include "Terminal.h"
#include "Text.h"

namespace dcfctl {
namespace {

CensusEntry Looked(const std::string& path, const std::string& name) {
    CensusEntry entry = {name, LookAt(path + "/" + name)};
    entry.error = entry.state.has_value() ? 0 : errno;
    return entry;
}

void LookAtAll(const std::string& path, std::vector<CensusEntry>& entries, std::size_t& done, std::size_t all,
               Progress& progress) {
    for (CensusEntry& entry : entries) {
        entry = Looked(path, entry.name);
        progress.Show(++done, all);
    }
}

std::vector<CensusEntry> EntriesOf(const FolderContents& contents) {
    std::vector<CensusEntry> entries;
    entries.reserve(contents.Names().size());
    for (const std::string& name : contents.Names()) {
        entries.push_back({name, std::nullopt, 0});
    }
    return entries;
}

Finding Unreadable(const std::string& dcim, int error) {
    return {"dcim-unreadable", ExitCode::kCardUnreadable,
            Quoted(dcim) + " cannot be read (" + std::strerror(error) + "); check whether the card is still there"};
}

} // namespace

std::size_t Census::CountEntries() const {
    std::size_t count = loose.size();
    for (const CensusFolder& folder : folders) {
        count += folder.entries.size();
    }
    return count;
}

CensusReport TakeCensus(const std::string& dcim, const CardOptions& card, Output& err) {
    CensusReport report;
    Census& census = report.census;
    const FolderContents top(dcim, false);
    if (top.Error() != 0) {
        report.error = Unreadable(dcim, top.Error());
        return report;
    }
    std::vector<CardFolder> listed;
    census.shared = ListFolders(dcim, card.camera, listed);
    std::map<std::string, int> taken; // with the errno of those that hold no entries to be had
    for (const CardFolder& folder : listed) {
        const FolderContents contents(dcim + "/" + folder.name, folder.name == kCamera);
        taken[folder.name] = contents.Error();
        if (contents.Error() == 0) {
            census.folders.push_back(
                {Looked(dcim, folder.name), folder.number, folder.name == kCamera, EntriesOf(contents)});
        }
    }
    for (const std::string& name : top.Names()) {
        const auto found = taken.find(name);
        if (found == taken.end() || found->second != 0) {
            census.loose.push_back(
                {Looked(dcim, name), found != taken.end(), found != taken.end() ? found->second : 0});
        }
    }
    std::sort(census.loose.begin(), census.loose.end(),
              [](const LooseEntry& a, const LooseEntry& b) { return a.self.name < b.self.name; });
    Progress progress(err, "looking at the entries");
    std::size_t done = 0;
    const std::size_t all = census.CountEntries();
    for (CensusFolder& folder : census.folders) {
        LookAtAll(dcim + "/" + folder.self.name, folder.entries, done, all, progress);
    }
    return report;
}

} // namespace dcfctl
