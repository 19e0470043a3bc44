#!/usr/bin/env python3
"""tidy.py BUILD: static analysis of all that is installed, as the build tree compiles it.

Tests, fuzz targets and benchmarks are left to the two compilers, the sanitizers and their own runs. A file costs ten to
thirty seconds, so one that was found clean is not read again before its text, that of what it includes, the checks or
the tool change: the digest of all these is an empty file in the user's cache.
"""
import concurrent.futures
import hashlib
import json
import os
import pathlib
import shlex
import subprocess
import sys

root = pathlib.Path(__file__).resolve().parents[2]
build = pathlib.Path(sys.argv[1])
cache = pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache") / "ostrel-tidy"
version = subprocess.run(["clang-tidy", "--version"], check=True, capture_output=True).stdout
checks = (root / ".clang-tidy").read_bytes()
folders = ("platform", "trovio", "sensorManager", "nodes", "explain", "scene", "monitor", "host")


def preprocessed(entry):
    """The whole text, with comments, for those may silence a check; without the places that it comes from."""
    words = shlex.split(entry["command"])
    while "clang" not in pathlib.Path(words[0]).name:  # the compiler cache
        words.pop(0)
    output = words.index("-o")
    del words[output:output + 2]
    words.remove("-c")
    command = [*words, "-E", "-P", "-C", "-w"]
    return subprocess.run(command, check=True, capture_output=True, cwd=entry["directory"]).stdout


def analyse(entry):
    """What is to be said of the file; empty where it is clean."""
    known = cache / hashlib.sha256(b"\0".join((version, checks, preprocessed(entry)))).hexdigest()
    if known.exists():
        return ""
    done = subprocess.run(["clang-tidy", "-quiet", "-p", str(build), entry["file"]], capture_output=True, text=True)
    if done.returncode == 0 and not done.stdout:
        known.touch()
        return ""
    return done.stdout or f"{entry['file']}: clang-tidy failed: {done.stderr}"


cache.mkdir(parents=True, exist_ok=True)
compiled = json.loads((build / "compile_commands.json").read_text())
# By file: some stand in several targets.
read = tuple(f"{root}/{folder}/" for folder in folders)
entries = {entry["file"]: entry for entry in compiled if entry["file"].startswith(read)}
with concurrent.futures.ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
    found = [text for text in pool.map(analyse, entries.values()) if text]
print("\n".join(found) or f"{len(entries)} files are clean")
sys.exit(bool(found))
