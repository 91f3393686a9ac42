// What the benchmarks share: cards of a given shape, the list on them, and the order of the runs. One card and one list
// at a time, because the file list is one for each process; both are kept while the benchmarks of one card follow each
// other.
#ifndef BENCHMARK_CARD_H
#define BENCHMARK_CARD_H

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "Card.h"
#include "ISFileList.h"

namespace dcfbench {

struct Shape {
    int folders;
    int files; ///< Pictures in each folder; every fourth has a companion file beside it.

    int Items() const {
        return folders * files;
    }
    bool operator==(const Shape&) const = default;
};

/// A picture as a hand-written loop would remember it.
struct Picture {
    char name[13];
    char companion[4]; ///< Extension of the companion file; empty without one.
};

/// A folder and its pictures, both from the highest number down: the order of the list.
struct Folder {
    std::string name;
    std::vector<Picture> pictures;
};

class BenchmarkCard {
public:
    explicit BenchmarkCard(Shape shape);

    /// The process's file list, made anew and not listed.
    ISFileList& NewList();
    /// The list, listed; as the benchmark before left it, which must not have changed the list itself.
    ISFileList& List();
    /// The same with every position selected.
    ISFileList& SelectedList();
    /// The next List() or SelectedList() lists again.
    void DropList();

    const Shape shape;
    dcftest::Card card;
    std::vector<Folder> folders;
    std::vector<std::string> paths; ///< Of every picture, in list order.

private:
    ISFileList* m_list = nullptr;
    bool m_selected = false;
};

/// The card of the shape that the benchmark's arguments name: folders, pictures in each.
BenchmarkCard& CardOf(const benchmark::State& state);
/// The same, but no card that a benchmark has used before.
BenchmarkCard& FreshCardOf(const benchmark::State& state);

/// Whether a listed file list holds the card, path by path; says so in the state when it does not.
void CheckList(benchmark::State& state, const BenchmarkCard& card, ISFileList& list);
/// An error in the state unless the condition holds. Behind the timed part.
void Check(benchmark::State& state, bool holds, const char* what);

/// The number of files that one iteration worked on: what a figure is divided by, so that cards can be compared.
void CountFiles(benchmark::State& state, int filesPerIteration);

/// Composes a picture's path and that of its companion file as a hand-written loop does, with snprintf, the second one
/// only where there is a companion.
void ComposePaths(const BenchmarkCard& card, const Folder& folder, const Picture& picture, CSFileListItem& item);

struct Entry {
    const char* name;
    void (*run)(benchmark::State&);
    int iterations = 0; ///< A fixed number, for runs that use up what they work on.
};

/// Registers the benchmarks card by card, so that an operation and its floor follow each other. @return true.
bool Register(const std::vector<Shape>& shapes, const std::vector<Entry>& entries);

/// Sizes from 100 to 100,000 in the shapes deep (1 folder), wide (100) and sparse (900), as far as the 9,999 numbers of
/// a folder reach, and 11 folders that are nearly full.
std::vector<Shape> AllShapes();
/// Those up to 10,000 files, for operations that need a new card for each run.
std::vector<Shape> SmallShapes();

/// Calls of sync() so far. The benchmarks count them and do not make them: a sync waits for every disk of the machine.
int Syncs();

} // namespace dcfbench

#endif
