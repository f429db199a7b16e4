#!/usr/bin/python3
"""The scripted user of the installed package.

walk_package.py RESULTS VERSION ROOT KIND

Uses the programs that lie in ROOT: with KIND "bare" that is a whole Debian, which they run in; with "scratch" it
has nothing but them. Runs inside "pretend-network" and "desktop". Leaves pictures in the folder RESULTS. The status
is 1 when something was not as it should be.

What the page does in all its cases is the demo's to show. This is about what only an installed program can miss:
its page, its library, the pictures' decoder, the print system's library, fonts, the display.
"""

import pathlib
import re
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tools"))
from walk import Walk, WalkError  # noqa: E402

STEPS = ("Introduction", "Printer Connection", "Summary")
WINDOW = "Install the Tovik KV Printer Driver"
ALERT_TITLE = "Tovik KV Card Printer IP Configuration"
INSTALLED = "Tovik KV410 @10.0.0.41"
CHOSEN = "Tovik KV260 @10.0.0.26"
HANDED_OVER = b"KV260 10.0.0.26"
SEARCH_TIMEOUT = 30


def expect(condition, otherwise):
    if not condition:
        raise WalkError(otherwise)


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, timeout=60, stdin=subprocess.DEVNULL)


def versions(program, version):
    for name in ("quazel-installer", "kv-discover"):
        done = run(*program(name), "--version")
        expect((done.returncode, done.stdout, done.stderr) == (0, f"{name} {version}\n", ""),
               f"{name} --version: {done}")


def search(program):
    done = run(*program("kv-discover"))
    expect(done.returncode == 0 and CHOSEN in done.stdout.splitlines(), f"kv-discover: {done}")


def has_own_icon(name):
    """Whether the window has an icon in small, which it has only where Qt can decode SVG.

    To a window without an icon the window manager gives one of its own, which is larger.
    """
    window = run("xdotool", "search", "--name", f"^{name}$").stdout.split()
    expect(len(window) == 1, f"the display has {len(window)} windows {name!r}")
    return "Icon (16 x 16)" in run("xprop", "-id", window[0], "_NET_WM_ICON").stdout


def walk(user, results):
    user.wait_for(lambda: any(user.name(w) == WINDOW and user.state(w, "active") for w in user.windows()),
                  what=f"window {WINDOW!r}")
    for step in STEPS:
        user.find("label", re.compile(rf"^{step}, "))
    expect(has_own_icon(WINDOW), "the window has no icon")
    user.screenshot(str(results / "introduction.png"))
    user.click(user.find("push button", "Continue"))

    user.click(user.find("radio button", "Over the network"))
    found = user.find("combo box")
    user.wait_for(lambda: CHOSEN in user.items(found), SEARCH_TIMEOUT, "the search to find printers")
    proceed = user.find("push button", "Continue")
    user.choose(found, INSTALLED)
    user.click(proceed)
    alert = user.wait_alert(ALERT_TITLE)
    user.key("Return")
    user.wait_gone(alert.node)
    user.choose(found, CHOSEN)
    user.screenshot(str(results / "printer-connection.png"))
    user.click(proceed)
    # The button that goes on is the one that closes now.
    user.click(user.find("push button", "Close"))
    expect(user.wait_exit() == 0, "the installer does not end well")


def main():
    results, version, root, kind = pathlib.Path(sys.argv[1]), *sys.argv[2:5]

    def program(name):
        return ["chroot", root, f"/usr/bin/{name}"] if kind == "bare" else [f"{root}/usr/bin/{name}"]

    try:
        versions(program, version)
        search(program)
        with Walk(program("quazel-installer")) as user:
            try:
                walk(user, results)
            except WalkError:
                user.screenshot(str(results / "failure.png"))
                raise
        handed_over = (pathlib.Path.home() / "Documents/KV.txt").read_bytes()
        expect(handed_over == HANDED_OVER, f"KV.txt: {handed_over}")
    except (WalkError, OSError, subprocess.SubprocessError) as error:
        print(f"packaging: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
