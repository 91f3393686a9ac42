// GetFidx against a plain list: whatever was added, put in front or removed before, and in whatever order the numbers
// stand, it gives the position of the first match from the front.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "AssertionDeath.h"
#include "CSDCFDir.h"
#include "CSDCFList.h"
#include "Card.h"
#include "ChildProcess.h"
#include "Seed.h"
#include "Trees.h"

using dcftest::Append;
using dcftest::AppendNumbers;
using dcftest::DiesByAssertion;
using dcftest::Numbers;
using dcftest::PutInFront;
using dcftest::RunInChild;
using dcftest::Seed;

namespace {

using Ints = std::vector<int>;

int FirstPosition(const Ints& numbers, int number) {
    return static_cast<int>(std::find(numbers.begin(), numbers.end(), number) - numbers.begin());
}

void ExpectFirstMatches(CSDCFDir& dir, const Ints& numbers) {
    ASSERT_EQ(Numbers(dir), numbers);
    for (const int number : numbers) {
        ASSERT_EQ(dir.GetFidx(number), FirstPosition(numbers, number))
            << number << " in " << testing::PrintToString(numbers);
    }
}

bool DiesSearching(CSDCFDir& dir, int number) {
    return DiesByAssertion(RunInChild([&] { (void)dir.GetFidx(number); }),
                           {"it != m_itemGroup.end()", "cannot found fnum = " + std::to_string(number), "CSDCFDir",
                            "int CSDCFDir::GetFidx(int)"});
}

TEST(GetFidx, GivesTheFirstMatchHoweverOftenAnUnorderedFolderIsAsked) {
    CSDCFDir dir(100, "100ABCDE");
    Ints numbers = {5, 9, 2, 9, 5, 1, 40, 3, 40, 8};
    AppendNumbers(dir, numbers);
    for (int round = 0; round < 4; ++round) { // more look-ups than it takes for the folder to be sorted
        for (int again = 0; again < 3; ++again) {
            ExpectFirstMatches(dir, numbers);
        }
        EXPECT_TRUE(DiesSearching(dir, 4));
        EXPECT_TRUE(DiesSearching(dir, 41));
        const int removed = numbers.front() == 5 ? 0 : 1;
        dir.RemoveItem(removed);
        numbers.erase(numbers.begin() + removed);
    }
}

TEST(GetFidx, GivesTheFirstMatchInAnyOrderOfNumbers) {
    const struct {
        Ints numbers;
        const char* why;
    } rows[] = {
        {{1}, "one item"},
        {{9, 5, 2}, "descending"},
        {{2, 5, 9}, "ascending"},
        {{5, 9, 2}, "mixed, the highest in the middle"},
        {{9, 2, 5}, "mixed, the lowest in the middle"},
        {{7, 7, 7}, "one number three times"},
        {{9, 7, 7, 7, 2}, "one number three times among others"},
        {{9, 7, 5, 7, 9}, "numbers that come again"},
        {{1, 2, 1, 2}, "numbers that come again"},
        {{0, -5, 3, 999999, -5}, "numbers of Camera names"},
        {{2147483647, 0, -2147483647 - 1}, "the ends of the range"},
        {{8, 6, 4, 2, 3}, "descending but for the last"},
        {{1, 8, 6, 4, 2}, "descending but for the first"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.why);
        CSDCFDir appended(99, "Camera");
        for (const int number : row.numbers) {
            Append(appended, 99, number, "20240131_000001.JPG");
        }
        ExpectFirstMatches(appended, row.numbers);
        CSDCFDir headed(99, "Camera");
        for (auto it = row.numbers.rbegin(); it != row.numbers.rend(); ++it) {
            PutInFront(headed, 99, *it, "20240131_000001.JPG");
        }
        ExpectFirstMatches(headed, row.numbers);
        EXPECT_TRUE(DiesSearching(appended, 424242));
    }
}

TEST(GetFidx, FindsALowerOrEqualNumberThatWasPutInFront) {
    for (const int number : {0, 1, 2, 3, 5, 7, 9}) {
        CSDCFDir dir(100, "100ABCDE");
        AppendNumbers(dir, {9, 5, 2});
        PutInFront(dir, 100, number, dcftest::DcfName(number));
        ExpectFirstMatches(dir, {number, 9, 5, 2});
    }
}

TEST(GetFidx, StaysRightWhenTheItemThatBrokeTheOrderIsGone) {
    CSDCFDir dir(100, "100ABCDE");
    AppendNumbers(dir, {9, 5, 2});
    PutInFront(dir, 100, 5, dcftest::DcfName(5));
    dir.RemoveItem(0);
    ExpectFirstMatches(dir, {9, 5, 2});
    PutInFront(dir, 100, 10, dcftest::DcfName(10));
    ExpectFirstMatches(dir, {10, 9, 5, 2});
    dir.RemoveItems({0, 1, 2, 3});
    AppendNumbers(dir, {1, 4, 4});
    ExpectFirstMatches(dir, {1, 4, 4});
    dir.RemoveItem(0);
    ExpectFirstMatches(dir, {4, 4});
}

TEST(GetFidx, StartsAfreshInAnEmptiedFolder) {
    CSDCFDir dir(100, "100ABCDE");
    AppendNumbers(dir, {1, 5, 3});
    for (int i = 0; i < 3; ++i) {
        dir.SetProtect(i, false);
    }
    dir.RemoveAllItems();
    AppendNumbers(dir, {9, 5, 2});
    ExpectFirstMatches(dir, {9, 5, 2});
    dir.RemoveItems({0, 1, 2});
    PutInFront(dir, 100, 3, dcftest::DcfName(3));
    PutInFront(dir, 100, 2, dcftest::DcfName(2));
    ExpectFirstMatches(dir, {2, 3});
}

TEST(GetFidx, FindsEveryNumberOfAFullDirectory) {
    CSDCFDir dir(100, "100ABCDE");
    for (int number = 9999; number >= 1; number -= 2) {
        Append(dir, 100, number, dcftest::DcfName(number));
    }
    for (int number = 9999; number >= 1; number -= 2) {
        ASSERT_EQ(dir.GetFidx(number), (9999 - number) / 2);
    }
    EXPECT_TRUE(DiesSearching(dir, 5000));
    EXPECT_TRUE(DiesSearching(dir, 0));
    EXPECT_TRUE(DiesSearching(dir, 10000));
}

/// One folder and the plain list that it must be equal to.
class Model {
public:
    Model(Seed& seed, int highest) : m_seed(seed), m_highest(highest) {}

