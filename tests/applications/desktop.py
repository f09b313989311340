# SPDX-License-Identifier: Apache-2.0
"""A display of its own, and the hands of a person who prints from programs on it by mouse and keys."""

import contextlib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import time

LIMIT = 120.0  # seconds for each wait, on a machine that does much else
PICTURES = None  # a folder for pictures


def picture(name, window="root"):
    if PICTURES and shutil.which("import"):
        subprocess.run(["import", "-window", window, str(PICTURES / f"{name}.png")], check=False)


def wait(what, condition):
    deadline = time.monotonic() + LIMIT
    while not (result := condition()):
        if time.monotonic() > deadline:
            picture("failed")
            sys.exit(f"{pathlib.Path(sys.argv[0]).name}: {what} does not come")
        time.sleep(0.1)
    return result


def wait_for_rest(process):
    """Waits until the program uses no processor for a moment: while it makes its windows, it loses keys."""
    used, quiet = 0, 0

    def rests():
        nonlocal used, quiet
        before = used
        time.sleep(0.2)
        fields = pathlib.Path(f"/proc/{process.pid}/stat").read_text(encoding="ascii").rpartition(")")[2].split()
        used = int(fields[11]) + int(fields[12])  # in ticks: utime and stime, see proc(5)
        quiet = quiet + 1 if used - before <= 1 else 0
        return quiet == 2
    wait("the program at rest", rests)


def expect(condition, what):
    if not condition:
        picture("failed")
        sys.exit(f"{pathlib.Path(sys.argv[0]).name}: {what}")


def output(*command):
    """What the command writes; "" when it fails."""
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    return done.stdout.strip() if done.returncode == 0 else ""


def windows(title):
    return output("xdotool", "search", "--onlyvisible", "--name", title).split()


def active(title):
    """The window with the title, when keys go to it."""
    name, _, place = output("xdotool", "getactivewindow", "getwindowname", "getwindowgeometry", "--shell").partition("\n")
    number = re.search(r"^WINDOW=(\d+)", place, re.MULTILINE)
    return number[1] if number and re.search(title, name) else None


def key(*keys):
    subprocess.run(["xdotool", "key", "--clearmodifiers", *keys], check=True)


def press_until(what, keys, title, condition):
    """Presses keys that close the window, once more while it stays: a window that has just opened may lose the first."""
    pressed = 0.0

    def tried():
        nonlocal pressed
        result = condition()
        if not result and time.monotonic() - pressed > 10 and active(title):
            key(keys)
            pressed = time.monotonic()
        return result
    return wait(what, tried)


def cancel(title):
    press_until("the end of the cancelled dialog", "Escape", title, lambda: not windows(title))


def type_text(text):
    subprocess.run(["xdotool", "type", text], check=True)


def click(window, x, y):
    """At a place of the window, in pixels from its upper left corner."""
    subprocess.run(["xdotool", "mousemove", "--window", window, str(x), str(y), "click", "1"], check=True)


def size(window):
    found = dict(re.findall(r"(WIDTH|HEIGHT)=(\d+)", output("xdotool", "getwindowgeometry", "--shell", window)))
    return int(found.get("WIDTH", 0)), int(found.get("HEIGHT", 0))


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
            sys.exit(f"{pathlib.Path(sys.argv[0]).name}: {command[0]} does not end")


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


def jobs():
    """The documents at the device, by job; the pane's own commands leave none."""
    return set(pathlib.Path(os.environ["TORKA_SANDBOX"], "printed").glob("*.ps"))


def open_dialog(program, title="^Print"):
    """Lets the program whose window has the title `program` show its print dialog."""
    asked_at = -LIMIT

    def asked():
        nonlocal asked_at
        if windows(title):
            return active(title)
        if active(program) and time.monotonic() - asked_at > LIMIT / 8:  # not twice for a dialog that comes late
            asked_at = time.monotonic()
            key("ctrl+p")
        return None
    return wait("the print dialog", asked)


def focus_pages(dialog):
    """Gives the keys to the pane's list of pages."""
    click(dialog, 64, size(dialog)[1] - 150)


def set_in_pane(field, value):
    """Finds the field by the pane's search, which moves the focus to it. The pane has the keys."""
    key("ctrl+f", "ctrl+a")
    type_text(field)
    key("Return")
    type_text(value)


def print_it():
    """Presses Print and goes on from the pane's questions. Returns the device's document."""
    before = jobs()

    def through():
        if active("^Job Information"):
            key("Return")
        return not windows("^Print") and jobs() - before
    return press_until("the document at the device", "alt+p", "^Print", through).pop().read_bytes()


def skip_unless(needed):
    """Ends the program with status 77 when this machine cannot run it."""
    missing = [each for each in needed if shutil.which(each, path=os.environ["PATH"] + ":/usr/sbin") is None]
    if missing or os.geteuid() != 0:
        print("skipped:", ", ".join(missing) or "needs root, to run the print server's filters as lp")
        sys.exit(77)


def enter_sandbox(source, build):
    """Starts this program again with a private print server, unless it has one."""
    if "TORKA_SANDBOX" not in os.environ:
        os.execv(source / "scripts/cups-sandbox", ["cups-sandbox", "--bin", str(build / "bin"), "run", *sys.argv])


def use_home(home, source):
    """Keeps the person's files in the folder, and adds queues: "Production", the default one, and the foreign "Zebra"."""
    os.environ.update(HOME=str(home), LC_ALL="C.UTF-8", XDG_RUNTIME_DIR=str(home))
    for name in ("CONFIG_HOME", "DATA_HOME", "CACHE_HOME"):
        os.environ[f"XDG_{name}"] = str(pathlib.Path(home, name))
    for command in (("torka", "queue", "add", "Production", "torkasink:/", source / "samples/torka-production.ppd"),
                    ("lpadmin", "-p", "Zebra", "-E", "-v", "torkasink:/", "-m", "drv:///sample.drv/generic.ppd"),
                    # The server's other way from PDF to PostScript draws pages at 1200 dpi, which takes long.
                    ("lpadmin", "-p", "Production", "-o", "pdftops-renderer-default=pdftops"),
                    ("lpadmin", "-d", "Production")):
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
