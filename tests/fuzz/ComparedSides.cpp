#include "ComparedSides.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <utility>
#include <vector>

#include "CSDCFList.h"
#include "CapturedOutput.h"
#include "Escape.h"
#include "FakePlatform.h"
#include "PosixSeam.h"
#include "RandomCard.h"
#include "Target.h"

namespace dcffuzz {

using namespace dcftest;

namespace {

const std::vector<std::string> kComparedCalls = {"scandir", "opendir", "stat", "chmod", "unlink", "remove",   "rename",
                                                 "mkdir",   "umask",   "sync", "time",  "usleep", "localtime"};
const std::string kEnded = "ended: ";

std::string Joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) {
        all += "\n    " + Visible(text);
    }
    return all;
}

std::string Compare(const char* what, const std::vector<std::string>& expected,
                    const std::vector<std::string>& actual) {
    return expected == actual
               ? ""
               : std::string("\n  ") + what + ": expected" + Joined(expected) + "\n  got" + Joined(actual);
}

std::vector<std::string> PrefTexts(const std::vector<PrefCall>& calls, std::size_t from) {
    std::vector<std::string> texts;
    for (std::size_t i = from; i < calls.size(); ++i) {
        texts.push_back((calls[i].set ? "set " : "get ") + std::to_string(calls[i].value));
    }
    return texts;
}

bool IsFromOutside(const Operation& operation) {
    return operation.name.find(' ') != std::string::npos;
}

/// To spare a look at the card behind every question.
bool MayChangeNames(const std::vector<std::string>& calls) {
    return std::any_of(calls.begin(), calls.end(), [](const std::string& call) {
        const std::string name = call.substr(0, call.find(' '));
        return name == "unlink" || name == "remove" || name == "rename" || name == "mkdir";
    });
}

bool Deletes(const Operation& operation) {
    return operation.name == "Delete" || operation.name == "DeleteSel" || operation.name == "DeleteAll";
}

} // namespace

ComparedSides::ComparedSides(const ReferenceCard& card) : actual(std::make_unique<Actual>()) {
    expected.list.card = card;
    expected.list.baseURI = card.root;
    actual->dcim = card.root + "/DCIM";
    Require(actual->list.SetBaseURI(card.root.c_str()) == 0, "the root is refused");
    FakePlatform::Get().ForgetLines();
    MakeRealCard(card);
    Require(CardDifference(card).empty(), "the card cannot be made: " + CardDifference(card));
    m_contents = OnCard();
}

void ComparedSides::Do(const Operation& operation, const Clock& clock) {
    expected.list.effects = {};
    expected.list.card.calls.clear();
    expected.list.clock = clock;
    const std::size_t prefCalls = FakePlatform::Get().PrefCalls().size();
    const std::string result = OnReference(operation);
    const Outcome outcome = OnLibrary(operation);
    std::string difference = Difference(operation, result, outcome, prefCalls);
    if (IsFromOutside(operation) || MayChangeNames(outcome.calls)) {
        Contents now = OnCard();
        difference += IsFromOutside(operation) || Deletes(operation) || now == m_contents
                          ? ""
                          : "\n  files are gone, or moved to other folders";
        m_contents = std::move(now);
    }
    Require(difference.empty(), "behind " + Visible(operation.Text()) + ":" + difference);
}

std::string ComparedSides::OnReference(const Operation& operation) {
    try {
        return operation.onReference(expected);
    } catch (const OutOfRange& error) {
        return "threw " + error.text;
    } catch (const Fatal& fatal) {
        m_over = true;
        return kEnded + fatal.condition + ", " + fatal.info;
    }
}

std::string ComparedSides::Result(const Operation& operation) {
    try {
        return operation.onLibrary(*actual);
    } catch (const std::out_of_range& error) {
        const std::string text = error.what();
        return "threw " + text.substr(0, text.find(": "));
    } catch (const Ended& end) {
        return kEnded + end.condition + ", " + end.info;
    }
}

ComparedSides::Outcome ComparedSides::OnLibrary(const Operation& operation) {
    Outcome outcome;
    if (IsFromOutside(operation)) {
        outcome.result = Result(operation);
        return outcome;
    }
    const CapturedOutput output;
    PosixSeam seam;
    const Clock& clock = expected.list.clock;
    seam.FixTime(clock.now);
    seam.FixLocalTime(clock.local);
    seam.SkipSleeps();
    if (clock.broken) {
        seam.FailFrom("localtime", EOVERFLOW);
    }
    outcome.result = Result(operation);
    outcome.calls = seam.Texts(kComparedCalls);
    outcome.printed = output.Text();
    return outcome;
}

std::string ComparedSides::Difference(const Operation& operation, const std::string& result, Outcome outcome,
                                      std::size_t prefCalls) {
    FakePlatform& platform = FakePlatform::Get();
    const Effects& effects = expected.list.effects;
    std::vector<std::string> log = platform.Texts();
    if (m_over) { // the assertion's own lines
        log.resize(log.empty() ? 0 : log.size() - 1);
        outcome.printed.resize(std::min(outcome.printed.size(), outcome.printed.find("[MM_FLIST")));
    }
    AdoptTimesBehindNames(expected, *actual);
    std::string difference = Compare("result", {result}, {outcome.result});
    difference += Compare("log", effects.log, log);
    difference += IsFromOutside(operation) ? "" : Compare("calls", expected.list.card.calls, outcome.calls);
    difference += Compare("preferences", PrefTexts(effects.prefCalls, 0), PrefTexts(platform.PrefCalls(), prefCalls));
    difference += Compare("printed", {effects.printed}, {outcome.printed});
    difference += Compare("collector", effects.collected, TakeCollected());
    difference += m_over ? CardDifference(expected.list.card) : StateDifference(expected, *actual);
    platform.ForgetLines();
    return difference;
}

ComparedSides::Contents ComparedSides::OnCard() const {
    namespace fs = std::filesystem;
    Contents contents;
    std::error_code none;
    for (fs::directory_iterator it(actual->dcim, none), end; it != end; it.increment(none)) {
        std::set<std::string> names;
        for (fs::directory_iterator file(it->path(), none), last; file != last; file.increment(none)) {
            names.insert(file->path().filename().string());
        }
        if (!names.empty()) {
            contents.insert(std::move(names));
        }
    }
    return contents;
}

} // namespace dcffuzz
