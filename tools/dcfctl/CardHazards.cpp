// Hazards of the card; see the header.
#include "CardHazards.h"

#include <algorithm>
#include <string>
#include <utility>
#include <variant>

#include "CardSurvey.h"
#include "DcfNames.h"
#include "Naming.h"
#include "Numbering.h"
#include "Phrases.h"
#include "Text.h"

namespace dcfctl {
namespace {

/// Below this many numbers it is time to think of another card.
constexpr int kFewNumbers = 1000;
constexpr int kIndexPerDirectory = 100000;
constexpr std::size_t kFirstFolderNumber = 100;
constexpr int kLastFolder = 999;
constexpr int kLastFile = 9999;
constexpr const char* kNewFolderSuffix = "PHOTO";

const std::string& RootOf(const CardCheck& check) {
    static const std::string top = "/";
    return check.Card().root.empty() ? top : check.Card().root;
}

int FirstIndexOf(const CardCheck& check) {
    return check.Listing()->List().UpdateFirstIndex(true);
}

// ---- The path ----

void AddRoot(const CardCheck& check, std::vector<CheckFinding>& findings) {
    const std::string& root = RootOf(check);
    const auto add = [&](CheckCode code, std::string text) { findings.push_back({code, root, std::move(text), ""}); };
    if (root.find(kCamera) != std::string::npos) {
        add(CheckCode::kRootCamera, "it contains \"Camera\", which makes every folder a 'Camera' folder to the list");
    }
    if (HoldsPhoto(root)) {
        add(CheckCode::kRootPhoto, "it contains \"PHOTO\", which lets only one folder of a number into the list");
    }
    const bool camera = std::any_of(check.Entries().folders.begin(), check.Entries().folders.end(),
                                    [](const CensusFolder& folder) { return folder.camera; });
    const std::size_t longest = kMaxPath - (camera ? kCameraPathLength : kDcfPathLength);
    if (check.Card().root.size() > longest) {
        add(CheckCode::kRootTooLong, "it has " + std::to_string(root.size()) + " characters, and with more than " +
                                         std::to_string(longest) + " the paths of files are cut");
    }
    const auto dcim = LookAt(check.Dcim());
    if (dcim.has_value() && !dcim->IsFolder()) {
        findings.push_back({CheckCode::kDcimLink, check.Dcim(),
                            "it is " + std::string(KindText(dcim->mode)) +
                                ", so that the pictures may not be on this card, and nothing is changed through it",
                            ""});
    }
}

// ---- Numbers ----

/// What comes when the numbers are used up.
std::string ThenText(const CardCheck& check, const RenumberPlan& plan) {
    if (check.Listing()->Count() + kFewNumbers > kMaxFiles) {
        return "the list takes " + std::to_string(kMaxFiles) + " files, and a renumbering makes no room for more";
    }
    if (FirstIndexOf(check) / kIndexPerDirectory == kLastFolder - 1) {
        return "then numbers go on in the last folder, 999, though a camera may count the card as full by then";
    }
    const std::size_t folders = plan.rows.size();
    const std::string numbers = folders == 1
                                    ? " the number 100"
                                    : " the numbers from 100 to " + std::to_string(kFirstFolderNumber + folders - 1);
    return "then no file can be added until the folders are renumbered, which would " +
           (plan.IsComplete() ? "give " + CountText(folders, "folder", "folders") + numbers
                              : std::string("not end complete here"));
}

/// New names are taken in the last folder only when it is named as new folders are.
bool TakesNewNames(const std::string& folder) {
    return folder.substr(3) == kNewFolderSuffix;
}

/// Why there are no numbers left in the last folder although it holds few.
std::string LastFolderText(const CardCheck& check, int newest) {
    if (newest / kIndexPerDirectory != kLastFolder || newest % kIndexPerDirectory == kLastFile) {
        return "";
    }
    const std::string& highest = check.Listing()->Inspected().folders.front().name;
    return TakesNewNames(highest) ? ""
                                  : ", because " + Quoted(highest) + " is the last folder and not named as new ones " +
                                        "are, such as " + Quoted(std::to_string(kLastFolder) + kNewFolderSuffix);
}

void AddNumbers(const CardCheck& check, const RenumberPlan& plan, std::vector<CheckFinding>& findings) {
    const int left = *NumbersLeft(check);
    if (left >= kFewNumbers) {
        return;
    }
    const int newest = FirstIndexOf(check);
    const std::string text = (newest > 0 ? "the newest file has the number " + IndexText(newest) + " and " : "") +
                             CountText(static_cast<std::size_t>(std::max(left, 0)), "number is", "numbers are") +
                             " left" + LastFolderText(check, newest) + "; " + ThenText(check, plan);
    findings.push_back(
        {left > 0 ? CheckCode::kNumbersNearlyUsedUp : CheckCode::kNumbersUsedUp, RootOf(check), text, ""});
}

/// Foretells the next name of a picture, as a camera with its ordinary settings would ask for it.
void AddNextName(const CardCheck& check, std::vector<CheckFinding>& findings) {
    Numbering::Start start;
    start.dcim = check.Dcim();
    start.files = check.Listing()->Count();
    start.firstIndex = FirstIndexOf(check);
    const auto next = Numbering(start, check.Listing()->Inspected()).Take(PartsFor({}, FILE_TYPE_JPG));
    const auto* finding = std::get_if<Finding>(&next);
    if (finding == nullptr) {
        return;
    }
    const std::string code = finding->code;
    const bool told = code == "numbers-used-up" || code == "list-full";             // see above
    const bool passing = code == "card-read-only" || code == "folder-not-writable"; // no matter of its names
    if (!told && !passing) {
        findings.push_back({CheckCode::kNoNextName, RootOf(check), finding->text, ""});
    }
}

void AddEmptyHighest(const CardCheck& check, std::vector<CheckFinding>& findings) {
    const std::vector<CardFolder>& folders = check.Listing()->Inspected().folders;
    if (folders.empty() || folders[0].files > 0 || folders[0].number == kCameraNumber) {
        return;
    }
    const auto filled = std::find_if(folders.begin(), folders.end(), [](const CardFolder& folder) {
        return folder.files > 0 && folder.number != kCameraNumber;
    });
    if (filled == folders.end()) {
        return;
    }
    const std::string path = check.Dcim() + "/" + folders[0].name;
    findings.push_back({CheckCode::kEmptyHighestFolder, path,
                        "numbers go on from " + std::to_string(folders[0].number) +
                            "-0001, although the last folder "
                            "with files is " +
                            Quoted(filled->name) + "; the numbers between are not used",
                        check.Dcim() + "/" + filled->name});
}

// ---- Renumbering ----

void AddRenumbering(const CardCheck& check, const RenumberPlan& plan, std::vector<CheckFinding>& findings) {
    for (const Renaming& row : plan.rows) {
        const bool harm = row.outcome == RenameOutcome::kOverwrites || row.outcome == RenameOutcome::kBeyond;
        CheckCode code = CheckCode::kRenumberIncomplete;
        if (harm) {
            code = CheckCode::kRenumberHarmful;
        } else if (!row.listed && !row.camera && row.outcome != RenameOutcome::kUnchanged &&
                   row.outcome != RenameOutcome::kBlocked) {
            code = CheckCode::kRenumberTakesAlong;
        } else if (row.IsClean()) {
            continue;
        }
        findings.push_back({code, check.Dcim() + "/" + row.from,
                            "a renumbering would make it " + Quoted(row.to) + ": " + OutcomeText(row), ""});
    }
}

} // namespace

std::optional<int> NumbersLeft(const CardCheck& check) {
    const CardListing* listing = check.Listing();
    if (listing == nullptr) {
        return std::nullopt;
    }
    const int newest = FirstIndexOf(check);
    if (newest / kIndexPerDirectory < kLastFolder || listing->Count() == 0) {
        return std::max(listing->List().GetAvailNumOfPhoto(), 0);
    }
    // In the last folder the library also reads the folder's name out of a path, at the place where a camera's cards
    // have it. Elsewhere that would be other letters, so the same is told here by the name itself.
    const std::string& highest = listing->Inspected().folders.front().name;
    return TakesNewNames(highest)
               ? std::max(std::min(kLastFile - newest % kIndexPerDirectory, kMaxFiles - listing->Count()), 0)
               : 0;
}

RenumberPlan PlanRenumberingOf(const CardCheck& check) {
    CardReport report;
    (void)ListFolders(check.Dcim(), check.Card().camera, report.folders); // which share a number is told elsewhere
    return PlanRenumbering(check.Dcim(), report);
}

std::vector<CheckFinding> FindCardHazards(const CardCheck& check, const RenumberPlan& plan) {
    std::vector<CheckFinding> findings;
    AddRoot(check, findings);
    if (check.Listing() != nullptr) {
        AddNumbers(check, plan, findings);
        AddNextName(check, findings);
        AddEmptyHighest(check, findings);
    }
    AddRenumbering(check, plan, findings);
    return findings;
}

} // namespace dcfctl
