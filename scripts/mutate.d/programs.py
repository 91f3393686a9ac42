"""The test programs: which there are, how long each takes, in what order they are run against a mutant."""

import math
import os
import pathlib
import resource
import shutil
import signal
import subprocess
import tempfile

# A changed library may ask for memory, write or compute without end, or wait for ever.
MEMORY = 4 << 30
FILE_SIZE = 6 << 30  # the largest that a test makes, without contents, has 5 GiB
COMPUTING = 5   # seconds, and so many times what a program takes on the unchanged library; a machine that is busy does
WAITING = 60    # not make that longer, so the clock on the wall comes in last
TIMES = 4
# Enough operations to meet every rule, few enough for every mutant.
ENVIRONMENT = {"DCF_TEST_OPERATIONS": "6000", "DCF_TEST_CARDS": "20"}
# They test the tests' own support.
SUPPORT = {"unit-card", "unit-child", "unit-fakes", "unit-hostile-locale", "unit-seam"}
# They fail call after call: for what the others do not notice, and only when asked for.
SLOW = {"faults-calls", "faults-memory"}


def _limit(computing):
    resource.setrlimit(resource.RLIMIT_CPU, (computing, computing + 1))
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_SIZE, FILE_SIZE))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


class Programs:
    def __init__(self, build, scratch, preload):
        self.build = pathlib.Path(build).absolute()
        self.scratch = scratch  # short: the paths of cards are counted
        self.preload = preload
        self.names = []
        self.slow = False
        self.seconds = {}
        self.kills = {}  # file: [(line, program)]
        self.running = set()

    def find(self, slow):
        """All that ask the library for anything."""
        self.slow = slow
        library = self._symbols(self.build / "lib" / "libdcffilelist.so", "--defined-only")
        names = {path.name for path in (self.build / "bin").glob("*-*")} - SUPPORT - (set() if slow else SLOW)
        self.names = sorted(name for name in names
                            if library & self._symbols(self.build / "bin" / name, "--undefined-only"))

    def measure(self):
        """Runs each one on the unchanged library. Returns those that fail."""
        failed = []
        for name in self.names:
            self.seconds[name] = 120
            before = self._computed()
            if self.run(name, self.build / "lib") != "passed":
                failed.append(name)
            self.seconds[name] = self._computed() - before
        return failed

    def note_kill(self, mutant, name):
        self.kills.setdefault(mutant.file, []).append((mutant.line, name))

    def in_order(self, mutant):
        """First those that found changes nearby, each by its chance for the time that it takes."""
        chance = dict.fromkeys(self.names, 0.02)
        for line, name in self.kills.get(mutant.file, ()):
            if name in chance:
                chance[name] += 1 / (3 + abs(line - mutant.line))
        return sorted(self.names, key=lambda name: -chance[name] / (0.1 + self.seconds[name]))

    def try_all(self, mutant, library):
        """("killed" or "timeout", program), or ("survived", "") when all of them pass."""
        for name in self.in_order(mutant):
            verdict = self.run(name, library)
            if verdict != "passed":
                self.note_kill(mutant, name)
                return verdict, name
        return "survived", ""

    def run(self, name, library, path=None):
        """Runs all tests of a program up to the first that fails: "passed", "killed" or "timeout"."""
        folder = tempfile.mkdtemp(prefix="dcf-m", dir=self.scratch)
        environment = {**os.environ, **ENVIRONMENT, "LD_LIBRARY_PATH": str(library), "LD_PRELOAD": self.preload,
                       "TMPDIR": folder}
        seconds = TIMES * self.seconds.get(name, COMPUTING)
        process = subprocess.Popen(
            [str(path or self.build / "bin" / name), "--gtest_fail_fast", "--gtest_brief=1"], cwd=folder, env=environment,
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True,
            preexec_fn=lambda: _limit(COMPUTING + math.ceil(seconds)))
        self.running.add(process)
        try:
            code = process.wait(WAITING + 10 * seconds)
            return "passed" if code == 0 else "timeout" if code == -signal.SIGXCPU else "killed"
        except subprocess.TimeoutExpired:
            return "timeout"
        finally:
            self.running.discard(process)
            _end(process)
            _remove(folder)

    def end_all(self):
        for process in list(self.running):
            _end(process)

    @staticmethod
    def _computed():
        used = resource.getrusage(resource.RUSAGE_CHILDREN)
        return used.ru_utime + used.ru_stime

    @staticmethod
    def _symbols(path, which):
        output = subprocess.run(["nm", "-D", which, path], check=True, capture_output=True, text=True).stdout
        return {line.split()[-1].split("@")[0] for line in output.splitlines()}


def _end(process):
    """With all that it has started."""
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()


def _remove(folder):
    """Folders of a card may refuse it."""
    subprocess.run(["chmod", "-R", "u+rwx", folder], stderr=subprocess.DEVNULL, check=False)
    shutil.rmtree(folder, ignore_errors=True)
