#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Quitting while the disk with the settings and the list does not answer.

    hung_disk_test.py PROGRAM FAULTY_DRIVE

FAULTY_DRIVE is the library to be preloaded that plays the disk. Ends with 77 where this cannot be done.
"""

import os
import pathlib
import signal
import sys
import tempfile
import time

from own_processes import skip_without_own_processes, start, wait_for

WORKER = "ambrel_cpp_worker"
LIST = "File Name,Notes,Captured,Marker\nAnna,front row,2,1\n"
LONGEST = 2.0  # seconds
OTHERS = 2.0  # what a machine with other work may take beyond that


def children_of(pid):
    return [int(child) for child in pathlib.Path(f"/proc/{pid}/task/{pid}/children").read_text(encoding="ascii").split()]


def is_worker(pid):
    name = pathlib.Path(f"/proc/{pid}/comm").read_text(encoding="ascii").strip()
    return name == WORKER[:15]  # as much of it as the system keeps


class Disk:
    def __init__(self, folder, library):
        self.mode = folder / "mode"
        self.say("ok")
        self.environment = {
            "QT_QPA_PLATFORM": "offscreen", "LD_PRELOAD": library, "AMBREL_FAULTY_DRIVE": str(folder / "home"),
            "AMBREL_FAULTY_MODE": str(self.mode), "ASAN_OPTIONS": "verify_asan_link_order=0:detect_leaks=0"}

    def say(self, word):
        following = self.mode.with_suffix(".next")
        following.write_text(word, encoding="ascii")
        os.replace(following, self.mode)


def quit_with(disk, word, program, home):
    """Seconds until the program has ended, and its exit status."""
    disk.say("ok")
    process = start(program, home, LIST, **disk.environment)
    try:
        pid = wait_for("the program", lambda: children_of(process.pid))[0]
        wait_for("its worker, which is started last", lambda: any(map(is_worker, children_of(pid))), gone=(OSError,))
        disk.say(word)
        begun = time.monotonic()
        os.kill(pid, signal.SIGTERM)
        status = process.wait(timeout=60)
        return time.monotonic() - begun, status
    finally:
        process.kill()
        process.wait()


def main():
    program, library = sys.argv[1:3]
    skip_without_own_processes()
    with tempfile.TemporaryDirectory(prefix="ambrel-hung-disk-") as name:
        folder = pathlib.Path(name)
        (folder / "home").mkdir()
        disk = Disk(folder, library)
        failures = []
        for word, expected in (("ok", 0), ("hang", 1), ("ok", 0)):
            seconds, status = quit_with(disk, word, program, folder / "home")
            print(f"{word}: ended with {status} after {seconds:.1f} s")
            if status != expected or seconds > LONGEST + OTHERS:
                failures.append(word)
        grid = folder / "home" / "data" / "Ambrel Tether" / "ambrel_grid.csv"
        if not grid.read_text(encoding="utf-8").startswith(LIST):
            failures.append("the list is not whole: " + grid.read_text(encoding="utf-8"))
    for failure in failures:
        print(f"FAILED: {failure}", file=sys.stderr)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
