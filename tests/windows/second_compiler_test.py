"""Reads the product's sources for Windows with another compiler than the one that builds them, pedantically:
what only one of them takes would not be taken by Microsoft's either.

second_compiler_test.py CLANG G++ COMPILE_COMMANDS.JSON, with the commands that G++ was given.
"""
import concurrent.futures
import json
import re
import shlex
import subprocess
import sys

clang, gcc, database = sys.argv[1:]
# What clang does not know, or does not do when it only reads.
UNKNOWN = re.compile(r"-Wa,.*|-Wsuggest-override|-Wno-subobject-linkage|-fno-keep-inline-dllexport|-c")


def system_folders():
    """The C++ library and the system's headers, but not those that belong to g++ itself."""
    asked = [gcc, "-std=c++20", "-E", "-v", "-x", "c++", "/dev/null"]
    told = subprocess.run(asked, capture_output=True, text=True, check=True).stderr
    folders = re.findall(r"^ (/\S+)$", told.split("search starts here:")[-1], re.M)
    return [folder for folder in folders if not re.search(r"-posix/include(-fixed)?$", folder)]


def read(entry, folders):
    given = shlex.split(entry["command"])
    given = given[next(i for i, word in enumerate(given) if word.endswith("g++-posix")) + 1:]
    output = given.index("-o")
    del given[output:output + 2]
    command = [clang, "--target=x86_64-w64-windows-gnu", "-fsyntax-only", "-Wpedantic"]
    command += [word for folder in folders for word in ("-isystem", folder)]
    command += [word for word in given if not UNKNOWN.fullmatch(word)]
    done = subprocess.run(command, cwd=entry["directory"], capture_output=True, text=True)
    return "" if done.returncode == 0 and not done.stderr else f"FAILED {entry['file']}:\n{done.stderr}"


def main():
    with open(database, encoding="utf-8") as file:
        entries = [entry for entry in json.load(file) if re.search(r"\.c(pp|xx)$", entry["file"])]
    entries = [entry for entry in entries if not re.search(r" -o (tests|bench)/", entry["command"])]
    folders = system_folders()
    with concurrent.futures.ThreadPoolExecutor() as threads:
        failures = [text for text in threads.map(lambda entry: read(entry, folders), entries) if text]
    print(*failures, sep="\n")
    checks = len(entries)
    print(f"{checks} tests, {checks} checks, {len(failures)} failed")
    return 1 if failures or checks == 0 else 0


sys.exit(main())
