// Cards, the list and the order of the runs; see the header.
#include "BenchmarkCard.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <stdexcept>

#include "CBIFileListManager.h"

namespace dcfbench {

namespace {

constexpr int kFirstFolder = 100;
constexpr int kCompanionEvery = 4;
constexpr const char* kCompanion = "SRW";
constexpr const char* kSuffix = "PHOTO"; // the one under which new files are named

std::unique_ptr<BenchmarkCard> s_card;

void MakeFile(int folder, const std::string& name) {
    const int fd = openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0 || close(fd) != 0) {
        throw std::runtime_error("cannot make " + name);
    }
}

/// In ascending order, as a camera makes them.
void MakePictures(const std::string& path, int files) {
    const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int number = 1; number <= files; ++number) {
        MakeFile(folder, dcftest::DcfName(number));
        if (number % kCompanionEvery == 0) {
            MakeFile(folder, dcftest::DcfName(number, kCompanion));
        }
    }
    close(folder);
}

Folder Contents(int dnum, int files) {
    Folder folder{dcftest::DirName(dnum, kSuffix), {}};
    for (int number = files; number > 0; --number) {
        Picture picture = {};
        dcftest::DcfName(number).copy(picture.name, sizeof picture.name - 1);
        if (number % kCompanionEvery == 0) {
            std::string(kCompanion).copy(picture.companion, sizeof picture.companion - 1);
        }
        folder.pictures.push_back(picture);
    }
    return folder;
}

Shape ShapeOf(const benchmark::State& state) {
    return {static_cast<int>(state.range(0)), static_cast<int>(state.range(1))};
}

/// Has Card make its folders in memory, so that the library is measured and no disk. @return where.
std::string ChooseFolder() {
    const char* chosen = std::getenv("DCF_BENCH_DIR");
    const char* folder = chosen != nullptr ? chosen : "/dev/shm";
    if (access(folder, W_OK | X_OK) == 0) {
        setenv("TMPDIR", folder, 1);
        return folder;
    }
    if (chosen != nullptr) {
        throw std::runtime_error("DCF_BENCH_DIR names no folder that can be written to");
    }
    std::fprintf(stderr, "There is no /dev/shm: the cards are not in memory.\n");
    return "/";
}

BenchmarkCard& Renew(Shape shape) {
    static const std::string folder = ChooseFolder();
    s_card.reset(); // first, so that two cards are never there at once
    s_card = std::make_unique<BenchmarkCard>(shape);
    if (s_card->card.Root().compare(0, folder.size(), folder) != 0) {
        throw std::runtime_error(folder + " is too long a path for a card: paths on it would be cut");
    }
    return *s_card;
}

} // namespace

BenchmarkCard::BenchmarkCard(Shape wanted) : shape(wanted) {
    for (int dnum = kFirstFolder + shape.folders - 1; dnum >= kFirstFolder; --dnum) {
        folders.push_back(Contents(dnum, shape.files));
        card.AddDir(folders.back().name);
        MakePictures(card.Path(folders.back().name), shape.files);
        for (const Picture& picture : folders.back().pictures) {
            paths.push_back(card.Path(folders.back().name, picture.name));
        }
    }
}

ISFileList& BenchmarkCard::NewList() {
    DropList();
    CBIFileListManager::Create(FILE_NUMBER_TYPE_DEFAULT);
    CBIFileListManager::SetBaseURI(card.Root().c_str());
    return *CBIFileListManager::GetFileList();
}

ISFileList& BenchmarkCard::List() {
    if (m_list == nullptr) {
        ISFileList& list = NewList();
        list.Listup();
        m_list = &list;
    }
    return *m_list;
}

ISFileList& BenchmarkCard::SelectedList() {
    ISFileList& list = List();
    for (int position = 0; !m_selected && position < shape.Items(); ++position) {
        list.SetSel(position, true);
    }
    m_selected = true;
    return list;
}

void BenchmarkCard::DropList() {
    m_list = nullptr;
    m_selected = false;
}

BenchmarkCard& CardOf(const benchmark::State& state) {
    return s_card != nullptr && s_card->shape == ShapeOf(state) ? *s_card : Renew(ShapeOf(state));
}

BenchmarkCard& FreshCardOf(const benchmark::State& state) {
    return Renew(ShapeOf(state));
}

void Check(benchmark::State& state, bool holds, const char* what) {
    if (!holds) {
        state.SkipWithError(what);
    }
}

void CountFiles(benchmark::State& state, int filesPerIteration) {
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * filesPerIteration);
}

void CheckList(benchmark::State& state, const BenchmarkCard& card, ISFileList& list) {
    Check(state, list.GetCount() == card.shape.Items(), "the list does not hold every file");
    int position = 0;
    int wrong = 0;
    for (const Folder& folder : card.folders) {
        for (const Picture& picture : folder.pictures) {
            CSFileListItem expected;
            ComposePaths(card, folder, picture, expected);
            CSFileListItem item;
            list.GetAtSimply(position++, &item);
            const bool same = std::string(item.m_strURI) == expected.m_strURI &&
                              std::string(item.m_strObject) == expected.m_strObject;
            wrong += same ? 0 : 1;
        }
    }
    Check(state, wrong == 0, "the list holds wrong paths");
}

void ComposePaths(const BenchmarkCard& card, const Folder& folder, const Picture& picture, CSFileListItem& item) {
    const char* root = card.card.Root().c_str();
    const char* dir = folder.name.c_str();
    (void)std::snprintf(item.m_strURI, sizeof item.m_strURI, "%s/DCIM/%s/%s", root, dir, picture.name);
    item.m_strObject[0] = '\0';
    if (picture.companion[0] != '\0') {
        (void)std::snprintf(item.m_strObject, sizeof item.m_strObject, "%s/DCIM/%s/%.9s%s", root, dir, picture.name,
                            picture.companion);
    }
}

bool Register(const std::vector<Shape>& shapes, const std::vector<Entry>& entries) {
    for (const Shape& shape : shapes) {
        for (const Entry& entry : entries) {
            auto* registered = benchmark::RegisterBenchmark(entry.name, entry.run);
            registered->Args({shape.folders, shape.files});
            if (entry.iterations > 0) {
                registered->Iterations(entry.iterations);
            }
        }
    }
    return true;
}

std::vector<Shape> AllShapes() {
    std::vector<Shape> shapes = SmallShapes();
    shapes.insert(shapes.end(), {{100, 1000}, {900, 111}, {11, 9090}});
    return shapes;
}

std::vector<Shape> SmallShapes() {
    return {{1, 100}, {1, 1000}, {1, 9999}, {100, 1}, {100, 10}, {100, 100}, {900, 1}, {900, 11}};
}

} // namespace dcfbench
