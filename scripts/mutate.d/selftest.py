"""Known mutants: three that the tests notice, and one that shows in nothing but time."""

PROGRAMS = ["change-protect", "unit-dir-items"]
KNOWN = [
    ("killed", "Src/CSFileList.cpp", "- m_pDCF->SetProtectAll(on);", "+ ;"),
    ("killed", "Src/CSDCFDir.cpp", "- if (item.getProtect()) {", "+ if (!(item.getProtect())) {"),
    ("killed", "Src/LocalDate.h", "- narrow(local->tm_mon + 1),", "+ narrow(local->tm_mon - 1),"),
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
