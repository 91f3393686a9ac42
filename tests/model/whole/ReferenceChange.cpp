// The reference's deletion, protection, new files and renumbering.
#include <algorithm>
#include <cstdio>

#include "Reference.h"

namespace dcftest {

namespace {

std::size_t At(int position) {
    return static_cast<std::size_t>(position);
}

} // namespace

// ---- Deletion ----

void Reference::RemoveFromCard(int didx, const RefItem& item) {
    card.RemoveFile(FilePath(didx, item));
    if (item.object != -1) {
        Met("companion removed");
        card.RemoveFile(ObjectPath(didx, item));
    }
}

void Reference::DropIfEmpty(int didx) {
    const RefDir& dir = tree->dirs[At(didx)];
    const std::string path = DirPath(dir.name);
    if (!card.IsDirEmpty(path)) {
        return;
    }
    Met(dir.items.empty() ? "directory dropped" : "directory dropped with items");
    tree->dirs.erase(tree->dirs.begin() + didx);
    card.RemoveFile(path);
}

void Reference::TreeDelete(const char* path) {
    int dnum = 0;
    int fnum = 0;
    Numbers(path, dnum, fnum);
    const int didx = DirIndex(dnum);
    const int fidx = FileIndex(tree->dirs[At(didx)], fnum);
    RefItem item = ItemOf(didx, fidx);
    if (ProtectOf(item)) {
        Met("protected file kept by the tree");
        return;
    }
    RemoveFromCard(didx, item);
    std::vector<RefItem>& items = tree->dirs[At(didx)].items;
    items.erase(items.begin() + fidx);
    DropIfEmpty(didx);
    if (didx == 0 && fidx == 0) {
        (void)TreeUpdateFirstIndex(false);
    }
}

void Reference::TreeDeleteSet(const std::vector<int>& indices) {
    int didx = 0;
    int base = 0;
    while (didx < static_cast<int>(tree->dirs.size())) {
        const int count = tree->dirs[At(didx)].Count();
        if (count == 0) {
            ++didx;
            continue;
        }
        std::vector<int> collected;
        for (const int index : indices) {
            if (base <= index && index < base + count) {
                collected.push_back(index - base);
            }
        }
        std::vector<int> doomed = collected;
        for (std::size_t i = collected.size(); i > 0; --i) {
            RefItem item = ItemOf(didx, collected[i - 1]);
            if (ProtectOf(item)) {
                Met("protected file kept in a set");
                doomed.erase(doomed.begin() + static_cast<std::ptrdiff_t>(i) - 1);
            } else {
                RemoveFromCard(didx, item);
            }
        }
        std::vector<RefItem>& items = tree->dirs[At(didx)].items;
        for (std::size_t i = doomed.size(); i > 0; --i) {
            items.erase(items.begin() + doomed[i - 1]);
        }
        const std::size_t before = tree->dirs.size();
        DropIfEmpty(didx);
        if (tree->dirs.size() < before && didx < static_cast<int>(tree->dirs.size())) {
            Met("directory passed over");
        }
        base += count;
        ++didx;
    }
    (void)TreeUpdateFirstIndex(false);
}

void Reference::TreeDeleteAll() {
    for (std::size_t didx = 0; didx < tree->dirs.size(); ++didx) {
        for (const RefItem& item : tree->dirs[didx].items) {
            RemoveFromCard(static_cast<int>(didx), item);
        }
        const std::string path = DirPath(tree->dirs[didx].name);
        if (card.IsDirEmpty(path)) {
            card.RemoveFile(path);
        }
    }
}

// ---- Protection ----

void Reference::ProtectOne(int didx, int fidx, bool on) {
    RefItem& item = tree->dirs[At(didx)].items[At(fidx)];
    item.protect = on;
    item.known = true;
    (void)card.SetProtect(FilePath(didx, item), on);
    if (item.object != -1) {
        Met("companion protected");
        (void)card.SetProtect(ObjectPath(didx, item), on);
    }
}

/// Without a value each item is flipped.
void Reference::TreeProtect(const std::vector<int>& indices, std::optional<bool> on) {
    std::size_t next = 0;
    int end = 0;
    for (std::size_t didx = 0; didx < tree->dirs.size(); ++didx) {
        const int count = tree->dirs[didx].Count();
        end += count;
        while (next < indices.size() && indices[next] < end) {
            const int fidx = indices[next++] + count - end;
            if (fidx >= 0) {
                RefItem copy = tree->dirs[didx].items[At(fidx)];
                ProtectOne(static_cast<int>(didx), fidx, on ? *on : !ProtectOf(copy));
            }
        }
    }
}

// ---- New files ----

int Reference::TreeGetNewFileName(const std::string& prefix, const std::string& ext, NameBuffer& out,
                                  const std::string& suffix) {
    if (Count() > 99999) {
        return -1;
    }
    ApplySeries();
    const int index = NewFileIndex(suffix);
    if (index < 0) {
        Met("no number left");
        return -1;
    }
    if (tree->dirs.empty()) {
        Met("no directory for the new file");
        return -1;
    }
    const int fnum = index % 100000;
    std::array<char, 16> number{};
    (void)std::snprintf(number.data(), number.size(), "%04d", fnum);
    const std::string name = prefix + number.data() + "." + ext;
    (void)std::snprintf(out.data(), out.size(), "%s", name.c_str());
    card.Note("time");
    const std::time_t now = card.faults.Fails("time") ? -1 : clock.now;
    AddItem(tree->dirs.front(), name, fnum, true, static_cast<std::uint32_t>(now), index / 100000);
    (void)std::snprintf(out.data(), out.size(), "%s/DCIM/%s/%s", tree->root.c_str(), tree->dirs.front().name.c_str(),
                        name.c_str());
    ++tree->total;
    StoreSeries(index);
    SetCurFile(out.data());
    return 0;
}

int Reference::NewFileIndex(const std::string& suffix) {
    int dnum = tree->firstIndex / 100000;
    int fnum = tree->firstIndex % 100000;
    dnum = dnum <= 99 ? 100 : dnum;
    bool required = false;
    if (fnum > 9998) {
        ++dnum;
        fnum = 1;
        required = true;
    } else {
        ++fnum;
    }
    if (dnum >= 1000) {
        return -9999;
    }
    bool sameNumber = false;
    bool sameSuffix = false;
    for (const RefDir& dir : tree->dirs) {
        if (dir.number == dnum) {
            sameNumber = true;
            sameSuffix = sameSuffix || dir.name.substr(3) == suffix;
        }
    }
    if (sameNumber && !sameSuffix) {
        Met("number taken by another suffix");
        ++dnum;
        fnum = 1;
        required = true;
        if (dnum >= 1000) {
            return -9999;
        }
    }
    const std::string name = (std::to_string(dnum) + suffix).substr(0, 9);
    if (!card.OpenDir(DirPath(name)) || required) {
        if (!card.MakeDirectory(DirPath(name))) {
            Met("making a directory failed");
            effects.printed += "make directory fail\n";
        }
        Met("directory entered");
        tree->dirs.insert(tree->dirs.begin(), RefDir{dnum, name, {}});
    }
    tree->firstIndex = dnum * 100000 + fnum;
    return tree->firstIndex;
}

// ---- Renumbering ----

void Reference::ReorderDirNames() {
    const std::string dcim = tree->root + "/DCIM";
    std::vector<std::string> names;
    for (const std::string& name : card.Scan(dcim).value_or(std::vector<std::string>{})) {
        if (name.size() == 8 || name == "Camera") {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end(), StandsBefore);
    int number = 100;
    for (const std::string& name : names) {
        const std::string target = dcim + "/" + std::to_string(number++) + name.substr(3, 5);
        if (!card.Rename(dcim + "/" + name, target)) {
            Met("rename failed");
            effects.printed += "rename fail\n";
        }
    }
    Store(0);
    card.Sync();
}

} // namespace dcftest
