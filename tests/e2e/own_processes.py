# SPDX-License-Identifier: Apache-2.0
"""The program itself, in a home and a process namespace of its own, because it ends the workers that it finds."""

import os
import subprocess
import sys
import time

SKIPPED = 77
PATIENCE = 60  # seconds
OWN_PROCESSES = ["unshare", "--map-current-user", "--pid", "--fork", "--mount-proc", "--kill-child=TERM"]


def skip(reason):
    print(f"SKIPPED: {reason}", file=sys.stderr)
    sys.exit(SKIPPED)


def skip_without_own_processes():
    if subprocess.run(OWN_PROCESSES + ["true"], stderr=subprocess.DEVNULL, check=False).returncode != 0:
        skip("no process namespace can be made here")


def wait_for(what, condition, gone=()):
    """What the condition gives once that is anything; it may raise `gone` until then."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        try:
            found = condition()
        except gone:
            found = None
        if found:
            return found
        time.sleep(0.1)
    sys.exit(f"FAILED: waited for {what}")


def start(program, home, names, **environment):
    """Starts the program with this list; no camera, and nobody to ask for releases."""
    data = home / "data" / "Ambrel Tether"
    data.mkdir(parents=True, exist_ok=True)
    (data / "ambrel_grid.csv").write_text(names, encoding="utf-8")
    nobody = {"AMBREL_HOME": str(home), "AMBREL_RELEASE_API": "", "AMBREL_CAMERA_PORT": "ptpip:127.0.0.1:9"}
    return subprocess.Popen(OWN_PROCESSES + [program], env=os.environ | nobody | environment)
