#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""What a screen reader is told of the running application: the names, roles and states of its controls and rows.

    xvfb-run screen_reader_test.py PROGRAM

Everything goes over the accessibility bus of a session of its own, with a home of its own. Ends with 77 where this cannot
be done.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

import own_processes
from own_processes import PATIENCE, skip, skip_without_own_processes, start

INSIDE = "--in-own-session"

LIST = "File Name,Notes,Captured,Marker\nAnna,front row,2,1\nBen,,0,\nCara,,0,\n"


try:
    import pyatspi
    from gi.repository import GLib
except (ImportError, ValueError) as error:
    skip(f"python3-pyatspi is not installed ({error})")


def wait_for(what, condition):
    return own_processes.wait_for(what, condition, gone=(GLib.Error,))


def children(node):
    for i in range(node.childCount):
        child = node.getChildAtIndex(i)
        if child is not None:
            yield child


def tree(node):
    yield node
    if node.getRole() == pyatspi.ROLE_TABLE:
        return  # its cells are asked for by row and column
    for child in children(node):
        yield from tree(child)


def find_window():
    for application in children(pyatspi.Registry.getDesktop(0)):
        for window in children(application):
            if window.getRole() == pyatspi.ROLE_FRAME and window.name.startswith("Ambrel Photo Tether "):
                return window
    return None


class Check:
    def __init__(self, window):
        self.window = window
        self.failures = []

    def find(self, role, name):
        for node in tree(self.window):
            if node.getRole() == role and node.name == name:
                return node
        self.failures.append(f"no {role} called {name!r}")
        return None

    def control(self, role, name, enabled=True):
        node = self.find(role, name)
        if node is not None:
            self.equal(f"{name} can be used", node.getState().contains(pyatspi.STATE_ENABLED), enabled)
        return node

    def equal(self, what, told, wanted):
        if told != wanted:
            self.failures.append(f"{what}: {told!r} instead of {wanted!r}")


def check_controls(check):
    for name in ("Reconnect camera", "Settings", "Add the search text as a new name", "Clear the search box", "Show: All",
                 "Export", "Edit the note"):
        check.control(pyatspi.ROLE_PUSH_BUTTON, name)
    for name in ("Previous photo", "Next photo"):
        check.control(pyatspi.ROLE_PUSH_BUTTON, name, enabled=False)
    for name in ("Next photo number", "Search by name", "Note"):
        check.control(pyatspi.ROLE_TEXT, name)
    names = [node.name for node in tree(check.window) if node.getRole() == pyatspi.ROLE_LABEL]
    for value in ("CAMERA: ", "STATUS: ", "Available Storage: ", "Backup: Off"):
        check.equal(f"a card says {value}", any(name.startswith(value) for name in names), True)
    menus = [node.name for node in tree(check.window) if node.getRole() == pyatspi.ROLE_MENU_ITEM]
    for menu in ("Edit", "List", "Camera", "Backup"):
        check.equal(f"there is a menu {menu}", menu in menus, True)


def check_rows(check):
    table = check.find(pyatspi.ROLE_TABLE, "Names")
    if table is None:
        return
    rows = table.queryTable()
    check.equal("rows", rows.nRows, 3)
    check.equal("names", [rows.getAccessibleAt(row, 1).name for row in range(3)], ["Anna", "Ben", "Cara"])
    check.equal("marker and note", rows.getAccessibleAt(0, 0).name, "🚩📝")
    check.equal("count", rows.getAccessibleAt(0, 2).name, "2")
    selected = [rows.getAccessibleAt(row, 1).getState().contains(pyatspi.STATE_SELECTED) for row in range(3)]
    check.equal("selected rows", selected, [True, False, False])
    check.equal("name column", rows.getColumnHeader(1).name.split()[0], "Name")


def check_until_told(window, *checks):
    """The bus may still be hearing of the window that it already names."""
    end = time.monotonic() + PATIENCE
    while True:
        check = Check(window)
        try:
            for one in checks:
                one(check)
        except GLib.Error as error:
            check.failures.append(str(error))
        if not check.failures or time.monotonic() > end:
            return check
        time.sleep(0.2)


def check_action(check):
    button = check.find(pyatspi.ROLE_PUSH_BUTTON, "Show: All")
    if button is None:
        return
    button.queryAction().doAction(0)
    wait_for("the filter to change", lambda: button.name == "Show: With Photos")
    table = check.find(pyatspi.ROLE_TABLE, "Names")
    wait_for("one row", lambda: table.queryTable().nRows == 1)
    check.equal("the person with photos", table.queryTable().getAccessibleAt(0, 1).name, "Anna")


def run(program, home):
    process = start(program, home, LIST, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_QPA_PLATFORM="xcb")
    try:
        check = check_until_told(wait_for("the window", find_window), check_controls, check_rows)
        check_action(check)
        process.kill()  # the program below it is asked to end
        wait_for("the end of the program", lambda: find_window() is None)
    finally:
        process.kill()
        process.wait()
    for failure in check.failures:
        print(f"FAILED: {failure}", file=sys.stderr)
    return 1 if check.failures else 0


def run_in_own_session(program):
    if not os.environ.get("DISPLAY"):
        skip("no display")
    if shutil.which("dbus-run-session") is None:
        skip("dbus-run-session is not installed")
    skip_without_own_processes()
    home = tempfile.mkdtemp(prefix="ambrel-screen-reader-")
    environment = os.environ | {"HOME": home, "XDG_RUNTIME_DIR": home}
    try:
        inside = ["dbus-run-session", "--", sys.executable, __file__, INSIDE, program, home]
        return subprocess.run(inside, env=environment, check=False).returncode
    finally:
        shutil.rmtree(home, ignore_errors=True)


def main():
    if sys.argv[1] == INSIDE:
        return run(sys.argv[2], pathlib.Path(sys.argv[3]))
    return run_in_own_session(sys.argv[1])


if __name__ == "__main__":
    sys.exit(main())
