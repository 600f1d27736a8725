"""Builds the library with one file changed."""

import json
import os
import re
import shlex
import subprocess
from pathlib import Path

from changes import ROOT

# The changed file is not optimised, since that takes longer than the tests do. The checks end the
# program where a change leads to what is undefined, as the sanitizers do to whom runs the tests.
FLAGS = ["-O0", "-w", "-D_GLIBCXX_ASSERTIONS", "-fsanitize=bounds,float-cast-overflow,null,shift",
         "-fsanitize-undefined-trap-on-error"]


def sources():
    """The text of every file of the library by its name."""
    files = [p for p in ROOT.glob("sbd/**/*") if p.suffix in (".h", ".cpp")]
    return {os.path.relpath(p, ROOT): p.read_text() for p in files}


def users_of(file, texts):
    """The files that a file is part of, itself included."""
    users, waiting = {file}, [file]
    while waiting:
        wanted = waiting.pop()
        for name, text in texts.items():
            if name not in users and f'#include "{wanted}"' in text:
                users.add(name)
                waiting.append(name)
    return users


class COMPILER:
    """Compiles the files of the library as a finished build does, but quickly."""

    def __init__(self, build):
        self.build = build
        self.texts = sources()
        self.commands = {}
        self.objects = {}
        for entry in json.loads((build / "compile_commands.json").read_text()):
            if "sbd_objects.dir" in entry["command"]:
                command = shlex.split(entry["command"])
                source = Path(entry["directory"], entry["file"]).resolve()
                name = os.path.relpath(source, ROOT)
                self.objects[name] = build / command[command.index("-o") + 1]
                self.commands[name] = self._flags_of(command)
        self.headers = build / "mutation" / "public_headers.h"

    @staticmethod
    def _flags_of(command):
        """Without compiler, source and object, and what costs time."""
        begin = next(i for i, word in enumerate(command) if re.search(r"(\+\+|cc)(-\d+)?$", word))
        ends = [command.index("-o"), command.index("-c")]
        skipped = {begin, *ends, *(i + 1 for i in ends)}
        flags = [word for i, word in enumerate(command) if i >= begin and i not in skipped]
        return [f for f in flags if not f.startswith(("-W", "-O"))]

    def prepare_headers(self):
        """Compiles the public headers of the device layer, which no change is part of, once for
        all. With more headers it takes longer to load them than to compile the few that a file
        has."""
        self.headers.parent.mkdir(parents=True, exist_ok=True)
        self.headers.write_text('#include "sbd/sbd_parameter_rules.h"\n')
        flags = next(iter(self.commands.values()))
        command = ["g++", *FLAGS, *flags, "-I", ROOT, "-x", "c++-header", self.headers]
        subprocess.run([*command, "-o", f"{self.headers}.gch"], cwd=self.build, check=True)

    def compile(self, name, source, include, result):
        """False when it is no C++."""
        command = ["g++", *FLAGS, "-include", self.headers, "-I", include, *self.commands[name]]
        command += ["-I", ROOT, "-c", source, "-o", result]
        return subprocess.run(command, cwd=self.build, capture_output=True).returncode == 0


class CHANGED_LIBRARY:
    """A folder with the library, one file of it changed."""

    def __init__(self, compiler, folder):
        self.compiler = compiler
        self.folder = folder
        self.include = folder / "include"
        (folder / "lib").mkdir(parents=True, exist_ok=True)

    def make(self, file, source, users=None):
        """Compiles all that the changed file is part of, or only some users of it; false when the
        change is none that compiles."""
        changed = self.include / file
        changed.parent.mkdir(parents=True, exist_ok=True)
        changed.write_text(source)
        try:
            users = users or self._users_of(file)
            return self._make({user: changed if user == file else ROOT / user for user in users})
        finally:
            changed.unlink()

    def make_unchanged(self, files):
        """Compiles everything that these files are part of as it is."""
        users = set().union(*(self._users_of(file) for file in files))
        return self._make({user: ROOT / user for user in users})

    def _users_of(self, file):
        return users_of(file, self.compiler.texts) & self.compiler.commands.keys()

    def _make(self, sources):
        objects = {user: self.folder / (Path(user).name + ".o") for user in sources}
        return all(self.compiler.compile(user, source, self.include, objects[user])
                   for user, source in sources.items()) and self._link(objects)

    def _link(self, objects):
        """The changed objects first: of what all have, their form with the checks is taken."""
        name = os.readlink(self.compiler.build / "lib" / "libsbd.so")
        command = ["g++", "-shared", "-fuse-ld=lld", f"-Wl,-soname,{name}"]
        command += ["-Wl,-Bsymbolic-functions", "-o", self.folder / "lib" / name]
        command += objects.values()
        command += [o for source, o in self.compiler.objects.items() if source not in objects]
        return subprocess.run(command, capture_output=True).returncode == 0
