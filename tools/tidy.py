#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""clang-tidy over every source of a build folder's compile_commands.json, in parallel; what has not changed since it
was last found clean (source, headers of this project, settings) is not read again. Exits 1 on any finding."""
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TIDY = "clang-tidy-14"


def own_sources(build):
    commands = json.loads((build / "compile_commands.json").read_text())
    files = sorted({pathlib.Path(c["file"]) for c in commands})
    return [f for f in files if f.is_relative_to(ROOT) and not f.is_relative_to(ROOT / "build")]


def project_headers(source, seen):
    """The source and every header of this project that it includes, directly or not."""
    if source in seen or not source.exists():
        return seen
    seen.add(source)
    for include in re.findall(r'^#include "([^"]+)"', source.read_text(), re.M):
        for base in (ROOT / "src", ROOT / "tests", ROOT / "benchmarks", source.parent):
            if (base / include).exists():
                project_headers(base / include, seen)
                break
    return seen


def fingerprint(source):
    digest = hashlib.sha256((ROOT / ".clang-tidy").read_bytes() + (ROOT / "tests" / ".clang-tidy").read_bytes())
    for path in sorted(project_headers(source, set())):
        digest.update(path.read_bytes())
    return digest.hexdigest()


def read(build, source):
    stamp = build / "tidy" / source.relative_to(ROOT).with_suffix(".clean")
    mark = fingerprint(source)
    if stamp.exists() and stamp.read_text() == mark:
        return ""
    # Warnings of g++ are g++'s to give; clang knows some that it does not.
    command = [TIDY, "-p", str(build), "--quiet", "--extra-arg=-Wno-unknown-warning-option", "--extra-arg=-Wno-error",
               str(source)]
    result = subprocess.run(command, capture_output=True, text=True)
    if result.returncode != 0 or "warning:" in result.stdout or "error:" in result.stdout:
        return result.stdout + (result.stderr if result.returncode != 0 and not result.stdout else "")
    stamp.parent.mkdir(parents=True, exist_ok=True)
    stamp.write_text(mark)
    return ""


def main():
    build = (ROOT / sys.argv[1]).resolve()
    sources = own_sources(build)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        findings = [text for text in pool.map(lambda s: read(build, s), sources) if text]
    print("\n".join(findings) if findings else f"{len(sources)} sources are clean.")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
