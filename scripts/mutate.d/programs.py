"""The test programs: which there are, how long each takes, in what order they are run against a mutant."""

import os
import pathlib
import resource
import shutil
import signal
import subprocess
import tempfile
import time

# A changed library may ask for memory or write without end.
MEMORY = 4 << 30
FILE_SIZE = 256 << 20
# What one program may take: what it takes on the unchanged library, many times over, for a machine that is busy.
PATIENCE = 10
PATIENCE_TIMES = 6
# Enough operations to meet every rule, few enough for every mutant.
ENVIRONMENT = {"DCF_TEST_OPERATIONS": "6000", "DCF_TEST_CARDS": "20"}


def _limit():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_SIZE, FILE_SIZE))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


class Programs:
    def __init__(self, build, scratch):
        self.build = pathlib.Path(build)
        self.scratch = scratch  # short: the paths of cards are counted
        self.names = sorted(path.name for path in (self.build / "bin").glob("*-*") if self._uses_library(path))
        self.seconds = {}
        self.kills = {}  # file: [(line, program)]
        self.running = set()

    def measure(self):
        """Runs each one on the unchanged library. Returns those that fail."""
        failed = []
        for name in self.names:
            started = time.monotonic()
            if self.run(name, self.build / "lib", 600) != "passed":
                failed.append(name)
            self.seconds[name] = time.monotonic() - started
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

    def run(self, name, library, patience=None, path=None):
        """Runs all tests of a program up to the first that fails."""
        folder = tempfile.mkdtemp(prefix="m", dir=self.scratch)
        environment = {**os.environ, **ENVIRONMENT, "LD_LIBRARY_PATH": str(library), "TMPDIR": folder}
        process = subprocess.Popen(
            [str(path or self.build / "bin" / name), "--gtest_fail_fast", "--gtest_brief=1"], cwd=folder, env=environment,
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True,
            preexec_fn=_limit)
        self.running.add(process)
        try:
            return "passed" if process.wait(patience or PATIENCE + PATIENCE_TIMES * self.seconds.get(name, PATIENCE)) == 0 else "killed"
        except subprocess.TimeoutExpired:
            return "timeout"
        finally:
            self.running.discard(process)
            _end(process)
            _remove(folder)

    def end_all(self):
        for process in list(self.running):
            _end(process)

    def _uses_library(self, path):
        """Whether it asks the library for anything: some test the tests' own support."""
        return bool(self._symbols(path, "--undefined-only") & self._symbols(self._library(), "--defined-only"))

    def _library(self):
        return self.build / "lib" / "libdcffilelist.so"

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
