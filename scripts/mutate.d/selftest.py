"""Known mutants: three that the tests find, and one that nobody can find by what the library does."""

PROGRAMS = ["change-protect", "unit-dir-items"]
KNOWN = [
    ("killed", "Src/CSFileList.cpp", "- m_pDCF->SetProtectAll(on);", "+ ;"),
    ("killed", "Src/CSDCFDir.cpp", "- m_bDescending = m_itemGroup.empty() || (m_bDescending && fnum < m_itemGroup.back().m_nFileNum);",
     "+ m_bDescending = m_itemGroup.empty() || (m_bDescending && fnum >= m_itemGroup.back().m_nFileNum);"),
    ("killed", "Src/PositionSet.h", "- --m_size;", "+ ++m_size;"),
    ("survived", "Src/CSDCFDir.cpp", "- constexpr int kWalksWorthSorting = 16;", "+ constexpr int kWalksWorthSorting = 17;"),
]


def self_test(mutants, texts, programs, attempt):
    """Returns the exit code: 0 when each of them ends as it must."""
    programs.names = PROGRAMS
    programs.seconds = dict.fromkeys(PROGRAMS, 10)
    wrong = 0
    for expected, file, *change in KNOWN:
        found = [mutant for mutant in mutants if mutant.file == file and list(mutant.change(texts[file])) == change]
        verdict = attempt(found[0]).verdict if found else "missing"
        wrong += verdict != expected
        print(f"{verdict}, must be {expected}: {file}", *change, sep="\n    ")
    return 1 if wrong else 0
