#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The rules about structure that a grep can hold. Prints each breach as file:line and exits 1 if there is any."""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

# A folder of src includes only itself and what stands here. Names without a slash are folders of src/core.
MAY_INCLUDE = {
    "protocol": [],
    "base": [],
    "platform": ["base"],
    "list": ["base"],
    "update": ["base"],
    "worker": ["base", "platform", "protocol"],
    "capture": ["base", "list"],
    "backup": ["base", "platform"],
    "app": ["base", "platform", "list", "worker", "capture", "backup", "update"],
    "demo": ["base", "list", "capture", "app"],
    "ui": ["base", "list", "capture", "backup", "app"],
    "camera": ["protocol"],
    "simulator": ["protocol"],
}
CORE = {"base", "platform", "list", "update", "worker", "capture", "backup", "app"}

# rule: (files it holds for, what must not be found, why)
FORBIDDEN = [
    (r".*\.(h|cpp)$", r'#include <Qt[A-Z]\w*/', "include Qt classes without their module"),
    (r"tests/unit/.*", r"\b(sleep_for|sleep_until|QThread::m?sleep|QTest::qWait|usleep|nanosleep)\b",
     "a unit test never sleeps: time is TestClock"),
    (r"src/core/.*", r"\b(QMessageBox|QFileDialog|QInputDialog|QDialog|QWidget|QApplication)\b",
     "no dialog in core: ask the Operator"),
    (r"src/.*", r"(->|\.)exec\(\)", "no nested event loop"),
    (r".*\.(h|cpp)$", r"\b(TODO|FIXME|XXX)\b", "finish it or file it"),
]
ALLOWED = {("src/main.cpp", "no nested event loop")}

# Sources whose behaviour only shows in a process or a window of its own; where that is tested.
TESTED_ELSEWHERE = {
    "src/main.cpp": "tests/e2e",
    "src/camera/main.cpp": "tests/integration/camera",
    "src/simulator/main.cpp": "tests/integration/simulator",
}


def tracked(pattern):
    command = ["git", "ls-files", "--cached", "--others", "--exclude-standard", "--", pattern]
    names = subprocess.run(command, cwd=ROOT, check=True, capture_output=True, text=True).stdout.split("\n")
    return [name for name in names if name and (ROOT / name).exists()]


def folder_of(path):
    """The folder of the include table that a path below src, given without it, belongs to."""
    parts = path.split("/")
    return parts[1] if parts[0] == "core" and len(parts) > 2 else parts[0]


def include_breaches(name, lines):
    source = folder_of(name.removeprefix("src/"))
    if "/" not in name.removeprefix("src/"):
        return
    for number, line in enumerate(lines, 1):
        found = re.match(r'#include "([^"]+)"', line)
        if not found:
            continue
        target = folder_of(found[1])
        known = target in MAY_INCLUDE
        if not known or (target != source and target not in MAY_INCLUDE[source]):
            yield f"{name}:{number}: {source} may not include {found[1]}"


def one_line_breaches(name, lines):
    for files, pattern, why in FORBIDDEN:
        if not re.fullmatch(files, name) or (name, why) in ALLOWED:
            continue
        for number, line in enumerate(lines, 1):
            if re.search(pattern, line):
                yield f"{name}:{number}: {why}"


def first_line_breaches(name, lines):
    if not lines or "SPDX-License-Identifier: Apache-2.0" not in lines[0]:
        yield f"{name}:1: begin with the SPDX line"
    if name.endswith(".h") and "#pragma once" not in lines[:3]:
        yield f"{name}:1: a header has #pragma once"


def test_breaches(sources):
    tests = "\n".join((ROOT / t).read_text() for t in tracked("tests/**/CMakeLists.txt"))
    for name in sources:
        path = pathlib.PurePosixPath(name)
        if path.suffix not in (".cpp", ".mm") or name in TESTED_ELSEWHERE or path.stem.endswith("Mac"):
            continue
        stem = path.stem.removesuffix("Linux")
        test = f"tests/unit/{path.parent.relative_to('src')}/{stem}Test.cpp"
        if not (ROOT / test).exists():
            yield f"{name}:1: has no {test}"
        elif f"{stem}Test.cpp" not in tests:
            yield f"{test}:1: is built by no CMakeLists.txt"


def main():
    breaches = []
    files = tracked("*.h") + tracked("*.cpp") + tracked("*.mm")
    for name in files:
        lines = (ROOT / name).read_text().split("\n")
        if name.startswith("src/"):
            breaches += include_breaches(name, lines)
        breaches += one_line_breaches(name, lines)
        breaches += first_line_breaches(name, lines)
    breaches += test_breaches([name for name in files if name.startswith("src/")])
    print("\n".join(breaches) if breaches else f"{len(files)} sources follow the structure.")
    return 1 if breaches else 0


if __name__ == "__main__":
    sys.exit(main())
