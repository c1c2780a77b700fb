#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""clang-tidy over every source of a build folder's compile_commands.json, in parallel; what has not changed since it
was last found clean (source, headers of this project, settings) is not read again. Exits 1 on any finding.

Nearly all of clang-tidy's time goes into the library headers, so the sources of a folder are read together, as one
translation unit; those that cannot be, because they use the same names, one by one."""
import concurrent.futures
import hashlib
import itertools
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TIDY = "clang-tidy-14"
AT_ONCE = 12
# Warnings of g++ are g++'s to give; clang knows some that it does not. A source that stands for several includes them.
OPTIONS = ["--quiet", "--extra-arg=-Wno-unknown-warning-option", "--extra-arg=-Wno-error", "--extra-arg=-ferror-limit=1",
           "--header-filter=" + re.escape(str(ROOT)) + r"/(src|tests|benchmarks)/.*\.(h|cpp)$"]


def own_commands(build):
    """Source -> the arguments that it is compiled with, less those for what is precompiled."""
    commands = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        source = pathlib.Path(entry["file"])
        if not source.is_relative_to(ROOT) or source.is_relative_to(ROOT / "build"):
            continue
        words = shlex.split(entry["command"].split(" -o ")[0])
        words = words[next(i for i, w in enumerate(words) if w.endswith("c++") or "g++" in w) + 1:]
        commands[source] = [w for i, w in enumerate(words)
                            if w not in ("-include", "-Winvalid-pch", "-MD", "-MT", "-MF")
                            and words[i - 1] not in ("-include", "-MT", "-MF")]
    return commands


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


def in_namespace(name, source):
    """The source within a namespace of its own, where the project's namespaces lead to the real ones."""
    paths = set()
    for path in re.findall(r"^namespace (ambrel[\w:]*) {", source.read_text(), re.M):
        words = path.split("::")
        paths |= {"::".join(words[:n]) for n in range(1, len(words) + 1)}
    roads = "".join(f"namespace {path} {{ using namespace ::{path}; }}\n" for path in sorted(paths))
    return f'namespace {name} {{\n{roads}#include "{source}"\n}}\n'


def as_one(sources):
    """A text that includes the sources. Tests use the same names over and over: each gets a namespace of its own, after
    everything that any of them includes."""
    tests = [s for s in sources if s.stem.endswith("Test")]
    others = "".join(f'#include "{s}"\n' for s in sources if s not in tests)
    includes = dict.fromkeys(line for s in tests for line in s.read_text().splitlines() if line.startswith("#include"))
    return others + "\n".join(includes) + "\n" + "".join(in_namespace(f"file{i}", s) for i, s in enumerate(tests))


def left_out_for(source):
    """The checks that the settings for tests leave out; a text in the build folder is not found to be a test."""
    if "tests" not in source.relative_to(ROOT).parts:
        return ""
    return re.search(r"^Checks: '(.*)'", (ROOT / "tests" / ".clang-tidy").read_text(), re.M)[1]


def read_text_of(path, sources, arguments):
    checks = ["--checks=-bugprone-suspicious-include," + left_out_for(sources[0])] if path not in sources else []
    command = [TIDY, *OPTIONS, *checks, str(path), "--", *arguments, f"-I{sources[0].parent}"]
    result = subprocess.run(command, capture_output=True, text=True)
    clean = result.returncode == 0 and "warning:" not in result.stdout and "error:" not in result.stdout
    return "" if clean else result.stdout or result.stderr


def read(build, sources, arguments):
    text = ""
    if len(sources) > 1:
        path = build / "tidy" / sources[0].relative_to(ROOT).with_suffix(".group.cpp")
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(as_one(sources))
        text = read_text_of(path, sources, arguments)
    if len(sources) == 1 or "clang-diagnostic-error" in text:
        texts = [(s, read_text_of(s, [s], arguments)) for s in sources]
        text = "\n".join(found for _, found in texts if found)
        sources = [s for s, found in texts if not found]
    elif text:
        return text
    for source in sources:
        stamp = stamp_of(build, source)
        stamp.parent.mkdir(parents=True, exist_ok=True)
        stamp.write_text(fingerprint(source))
    return text


def stamp_of(build, source):
    return build / "tidy" / source.relative_to(ROOT).with_suffix(".clean")


def groups(build, commands):
    """Sources to be read again, those of one folder with the same arguments together."""
    stale = [s for s in sorted(commands)
             if not stamp_of(build, s).exists() or stamp_of(build, s).read_text() != fingerprint(s)]
    for _, same in itertools.groupby(stale, lambda s: (s.parent, commands[s])):
        same = list(same)
        for start in range(0, len(same), AT_ONCE):
            yield same[start:start + AT_ONCE]


def main():
    build = (ROOT / sys.argv[1]).resolve()
    commands = own_commands(build)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        findings = [text for text in pool.map(lambda g: read(build, g, commands[g[0]]), groups(build, commands)) if text]
    print("\n".join(findings) if findings else f"{len(commands)} sources are clean.")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
