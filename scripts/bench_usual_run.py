"""Measures the agent's usual run, nothing due, against an empty C program in the same run: wall
time (median of pairwise ratios with its interval), instructions and peak memory."""

import datetime
import os
import plistlib
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

PAIRS = 501


def home_with_nothing_due(folder):
    preferences = os.path.join(folder, "Library", "Preferences")
    os.makedirs(preferences)
    now = datetime.datetime.now(datetime.timezone.utc).replace(tzinfo=None)
    domains = {
        "com.orvane.Vornix3": {
            "SchedulerPeriod": 3,
            "PlaySounds": True,
            "SchedulerShouldStartFullScan": False,
        },
        "com.orvane.Vornix3.Scheduler": {"LastSchedulerNotificationDate": now},
    }
    for domain, values in domains.items():
        with open(os.path.join(preferences, domain + ".plist"), "wb") as target:
            plistlib.dump(values, target, fmt=plistlib.FMT_BINARY)


def installed_agent(build, agent, folder):
    """The tree that is shipped, with the agent that does not wait in the agent's place."""
    subprocess.run(
        ["cmake", "--install", build, "--prefix", folder], check=True, stdout=subprocess.DEVNULL
    )
    program = os.path.join(folder, "libexec", "vornix", "vornix-scheduler")
    shutil.copy(agent, program)
    subprocess.run(["strip", program], check=True)
    return program


def wall_seconds(command, environment):
    started = time.perf_counter()
    process = os.posix_spawn(command[0], command, environment)
    _, status = os.waitpid(process, 0)
    seconds = time.perf_counter() - started
    if status != 0:
        sys.exit(f"{command[0]} ended with status {status}")
    return seconds


def instructions(command, environment):
    run = subprocess.run(
        ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", *command],
        env=environment,
        capture_output=True,
        text=True,
        check=True,
    )
    return int(re.search(r"Collected : (\d+)", run.stderr).group(1))


def peak_kib(command, environment):
    """Started by the small `time` program: this script's own size would count up to the exec."""
    run = subprocess.run(
        ["/usr/bin/time", "-f", "%M", *command],
        env=environment,
        stderr=subprocess.PIPE,
        text=True,
        check=True,
    )
    return int(run.stderr.strip().splitlines()[-1])


def main(build):
    programs = os.path.join(build, "bench", "usual-run")
    floor = os.path.join(programs, "bench-floor")
    with tempfile.TemporaryDirectory() as folder:
        home_with_nothing_due(folder)
        agent = installed_agent(
            build, os.path.join(programs, "bench-usual-run"), os.path.join(folder, "prefix")
        )
        environment = {"HOME": folder, "PATH": "/usr/bin:/bin", "LANG": "C.UTF-8"}
        ratios = []
        for _ in range(PAIRS):
            mine = wall_seconds([agent], environment)
            base = wall_seconds([floor], environment)
            ratios.append(mine / base)
        ratios.sort()
        low, high = ratios[int(PAIRS * 0.4)], ratios[int(PAIRS * 0.6)]
        print(f"{'usual run, nothing due':32}{'agent':>14}{'empty C':>14}")
        mine, base = instructions([agent], environment), instructions([floor], environment)
        print(f"{'instructions':32}{mine:>14,}{base:>14,}")
        mine, base = peak_kib([agent], environment), peak_kib([floor], environment)
        print(f"{'peak memory, KiB':32}{mine:>14,}{base:>14,}")
        print(
            f"wall time: {statistics.median(ratios):.2f} times the empty program "
            f"(middle fifth {low:.2f} to {high:.2f}, {PAIRS} pairs)"
        )


if __name__ == "__main__":
    main(*sys.argv[1:])
