#!/usr/bin/env python3
"""Reads the sources of a build and their headers for check-msvc: msvc_sources.py BUILD.

Each file is read alone. Prints what the compiler has against it, and which headers of the standard
library it does without: a file must get each header whose names it uses from itself or from this
project's headers. Whether another header of the standard library includes it differs between
libraries.
"""
import concurrent.futures
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"(.*)"|<(.*)>)', re.MULTILINE)
STANDARD = re.compile(r"^\+ <(\w+)>$", re.MULTILINE)  # as the tool names what is missing
LANGUAGE = re.compile(r"[-/]std:(\S+)")
STANDARD_NAME = re.compile(r"\w+")  # the names of all other headers have a dot


def includes(file, folders):
    """What a file includes, directly and through this project's headers: those, and the others."""
    own, others, ahead = set(), set(), [file]
    while ahead:
        current = ahead.pop()
        for quoted, other in INCLUDE.findall(current.read_text()):
            places = [(folder / quoted).resolve() for folder in [current.parent, *folders]]
            found = [place for place in places if place.is_file()][:1] if quoted else []
            ahead += set(found) - own
            own |= set(found)
            others |= {other}
    return own, others


class File:
    def __init__(self, path, command):
        self.path = path
        self.command = command
        folders = [pathlib.Path(word[2:]) for word in shlex.split(command) if word.startswith("-I/")]
        self.headers, self.others = includes(path, folders)

    def command_for(self, path, options=""):
        """The command that reads another file in the same way."""
        return self.command.replace(f"-c -- {self.path}", f"{options} -c -- {path}")

    def entry(self):
        return {"file": str(self.path), "directory": str(ROOT), "command": self.command}

    def missing(self, named):
        """Of the headers that the tool has named."""
        there = set(self.others)
        if there & {"fstream", "iostream", "sstream"}:  # whose classes derive from those of the others
            there |= {"ios", "istream", "ostream"}
        if "vector" not in self.path.read_text():  # the tool takes every std::erase for a vector's
            there |= {"vector"}
        return sorted(named - there)

    def complaints(self, database):
        read = subprocess.run(["clang-include-cleaner-19", "-p", database, "--print=changes",
                               "--remove=false", self.path], capture_output=True, text=True)
        missing = self.missing(set(STANDARD.findall(read.stdout)))
        return [read.stderr] * (read.returncode != 0) + [
            f"{self.path.relative_to(ROOT)}: #include <{header}> is missing\n" for header in missing]


def files_of(build):
    """The files that the build compiles, each once, and the headers that they include."""
    files = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        path = pathlib.Path(entry["file"])
        if path.is_relative_to(ROOT) and path.suffix == ".cc" and path not in files:
            files[path] = File(path, entry["command"])
    for source in list(files.values()):
        for header in source.headers - files.keys():
            files[header] = File(header, source.command_for(header))
    return list(files.values())


def precompile(files, folder):
    """Lets every file begin with the standard library's headers, which are compiled once for each
    version of the language: this takes a fraction of the time. So the compiler never lacks one of
    them; that is for the tool.
    """
    names = {name for file in files for name in file.others if STANDARD_NAME.fullmatch(name)}
    versions = {LANGUAGE.search(file.command)[1] for file in files}
    for version in versions:
        those = [file for file in files if LANGUAGE.search(file.command)[1] == version]
        header, source = folder / f"{version}.h", folder / f"{version}.cc"
        header.write_text("".join(f"#include <{name}>\n" for name in sorted(names)))
        source.touch()
        # The definitions that only some of the files have mean nothing to these headers.
        use = f"/FI{header} /Fp{header.with_suffix('.pch')} -Wno-clang-cl-pch"
        make = those[0].command_for(
            source, f"{use} /Yc{header} /Fo{header.with_suffix('.obj')}")
        subprocess.run(shlex.split(make), check=True)
        for file in those:
            file.command = file.command_for(file.path, f"{use} /Yu{header}")


def main(build):
    files = files_of(build)
    database = build / "sources"
    database.mkdir(exist_ok=True)
    precompile(files, database)
    (database / "compile_commands.json").write_text(json.dumps([file.entry() for file in files]))
    count = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for complaints in pool.map(lambda file: file.complaints(database), files):
            print(*complaints, sep="", end="", flush=True)
            count += len(complaints)
    print(f"{len(files)} files, {count} complaints")
    return 1 if count else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1]).resolve()))
