// The order of a listing's steps, seen from its log: this program is the log and looks at the list with every line.
#include <gtest/gtest.h>

#include <cstdarg>
#include <ostream>
#include <string>
#include <vector>

#include "CSFileList.h"
#include "Card.h"
#include "dlog.h"

namespace {

struct Moment {
    std::string function;
    int listupDone;
    bool hasTree;
    int count;
    int position;

    bool operator==(const Moment&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Moment& moment) {
    return out << moment.function << ": listupDone " << moment.listupDone << (moment.hasTree ? ", tree" : ", no tree")
               << ", " << moment.count << " files, at " << moment.position;
}

const CSFileList* g_list = nullptr;
std::vector<Moment> g_moments;

} // namespace

int __dlog_print(int /*logId*/, int /*priority*/, const char* tag, const char* format, ...) {
    if (std::string(tag) != "MM_FLIST") {
        return 0; // the device's own
    }
    va_list arguments;
    va_start(arguments, format);
    (void)va_arg(arguments, const char*);
    const std::string function = va_arg(arguments, const char*);
    va_end(arguments);
    if (g_list != nullptr) {
        g_moments.push_back(
            {function, g_list->listupDone, g_list->m_pDCF != nullptr, g_list->m_nList, g_list->m_nCurGetAtIdx});
    }
    return 0;
}

namespace {

TEST(ListupOrder, TheStateIsSetBeforeTheFirstLineAndBeforeTheLast) {
    dcftest::Card card;
    card.AddFiles("100ABCDE", {dcftest::DcfName(1), dcftest::DcfName(2)});
    CSFileList list;
    ASSERT_EQ(list.SetBaseURI(card.Root().c_str()), 0);
    g_list = &list;
    EXPECT_EQ(list.Listup(), 2);
    g_list = nullptr;
    EXPECT_EQ(g_moments, (std::vector<Moment>{{"Listup", 0, false, -1, -1},
                                              {"UpdateFirstIndex", 0, true, 2, -1},
                                              {"GetFirst", 0, true, 2, -1},
                                              {"GetFirst", 0, true, 2, -1},
                                              {"GetCurIndex", 0, true, 2, 0},
                                              {"Listup", 1, true, 2, 0}}));
}

} // namespace
