"""Compiles one changed source and what is made of it, in a folder of its own. The build that it starts from stays."""

import json
import os
import pathlib
import shlex
import shutil
import subprocess

LIBRARY = "lib/libdcffilelist.so"
LAYOUT = "bin/unit-record-layout"
LOADED_AS = "libdcffilelist.so.1"
PATIENCE = 120  # seconds, for one run of the compiler


class DoesNotCompile(Exception):
    pass


class Base:
    """The unchanged sources and their build: the library and every test program."""

    def __init__(self, tree, build):
        self.tree = pathlib.Path(tree).absolute()
        self.build = pathlib.Path(build).absolute()
        entries = json.loads((self.build / "compile_commands.json").read_text())
        self.compile_commands = {}  # object: command
        for entry in entries:
            command = shlex.split(entry["command"])
            self.compile_commands[command[command.index("-o") + 1]] = command
        self.users = self._users()

    def objects_with(self, file):
        """The objects of the library into which a source goes."""
        return [name for name in self.users[file] if name.startswith("Src/")]

    def programs_with(self, file):
        """Test programs that a changed source is compiled into, beside the library: {program: [object]}. A header that
        declares a class of the library is in nearly all of them; there the one that holds the layouts is enough."""
        declares = file.endswith(".h") and (self.tree / file).with_suffix(".cpp").exists()
        found = {}
        for name in self.users[file]:
            if name.startswith("tests/"):
                program = "bin/" + name.split("/")[3].removesuffix(".dir")
                if program == LAYOUT or (not declares and self._names(name, file)):
                    found.setdefault(program, []).append(name)
        return found

    def ninja(self, *arguments):
        return subprocess.run(["ninja", "-C", self.build, *arguments], check=True, capture_output=True, text=True).stdout

    def link_command(self, target):
        """Without what the build does behind it."""
        for command in self.ninja("-t", "commands", target).split(" && "):
            if f" -o {target}" in command:
                return shlex.split(command)
        raise RuntimeError(f"nothing links {target}")

    def _users(self):
        users = {}
        name = None
        for line in self.ninja("-t", "deps").splitlines():
            if line.startswith("    "):
                path = pathlib.Path(os.path.normpath(self.build / line.strip()))
                if path.is_relative_to(self.tree / "Src"):
                    users.setdefault(str(path.relative_to(self.tree)), []).append(name)
            elif line:
                name = line.split(":")[0]
        return users

    def _names(self, name, file):
        source = pathlib.Path(self.compile_commands[name][-1])
        return source == self.tree / file or f'"{pathlib.Path(file).name}"' in source.read_text()


class Workshop:
    """Where one mutant after the other is built: a copy of Src/, the objects that differ, the library."""

    def __init__(self, base, folder):
        self.base = base
        self.folder = pathlib.Path(folder).absolute()
        shutil.rmtree(self.folder, ignore_errors=True)
        shutil.copytree(base.tree / "Src", self.folder / "Src")
        (self.folder / "lib").mkdir()
        self.link = base.link_command(LIBRARY)

    def put(self, file, text):
        (self.folder / file).write_text(text)

    def take_back(self, file):
        shutil.copyfile(self.base.tree / file, self.folder / file)

    def build_library(self, file):
        """Builds the library around a changed source. False when no object differs, in which case there is no library."""
        changed = {name: self._compile(name) for name in self.base.objects_with(file)}
        if not changed:
            raise RuntimeError(f"nothing in the library is made of {file}")
        if all(path.read_bytes() == (self.base.build / name).read_bytes() for name, path in changed.items()):
            return False
        self._link(self.link, self.folder / "lib" / LOADED_AS, changed)
        return True

    def build_program(self, program, objects):
        """A test program that takes the changed source in itself."""
        changed = {name: self._compile(name) for name in objects}
        path = self.folder / program.replace("/", "-")
        self._link(self.base.link_command(program), path, changed)
        return path

    def is_same_optimised(self, file):
        """Whether the optimiser makes the same code of both."""
        for name in self.base.objects_with(file):
            changed = self._compile(name, "-O2").read_bytes()
            if changed != self._compile(name, "-O2", original=True).read_bytes():
                return False
        return True

    def _compile(self, name, *options, original=False):
        command = list(self.base.compile_commands[name])
        if pathlib.Path(command[0]).name == "ccache":
            del command[0]
        output = self.folder / name.replace("/", "-")
        command[command.index("-o") + 1] = str(output)
        if not original:
            # The changed copy comes first wherever the original's folder is named.
            source, copy = str(self.base.tree / "Src"), str(self.folder / "Src")
            command = [part.replace(source, copy) for part in command]
        # Neither warnings nor the place of the copy are to show in the object.
        self._run([*command, "-w", *options])
        return output

    def _link(self, command, output, changed):
        command = [str(changed.get(part, part)) for part in command]
        command[command.index("-o") + 1] = str(output)
        self._run(command)

    def _run(self, command):
        try:
            # In a session of its own: a run that is broken off must not take it for a mutant that does not compile.
            subprocess.run(command, cwd=self.base.build, check=True, capture_output=True, timeout=PATIENCE,
                           start_new_session=True)
        except (subprocess.CalledProcessError, subprocess.TimeoutExpired) as failure:
            raise DoesNotCompile() from failure
