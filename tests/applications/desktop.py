# SPDX-License-Identifier: Apache-2.0
"""A display of its own, and the hands of a person who uses programs on it by keys and mouse."""

import contextlib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import time

LIMIT = 120.0  # seconds for each wait
PICTURES = None  # a folder for pictures of what failed


def fail(what):
    if PICTURES and shutil.which("import"):
        subprocess.run(["import", "-window", "root", str(PICTURES / "failed.png")], check=False)
    sys.exit(f"{pathlib.Path(sys.argv[0]).name}: {what}")


def wait(what, condition):
    deadline = time.monotonic() + LIMIT
    while not (result := condition()):
        if time.monotonic() > deadline:
            fail(f"{what} does not come")
        time.sleep(0.05)
    return result


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=False).stdout.strip()


def windows(title):
    return output("xdotool", "search", "--onlyvisible", "--name", title).split()


def active(title):
    """The window with the title, when keys go to it."""
    found = output("xdotool", "getactivewindow")
    return found if found and re.search(title, output("xdotool", "getwindowname", found)) else None


def key(*keys):
    subprocess.run(["xdotool", "key", "--clearmodifiers", *keys], check=True)


def press_until(what, keys, title, condition):
    """Presses the keys while the window is there: one that has just opened may lose the first."""
    pressed = 0.0

    def tried():
        nonlocal pressed
        result = condition()
        if not result and time.monotonic() - pressed > 3 and active(title):
            key(keys)
            pressed = time.monotonic()
        return result
    return wait(what, tried)


def type_text(text):
    subprocess.run(["xdotool", "type", text], check=True)


def click(window, x, y):
    """At a place of the window, in pixels from its upper left corner."""
    subprocess.run(["xdotool", "mousemove", "--window", window, str(x), str(y), "click", "1"], check=True)


@contextlib.contextmanager
def started(*command, **options):
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL, **options)
    try:
        yield process
    finally:
        if process.poll() is None:
            process.terminate()
        try:
            process.wait(LIMIT)
        except subprocess.TimeoutExpired:
            process.kill()
            fail(f"{command[0]} does not end")


@contextlib.contextmanager
def display():
    reading, writing = os.pipe()
    with started("Xvfb", "-displayfd", str(writing), "-screen", "0", "1400x1050x24", "-nolisten", "tcp",
                 pass_fds=(writing,), stderr=subprocess.DEVNULL):
        os.close(writing)
        with open(reading, encoding="ascii") as number:
            os.environ["DISPLAY"] = ":" + number.readline().strip()
        with started("openbox", stderr=subprocess.DEVNULL):
            wait("the window manager", lambda: output("xdotool", "get_desktop"))
            yield


@contextlib.contextmanager
def session_bus():
    with started("dbus-daemon", "--session", "--nofork", "--print-address=1", stdout=subprocess.PIPE,
                 stderr=subprocess.DEVNULL, text=True) as daemon:
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = daemon.stdout.readline().strip()
        yield


def documents():
    """The documents at the private server's device; the pane's own commands leave none."""
    return set(pathlib.Path(os.environ["TORKA_SANDBOX"], "printed").glob("*.ps"))
