"""The run itself; scripts/mutate prepares it and tells how it is called."""

import argparse
import pathlib
import queue
import random
import signal
import sys
import threading

from build import Base, DoesNotCompile, Workshop
from mutations import mutants_of
from programs import Programs
from results import Result, Results, read_explained, summarise
from selftest import self_test
from source import Source


def arguments():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tree", required=True)
    parser.add_argument("--build", required=True)
    parser.add_argument("--folder", required=True)
    parser.add_argument("--scratch", required=True)
    parser.add_argument("--preload", required=True)
    parser.add_argument("--earlier")
    parser.add_argument("--same-tests", action="store_true")
    parser.add_argument("--sample", type=int, default=400)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=1)
    parser.add_argument("--all", action="store_true")
    parser.add_argument("--slow", action="store_true")
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--self-test", action="store_true")
    return parser.parse_args()


def read_sources(tree):
    files = sorted(path for path in (pathlib.Path(tree) / "Src").iterdir() if path.suffix in (".cpp", ".h"))
    return {f"Src/{path.name}": path.read_text() for path in files}


def try_mutant(mutant, text, workshop, programs):
    workshop.put(mutant.file, mutant.apply(text))
    try:
        in_programs = workshop.base.programs_with(mutant.file)
        differs = workshop.build_library(mutant.file)
        if not differs and not in_programs:
            return Result("same", "")
        verdict, by = programs.try_all(mutant, workshop.folder / "lib") if differs else ("survived", "")
        if verdict == "survived":
            verdict, by = try_in_programs(in_programs, workshop, programs)
        if verdict == "survived":
            by = "also the slow ones" if programs.slow else ""
            return Result("same" if workshop.is_same_optimised(mutant.file) else verdict, by)
        return Result(verdict, by)
    except DoesNotCompile:
        return Result("broken", "")
    finally:
        workshop.take_back(mutant.file)


def try_in_programs(in_programs, workshop, programs):
    for program, objects in in_programs.items():
        try:
            path = workshop.build_program(program, objects)
        except DoesNotCompile:
            return "killed", program  # by what the test asserts at compile time
        verdict = programs.run(path.name, workshop.folder / "lib", path=path)
        if verdict != "passed":
            return verdict, program
    return "survived", ""


class Run:
    """Tries mutants in a given order until enough of them count."""

    def __init__(self, order, wanted, results):
        self.order = order
        self.wanted = wanted
        self.results = results
        self.lock = threading.Lock()
        self.broken_off = threading.Event()
        self.failure = None

    def chosen(self):
        """The shortest beginning of the order that holds enough, as far as it is known."""
        count = 0
        for position, mutant in enumerate(self.order):
            if count == self.wanted or mutant.key not in self.results.known:
                return self.order[:position], count == self.wanted
            count += self.results.is_counted(mutant.key)
        return self.order, True

    def work(self, texts, workshops, programs):
        waiting = queue.SimpleQueue()
        for mutant in self.order:
            if mutant.key not in self.results.known:
                waiting.put(mutant)
        threads = [threading.Thread(target=self._work, args=(waiting, texts, workshop, programs), daemon=True)
                   for workshop in workshops]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        if self.failure is not None:
            raise self.failure

    def _work(self, waiting, texts, workshop, programs):
        try:
            self._try_each(waiting, texts, workshop, programs)
        except Exception as failure:  # for the thread that waits
            self.failure = failure
            self.broken_off.set()

    def _try_each(self, waiting, texts, workshop, programs):
        while not self.broken_off.is_set():
            with self.lock:
                if self.chosen()[1] or waiting.empty():
                    return
                mutant = waiting.get()
            result = try_mutant(mutant, texts[mutant.file], workshop, programs)
            if self.broken_off.is_set():
                return  # the program was ended, and not by the mutant
            with self.lock:
                self.results.add(mutant.key, result)
                print(f"{result.verdict:8} {mutant.key} {result.by}", file=sys.stderr, flush=True)


def take_over(earlier, same_tests, results):
    """What an earlier run of the same sources has found stays found: tests only grow."""
    for key, result in Results(earlier).known.items():
        if (same_tests or result.verdict != "survived") and key not in results.known:
            results.add(key, result)


def learn(programs, mutants, results):
    for mutant in mutants:
        result = results.known.get(mutant.key)
        if result and result.verdict in ("killed", "timeout"):
            programs.note_kill(mutant, result.by)


def main():
    options = arguments()
    texts = read_sources(options.tree)
    mutants = [mutant for file, text in texts.items() for mutant in mutants_of(Source(file, text))]
    if options.list:
        for mutant in mutants:
            print(mutant.key, *mutant.change(texts[mutant.file]), sep="\n    ")
        return 0
    # A run that is told to end leaves by way of its "finally".
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    programs = Programs(options.build, options.scratch, options.preload)
    base = Base(options.tree, options.build)
    folder = pathlib.Path(options.folder)
    if options.self_test:
        workshop = Workshop(base, folder / "self-test")
        return self_test(mutants, texts, programs,
                         lambda mutant: try_mutant(mutant, texts[mutant.file], workshop, programs))

    programs.find(options.slow)
    print(f"{len(programs.names)} test programs, first on the unchanged library ...", file=sys.stderr, flush=True)
    failed = programs.measure()
    if failed:
        print("The tests fail on the unchanged library:", *failed, file=sys.stderr)
        return 1
    results = Results(folder / "results.tsv")
    if options.earlier:
        take_over(options.earlier, options.same_tests, results)
    if options.slow:
        results.forget_survivors()
    learn(programs, mutants, results)
    order = list(mutants)
    random.Random(options.seed).shuffle(order)
    run = Run(order, len(order) if options.all else options.sample, results)
    try:
        run.work(texts, [Workshop(base, folder / f"job-{job}") for job in range(options.jobs)], programs)
    finally:
        run.broken_off.set()
        programs.end_all()
    return summarise(run.chosen()[0], results, texts, read_explained(pathlib.Path(options.tree) / "tests/mutants.txt"))


if __name__ == "__main__":
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        print("broken off; the next run goes on from here", file=sys.stderr)
        sys.exit(130)
