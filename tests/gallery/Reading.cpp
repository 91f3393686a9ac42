// What changes nothing; see Road.h.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <csignal>

#include "Cli.h"
#include "Road.h"

#if DCFCTL_HAS_EXIF
#include "DcfExif.h"
#endif

namespace dcftest {
namespace {

using Paths = std::vector<std::string>;

/// More files than that are not asked for one by one.
constexpr int kFew = 40;

/// Whether it completed; or ended in the assertion, if one is given.
testing::AssertionResult Ends(const Ending& ending, const std::string& assertion) {
    const bool died = ending.signal == SIGABRT && ending.out.find("### assert info : ") != std::string::npos;
    const bool as = assertion.empty() ? ending.Completed()
                                      : died && ending.out.find("info : " + assertion + "\033") != std::string::npos;
    return as ? testing::AssertionSuccess()
              : testing::AssertionFailure() << "to end with \"" << assertion << "\": " << ending.Describe();
}

/// The path of every position.
Paths PathsOf(CSFileList& list) {
    Paths paths;
    for (int position = 0; position < list.GetCount(); ++position) {
        paths.emplace_back(At(list, position).m_strURI);
    }
    return paths;
}

/// From one end to the other.
Paths Walk(CSFileList& list, int (CSFileList::*begin)(CSFileListItem*), int (CSFileList::*move)(CSFileListItem*)) {
    Paths paths;
    CSFileListItem item;
    for (int result = (list.*begin)(&item); result == 0; result = (list.*move)(&item)) {
        paths.emplace_back(item.m_strURI);
    }
    return paths;
}

void ExpectSelectionTaken(CSFileList& list, int count) {
    const std::vector<int> positions = Choice(count);
    for (const int position : positions) {
        list.SetSel(position, true);
        EXPECT_TRUE(list.IsSel(position));
    }
    EXPECT_EQ(list.GetSelectIndecies(), positions);
    for (const int position : positions) {
        list.SetSel(position, false);
        EXPECT_FALSE(list.IsSel(position));
    }
    EXPECT_EQ(list.GetSelCount(), 0);
}

/// Asks for the file of a position by its path. @return whether the list took it for another.
bool AskForPath(CSFileList& list, int position) {
    CSFileListItem asked = At(list, position);
    const std::string found = Found(list, position);
    CSFileListItem item;
    EXPECT_EQ(list.GetInfo(asked.m_strURI, &item), 0);
    EXPECT_STREQ(item.m_strURI, asked.m_strURI);
    EXPECT_GE(list.GetFileListIndex(asked.m_strURI), 0);
    EXPECT_FALSE(list.IsWifiFlag(&item));
    return found != asked.m_strURI;
}

void ExpectListed(MadeCard& made, bool camera) {
    const Listed& expected = made.What().In(camera);
    const Ending ending = made.Use([&](CSFileList& list) {
        EXPECT_EQ(List(list, camera), expected.files);
        made.AfterListing();
        EXPECT_EQ(list.GetCount(), expected.files);
        const Paths paths = PathsOf(list);
        EXPECT_EQ(paths.size(), static_cast<std::size_t>(expected.files));
        EXPECT_EQ(std::count(paths.begin(), paths.end(), ""), 0);
        ExpectSelectionTaken(list, expected.files);
    });
    EXPECT_TRUE(Ends(ending, expected.listing));
}

/// The same files by their positions, with their details, from which the counts of the kinds come.
void ExpectDetailsAtAllPositions(CSFileList& list, const Paths& paths) {
    Paths positions;
    std::array<int, 6> types{};
    CSFileListItem item;
    for (int position = 0; position < list.GetCount(); ++position) {
        EXPECT_EQ(list.GetAt(position, &item), 0);
        positions.emplace_back(item.m_strURI);
        ++types.at(static_cast<std::size_t>(item.m_eFileType));
        types.at(static_cast<std::size_t>(std::max(item.m_eObjectType, FILE_TYPE_JPG))) +=
            item.m_eObjectType != FILE_TYPE_NONE && item.m_eObjectType != item.m_eFileType ? 1 : 0;
    }
    EXPECT_EQ(positions, paths);
    for (const eFileType type : {FILE_TYPE_JPG, FILE_TYPE_SRW, FILE_TYPE_MPO, FILE_TYPE_MP4, FILE_TYPE_AVI}) {
        EXPECT_EQ(list.GetFileCount(type), types.at(static_cast<std::size_t>(type))) << type;
    }
}

void ExpectWalked(MadeCard& made, bool camera) {
    const Listed& expected = made.What().In(camera);
    const Ending ending = made.Use([&](CSFileList& list) {
        (void)List(list, camera);
        made.AfterListing();
        Paths paths = PathsOf(list);
        EXPECT_EQ(Walk(list, &CSFileList::GetFirst, &CSFileList::GetNext), paths);
        if (expected.files <= kMany) {
            ExpectDetailsAtAllPositions(list, paths);
        }
        std::reverse(paths.begin(), paths.end());
        EXPECT_EQ(Walk(list, &CSFileList::GetLast, &CSFileList::GetPrev), paths);
    });
    EXPECT_TRUE(Ends(ending, *expected.listing != 0 ? expected.listing : expected.walking));
}

void ExpectAskedFor(MadeCard& made, bool camera) {
    const Listed& expected = made.What().In(camera);
    const bool oneByOne = expected.unknown > 0; // for each of them ends the process
    const std::vector<int> positions = Choice(expected.files);
    int mistaken = 0;
    int unknown = 0;
    const auto ask = [&](const std::vector<int>& some) {
        const Ending ending = made.Use([&](CSFileList& list) {
            (void)List(list, camera);
            made.AfterListing();
            for (const int position : some) {
                if (AskForPath(list, position)) {
                    ReportEvent({"mistaken"});
                }
            }
        });
        mistaken += static_cast<int>(ending.events.size());
        unknown += EndedInALookUp(ending) ? 1 : 0;
        EXPECT_TRUE(ending.Completed() || EndedInALookUp(ending)) << ending.Describe();
    };
    if (oneByOne) {
        for (const int position : positions) {
            ask({position});
        }
    } else {
        ask(positions);
    }
    EXPECT_EQ(mistaken, expected.mistaken);
    EXPECT_EQ(unknown, expected.unknown);
}

} // namespace

bool EndedInALookUp(const Ending& ending) {
    return ending.signal == SIGABRT && (ending.out.find("info : cannot found fnum = ") != std::string::npos ||
                                        ending.out.find("info : cannot find dir index = ") != std::string::npos);
}

std::vector<int> Choice(int count) {
    std::vector<int> positions;
    const int step = std::max(1, count / kFew);
    for (int position = 0; position < count; position += step) {
        positions.push_back(position);
    }
    if (count > 0 && positions.back() != count - 1) {
        positions.push_back(count - 1);
    }
    return positions;
}

int List(CSFileList& list, bool camera) {
#if DCFCTL_HAS_EXIF
    EXPECT_EQ(list.RegisterPhotoMetadataCB(CollectExif), 1);
#endif
    list.IncludeNonDCF(camera);
    return list.Listup();
}

CSFileListItem At(CSFileList& list, int position) {
    CSFileListItem item;
    EXPECT_EQ(list.GetAtSimply(position, &item), 0);
    return item;
}

std::string Found(CSFileList& list, int position) {
    CSFileListItem item = At(list, position);
    EXPECT_EQ(list.SetCur(item.m_strURI), 0);
    return At(list, list.GetCurIndex()).m_strURI;
}

void ExpectRead(MadeCard& made) {
    for (const bool camera : {true, false}) {
        SCOPED_TRACE(camera ? "with Camera" : "without Camera");
        ExpectListed(made, camera);
        if (!camera && made.What().listed.files > kMany) {
            continue; // the same road again, and a long one
        }
        ExpectWalked(made, camera);
        if (*made.What().In(camera).listing == 0) {
            ExpectAskedFor(made, camera);
        }
    }
}

void ExpectToldByDcfctl(MadeCard& made) {
    clitest::Options options;
    options.user = made.User();
    const CardEntries before = made.Look();
    const Told& told = made.What().told;
    made.Sealed([&] {
        for (const auto& [verb, exit] : {std::pair{"ls", told.ls}, {"check", told.check}, {"count", told.count}}) {
            const clitest::Outcome run = clitest::OnCard(made.Root(), {verb}, options);
            EXPECT_EQ(run.signal, 0) << verb;
            EXPECT_EQ(run.exit, exit) << verb << ": " << run.err;
        }
    });
    EXPECT_EQ(made.Look(), before);
}

} // namespace dcftest