    void Step() {
        switch (m_seed.Pick(0, 9)) {
        case 0:
        case 1:
        case 2:
            AddAtTheBack(m_seed.Chance(0.7) && !m_numbers.empty() ? m_numbers.back() - m_seed.Pick(1, 3) : Any());
            break;
        case 3:
        case 4:
        case 5:
            AddInFront(m_seed.Chance(0.7) && !m_numbers.empty() ? m_numbers.front() + m_seed.Pick(1, 3) : Any());
            break;
        case 6:
        case 7:
            RemoveOne();
            break;
        case 8:
            RemoveSome();
            break;
        default:
            if (m_seed.Chance(0.2)) {
                RemoveUnprotected();
            }
        }
    }

    void Check() {
        ExpectFirstMatches(m_dir, m_numbers);
    }

    int Missing() {
        int number = Any();
        while (std::find(m_numbers.begin(), m_numbers.end(), number) != m_numbers.end()) {
            ++number;
        }
        return number;
    }

    CSDCFDir& Dir() {
        return m_dir;
    }

private:
    int Any() {
        return m_seed.Pick(0, m_highest);
    }
    void AddAtTheBack(int number) {
        Append(m_dir, 99, number, "20240131_000001.JPG");
        m_numbers.push_back(number);
    }
    void AddInFront(int number) {
        PutInFront(m_dir, 99, number, "20240131_000001.JPG");
        m_numbers.insert(m_numbers.begin(), number);
    }
    void RemoveOne() {
        if (!m_numbers.empty()) {
            const int position = m_seed.Pick(0, static_cast<int>(m_numbers.size()) - 1);
            m_dir.RemoveItem(position);
            m_numbers.erase(m_numbers.begin() + position);
        }
    }
    void RemoveSome() {
        Ints positions;
        Ints left;
        for (std::size_t i = 0; i < m_numbers.size(); ++i) {
            if (m_seed.Chance(0.3)) {
                positions.push_back(static_cast<int>(i));
            } else {
                left.push_back(m_numbers[i]);
            }
        }
        m_dir.RemoveItems(positions);
        m_numbers = left;
    }
    void RemoveUnprotected() {
        Ints left;
        for (std::size_t i = 0; i < m_numbers.size(); ++i) {
            const bool protect = m_seed.Chance(0.5);
            m_dir.SetProtect(static_cast<int>(i), protect);
            if (protect) {
                left.push_back(m_numbers[i]);
            }
        }
        m_dir.RemoveAllItems();
        m_numbers = left;
    }

    Seed& m_seed;
    int m_highest;
    CSDCFDir m_dir{99, "Camera"};
    Ints m_numbers;
};

TEST(GetFidx, AgreesWithAPlainListOverRandomChanges) {
    Seed seed;
    SCOPED_TRACE(seed.Text());
    for (int round = 0; round < 300; ++round) {
        Model model(seed, round % 2 == 0 ? 12 : 9999);
        for (int step = 0; step < 60; ++step) {
            SCOPED_TRACE("round " + std::to_string(round) + ", step " + std::to_string(step));
            model.Step();
            ASSERT_NO_FATAL_FAILURE(model.Check());
        }
        if (round % 20 == 0) {
            EXPECT_TRUE(DiesSearching(model.Dir(), model.Missing())) << "round " << round;
        }
    }
}

TEST(GetFidx, AgreesWithAPlainListOverScannedFolders) {
    Seed seed;
    SCOPED_TRACE(seed.Text());
    for (int round = 0; round < 20; ++round) {
        dcftest::Card card;
        card.AddDir("Camera").AddDir("100ABCDE");
        for (int i = 0; i < 40; ++i) {
            const std::string date = "202401" + std::to_string(seed.Pick(10, 31)) + std::to_string(seed.Pick(0, 9));
            const std::string name = date + std::to_string(100000 + seed.Pick(0, 30)) + ".JPG";
            if (!card.Exists("Camera", name)) {
                card.AddFile("Camera", name);
            }
            const std::string dcf = dcftest::DcfName(seed.Pick(0, 60), seed.Chance(0.5) ? "JPG" : "SRW");
            if (!card.Exists("100ABCDE", dcf)) {
                card.AddFile("100ABCDE", dcf);
            }
        }
        for (const auto& [dnum, name] : {std::pair(99, "Camera"), std::pair(100, "100ABCDE")}) {
            CSDCFDir dir(dnum, name);
            EXPECT_GT(dir.Listup(dcftest::Writable(card.Root()).data(), dnum, 0), 0);
            ASSERT_NO_FATAL_FAILURE(ExpectFirstMatches(dir, Numbers(dir)));
            PutInFront(dir, dnum, dir.GetLastItem().getFileNum(), dir.GetLastItem().getFileName());
            ASSERT_NO_FATAL_FAILURE(ExpectFirstMatches(dir, Numbers(dir)));
        }
    }
}

} // namespace
