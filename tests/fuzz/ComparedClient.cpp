#include "ComparedClient.h"

#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "ComparedSides.h"
#include "HostileCard.h"
#include "Target.h"

namespace dcffuzz {

namespace {

using namespace dcftest;

constexpr int kMostSteps = 40;
constexpr int kLongestRoot = 75;

/// So that paths are sometimes cut, and "PHOTO" sometimes stands in every path.
std::string RootName(Dice& dice, std::size_t folder) {
    const int kind = dice.Pick(0, 15);
    if (kind == 0) {
        return "PHOTO";
    }
    const int longest = kLongestRoot - static_cast<int>(folder) - 1;
    return std::string(static_cast<std::size_t>(kind < 3 ? dice.Pick(1, longest) : 3), 'r');
}

Operation Choose(Dice& dice, const Expected& state) {
    if (!state.list.tree && dice.Pick(0, 3) != 3) {
        return MakeOperation("Listup", dice, state);
    }
    return RandomOperation(dice, state);
}

Clock DrawClock(Dice& dice) {
    Clock clock;
    clock.now = dice.Pick(1, 2000000000);
    clock.local.tm_year = dice.Pick(70, 200);
    clock.local.tm_mon = dice.Pick(0, 11);
    clock.local.tm_mday = dice.Of<int>({5, 24});
    clock.broken = dice.Pick(0, 31) == 31;
    return clock;
}

} // namespace

void RunComparedClient(Dice& dice, const std::string& folder) {
    ReferenceCard card;
    card.root = folder + "/" + RootName(dice, folder.size());
    Require(::mkdir(card.root.c_str(), 0755) == 0, "there is no place for a card");
    DrawHostileCard(dice, Ranks::Distinct, card);
    const Clock clock = DrawClock(dice);
    ComparedSides sides(card);
    for (int step = 0; step < kMostSteps && !dice.Exhausted() && !sides.Over(); ++step) {
        const Operation operation = Choose(dice, sides.expected);
        if (operation.onReference != nullptr) { // else nothing of the kind is possible now
            sides.Do(operation, clock);
        }
    }
    std::filesystem::remove_all(card.root);
}

} // namespace dcffuzz
