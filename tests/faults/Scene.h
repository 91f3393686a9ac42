// Scene: a card, what a client has done with it, and the operation during which something happens; and the stage on
// which a scene is set up as often as needed. The reference of the model test foresees how it ends.
#ifndef TESTS_FAULTS_SCENE_H
#define TESTS_FAULTS_SCENE_H

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Card.h"
#include "Operations.h"
#include "PosixSeam.h"

namespace dcftest {

struct Scene {
    std::string name;
    ReferenceCard initial; ///< The card before anything was done.
    std::optional<long> series;
    std::vector<Operation> setup;
    Operation operation;
    Expected before; ///< The reference behind the setup.
};

/// How the reference says that a scene's operation ends.
struct Forecast {
    Expected after;
    std::string result;
    std::optional<Fatal> fatal;
    bool cut = false; ///< The power went.
};

Forecast Foresee(const Scene& scene, const CallFaults& faults, Events* events = nullptr);

/// Whether everything is tried (DCF_TEST_FAULTS=full), or the choice that the gate makes.
bool Thorough();

class Stage {
public:
    Stage();

    /// For every operation of the interface, on every card, some scenes that differ in the calls they make.
    std::vector<Scene> Scenes() const;
    /// Sets a scene up on the real card.
    std::unique_ptr<Actual> Set(const Scene& scene) const;

private:
    std::vector<ReferenceCard> Cards() const;

    bool m_inMemory; ///< The card's folder, where that can be had. Settled before it is made.
    Card m_card;
};

/// Does an operation on the library. @return its result as a text.
std::string OnLibrary(const Operation& operation, Actual& actual);

/// What every seam of a scene is told: the same clock as the reference's.
void SetClock(PosixSeam& seam);

/// What is on the real card below a root: names, kinds, modes and times.
ReferenceCard ReadCard(const std::string& root);

/// Lists the card as it is now with another file list, as if nothing had gone wrong before. @return what that list has
/// otherwise than the reference; empty when they are the same.
std::string ListedAnew(const ReferenceCard& card, long series);

/// Every file on a card as "100ABCDE/KVR_0001.JPG".
std::set<std::string> FilesOf(const ReferenceCard& card);
/// The files of each folder, whatever its name is.
std::multiset<std::set<std::string>> FilesByFolder(const ReferenceCard& card);

/// Whether an operation names the files that it may delete, so that every other one has to stay: a set from one
/// directory, an item, all. Deliberate oddities of DeleteSel() across directories are the reference's business.
/// @param unreadable whether directories cannot be read: then a set has to be one of the first directory's files.
bool NamesWhatItDeletes(const Scene& scene, bool unreadable);

} // namespace dcftest

#endif
