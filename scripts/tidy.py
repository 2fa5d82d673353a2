#!/usr/bin/python3
"""Runs clang-tidy over the product's sources, and only over those that changed since they passed.

A source is known by the contents of itself, of every project header it includes, of the checks and
of its compile command; what has passed once under that name is not looked at again.
"""

import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor, as_completed
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
PRODUCT = ("agent", "analytics", "settings", "logging", "locations", "fs", "foundation",
           "platform", "tools")
REAL_PLATFORM = ("platform", "linux")


def product_commands(build):
    """The compile commands of the product's own sources, one a source."""
    commands = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        source = Path(entry["directory"], entry["file"]).resolve()
        if not source.is_relative_to(ROOT):
            continue
        if source.relative_to(ROOT).parts[0] in PRODUCT:
            commands[source] = entry
    return commands


def recorded_headers(build):
    """What the last build found each object to depend on, project headers only."""
    listing = subprocess.run(["ninja", "-C", build, "-t", "deps"], capture_output=True, text=True,
                             check=True).stdout
    headers, current = {}, None
    for line in listing.splitlines():
        if line.startswith("    "):
            path = Path(build, line.strip()).resolve()
            if current is not None and path.is_relative_to(ROOT):
                headers[current].append(path)
        elif ": #deps" in line:
            current = line.split(": #deps")[0]
            headers[current] = []
    return headers


def object_of(entry):
    words = shlex.split(entry["command"])
    return words[words.index("-o") + 1]


def content_name(entry, headers, checks):
    digest = hashlib.sha256(checks)
    digest.update(entry["command"].encode())
    for path in sorted(set(headers)):
        digest.update(str(path.relative_to(ROOT)).encode())
        digest.update(path.read_bytes() if path.exists() else b"gone")
    return digest.hexdigest()


# The commands are another compiler's. Reserved names are the compiler's to find: the check of that
# name takes a seventh of the time. The analyzer looks into what a unit includes only when told to, and
# its last nine tenths of paths through the longest functions take more than half of its time.
EXTRA = ["-Wno-unknown-warning-option", "-Wreserved-identifier", "-Wthread-safety",
         "-Xclang", "-analyzer-opt-analyze-headers",
         "-Xclang", "-analyzer-config", "-Xclang", "max-nodes=20000"]


def run_tidy(sources, database):
    run = subprocess.run(["clang-tidy", "--quiet", "-p", database,
                          *(f"--extra-arg={argument}" for argument in EXTRA), *sources],
                         capture_output=True, text=True)
    return run.returncode, run.stdout + ("" if run.returncode == 0 else run.stderr)


def tidy(unit, sources, database):
    """Sources that do not agree with each other in one unit are looked at one by one."""
    status, output = run_tidy([unit], database)
    return (status, output) if status == 0 else run_tidy(sources, database)


# Most of the time goes into the standard library's headers, so some sources share one reading of them.
SOURCES_OF_A_UNIT = 12


def part_of(source):
    """What sources have in common that may be joined: a library; a program has a `main` of its own."""
    parts = source.relative_to(ROOT).parts[:-1]
    return parts[:2] if parts[0] == "tools" or parts[:2] == REAL_PLATFORM else parts[:1]


def write_units(due, commands, folder):
    """Answers each unit with its sources, which are of one part and one compile command."""
    groups = {}
    for source in sorted(due):
        command = commands[source]["command"].replace(str(source), "").split(" -o ")[0]
        groups.setdefault((part_of(source), command), []).append(source)
    units, entries = {}, []
    for (_, command), sources in groups.items():
        for first in range(0, len(sources), SOURCES_OF_A_UNIT):
            unit = folder / f"unit{len(units)}.cpp"
            units[unit] = sources[first:first + SOURCES_OF_A_UNIT]
            unit.write_text("".join(f'#include "{source}"  // NOLINT\n' for source in units[unit]))
            entries.append({"directory": str(folder), "file": str(unit),
                            "command": f"{command} -c {unit}"})
    return units, entries


def without_precompiled_header(entry):
    """The same compile command, with the file parsed as it stands."""
    command = re.sub(r" -Winvalid-pch| -include \S*cmake_pch\S*", "", entry["command"])
    return {**entry, "command": command}


def sources_due(build, commands, passed):
    """The sources that have not passed as they stand, and where to note that each has."""
    version = subprocess.run(["clang-tidy", "--version"], capture_output=True, check=True).stdout
    checks = version + (ROOT / ".clang-tidy").read_bytes() + " ".join(EXTRA).encode()
    headers = recorded_headers(build)
    due = {}
    for source, entry in commands.items():
        known = headers.get(object_of(entry), [])
        name = content_name(entry, [source, *known], checks)
        if not known or not (passed / name).exists():
            due[source] = passed / name
    return due


def main():
    build = (ROOT / sys.argv[1]).resolve()
    passed = ROOT / "build" / "tidy-passed"
    database = build / "tidy"
    for folder in (passed, database):
        folder.mkdir(parents=True, exist_ok=True)
    commands = product_commands(build)
    due = sources_due(build, commands, passed)
    commands = {source: without_precompiled_header(entry) for source, entry in commands.items()}
    units, entries = write_units(due, commands, database)
    (database / "compile_commands.json").write_text(json.dumps([*commands.values(), *entries]))
    failures = 0
    with ThreadPoolExecutor(os.cpu_count()) as workers:
        runs = {workers.submit(tidy, unit, sources, database): sources
                for unit, sources in units.items()}
        for run in as_completed(runs):
            status, output = run.result()
            if status == 0:
                for source in runs[run]:
                    due[source].touch()
            else:
                failures += 1
                print(output, flush=True)
    print(f"clang-tidy: {len(due)} sources looked at in {len(units)} units, "
          f"{failures} with complaints")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
