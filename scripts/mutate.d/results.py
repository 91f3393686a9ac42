"""What became of the mutants: the file that a run goes on from, the survivors that are explained, the figures."""

import pathlib
from dataclasses import dataclass

# Not counted: the compiler refuses them, or makes the same code of them.
NOT_COUNTED = ("broken", "same")
WANTED = 95  # per cent


@dataclass(frozen=True)
class Result:
    verdict: str  # killed, timeout, survived, broken, same
    by: str       # the test program, or what else a survivor has survived


class Results:
    """One line for each mutant, written as soon as it is known."""

    def __init__(self, path):
        self.path = pathlib.Path(path)
        self.known = {}
        if self.path.exists():
            for line in self.path.read_text().splitlines():
                key, verdict, by = (line + "\t").split("\t")[:3]
                if verdict:  # else the line was being written when the run ended
                    self.known[key] = Result(verdict, by)

    def add(self, key, result):
        self.known[key] = result
        with self.path.open("a") as out:
            out.write(f"{key}\t{result.verdict}\t{result.by}\n")

    def forget_survivors(self):
        """Of the runs without the slow programs."""
        self.known = {key: result for key, result in self.known.items() if result != Result("survived", "")}

    def is_counted(self, key):
        return key in self.known and self.known[key].verdict not in NOT_COUNTED


def read_explained(path):
    """{(file, line of the change ...): reason}. Blocks of lines: the file, the beginning of the function where
    the line stands in others, too, what went, what came, the reason."""
    explained = {}
    text = "\n".join(line for line in pathlib.Path(path).read_text().splitlines() if not line.startswith("#"))
    for block in filter(None, (block.strip() for block in text.split("\n\n"))):
        file, *rest = block.splitlines()
        change = [line for line in rest if line.startswith(("  ", "- ", "+ "))]
        reason = " ".join(rest[len(change):])
        if not change or not reason:
            raise ValueError(f"{path}: a change and a reason are missing: {block}")
        explained[(file, *change)] = reason
    return explained


def summarise(mutants, results, texts, explained):
    """Prints survivors and figures of these mutants. Returns the exit code."""
    counts = dict.fromkeys(("killed", "timeout", "survived", *NOT_COUNTED), 0)
    lacking = 0
    for mutant in mutants:
        result = results.known[mutant.key]
        counts[result.verdict] += 1
        change = mutant.change(texts[mutant.file])
        lines = (mutant.context(texts[mutant.file]), *change)
        reason = explained.get((mutant.file, *lines)) or explained.get((mutant.file, *change))
        if result.verdict == "survived":
            lacking += reason is None
            print(f"\n{mutant.file}:{mutant.line}", *lines, reason or "NOT EXPLAINED", sep="\n    ")
        elif reason is not None and result.verdict in ("killed", "timeout"):
            print(f"\n{mutant.file}:{mutant.line}", *lines, f"explained, but {result.verdict} by {result.by}", sep="\n    ")
    counted = len(mutants) - sum(counts[verdict] for verdict in NOT_COUNTED)
    found = counts["killed"] + counts["timeout"]
    print(f"\n{counted} mutants counted: {counts['killed']} killed, {counts['timeout']} timeouts, "
          f"{counts['survived'] - lacking} survivors explained, {lacking} survivors not explained")
    print(f"not counted: {counts['broken']} do not compile, {counts['same']} make the same code")
    percentage = 100 * found / counted if counted else 0
    print(f"{percentage:.1f} % killed")
    return 0 if percentage >= WANTED else 1
