#!/usr/bin/python3
"""The scripted user of the demo.

walk_installer.py COMMAND [ARG...]

Runs the installer COMMAND: with the mouse, with the keyboard alone, closed during the search, and with assistive
actions, without an X display only the last; then as other desktops show it. Runs inside "environment" and "desktop".
Writes pictures,
logs and hand-off files to the home folder. Exit status 1 if a step failed.
"""

import os
import pathlib
import re
import shutil
import signal
import socket
import subprocess
import sys
import time

from walk import SCALE, Atspi, Walk, has, name, run, text

WINDOW = "Install the Tovik KV Printer Driver"
INTRODUCTION, CONNECTION, INSTALLATION, SUMMARY = "Introduction", "Printer Connection", "Installation", "Summary"
CONTINUE, BACK = "Continue", "Go Back"
FORWARD_KEY = "alt+c"  # of Continue and of Close
DIRECTLY, NETWORK = "Directly to this computer", "Over the network"
# Roles of which the page has one each.
LIST, ADDRESS, ACTIVITY = "combo box", "text", "progress bar"

MANUAL_ENTRY = "Enter IP Address Manually"
ALERT_TITLE = "Tovik KV Card Printer IP Configuration"
ALREADY_INSTALLED = "A Printer with this IP Address is already Installed, Please choose another Ethernet Printer"
INVALID_ADDRESS = "Invalid IP"
NOTHING_GIVEN = "Please choose Printer IP or Enter the IP Address to configure"
NO_DRIVER = "No driver for the Tovik KV460 is installed. Install the package with its driver, then try again."

NETWORK_FILE = pathlib.Path(os.environ["XDG_RUNTIME_DIR"], "printers").read_text()
PRINTERS = {model: address for address, model in re.findall(r"^(\S+) .*;DES:Tovik (\w+)", NETWORK_FILE, re.MULTILINE)}
MODELS = sorted(PRINTERS)
ADDRESSES = re.findall(r"^\d\S+", NETWORK_FILE, re.MULTILINE)  # also those that must not be listed
INSTALLED = re.search(r"^# Has a print queue: (\w+)", NETWORK_FILE, re.MULTILINE)[1]
CHOSEN = "KV260"
UNKNOWN_ADDRESS = os.environ["QUAZEL_PRIVATE_NETWORK"] + ".77"
OUT_OF_RANGE_ADDRESS = "10.0.0.300"

SEARCHING, FOUND = "Searching, usually a few seconds…", f"{len(MODELS)} printers found. Choose one in the list."

# How desktops show the window: the desktop, and on KDE its font and palette, which Qt reads from kdeglobals.
DARK = (pathlib.Path(__file__).parent / "kdeglobals.dark").read_text()
LOOKS = [("GNOME", "", ""), ("KDE", "Cantarell,11", ""), ("KDE", "DejaVu Sans,16", DARK)]

CIRCLE = round(14 * SCALE)  # of a radio button

# Longer than the double-click interval, within which the window ignores a second press.
PRESS_PAUSE = 0.6

HOME = pathlib.Path.home()
HAND_OFF = HOME / "Documents/KV.txt"
LOG = HOME / "Documents/QzInstall.log"


def item_of(model):
    return f"Tovik {model} @{PRINTERS[model]}"


class Installer(Walk):
    """The installer's window, with operations and checks for its pages."""

    def wait_window(self):
        self.wait_for(lambda: [node for node in self.nodes() if name(node) == WINDOW and has(node, "active")],
                      "the window to be active")

    def button(self, label):
        return self.find("button", label)

    def choice(self, label):
        return self.find("radio button", label)

    def go_on(self, heading, key=None):
        """Presses Continue, with the mouse unless a key is given, and waits for the next page."""
        if key:
            self.key(key)
        else:
            self.click(self.button(CONTINUE))
        self.find("label", heading)
        time.sleep(PRESS_PAUSE)

    def expect_search(self):
        """Checks that the progress bar moves and Continue is disabled."""
        activity, proceed = self.find(ACTIVITY), self.button(CONTINUE)
        self.wait_for(lambda: not has(proceed, "enabled"), f"{CONTINUE!r} to be disabled during the search")
        first = self.pixels(activity)
        self.wait_for(lambda: self.pixels(activity) != first, "the progress bar to move")
        assert has(activity, "showing"), "the search ended before it could be checked"
        return activity

    def wait_list(self, activity):
        proceed = self.button(CONTINUE)
        self.wait_for(lambda: has(proceed, "enabled"), "the search to end", timeout=30)
        assert not has(activity, "showing"), "the progress bar is still visible after the search"
        found = [name(item) for item in self.find_all("list item", root=self.find(LIST), showing=False)]
        assert found[:1] == [MANUAL_ENTRY] and sorted(found[1:]) == list(map(item_of, MODELS)), f"the list has {found}"
        assert name(self.find(LIST)) == MANUAL_ENTRY, f"{name(self.find(LIST))} is selected"

    def choose_printer(self, model, picture=None):
        """Opens the list with the mouse and clicks the printer."""
        box = self.find(LIST)
        self.click(box)
        item = self.find("list item", item_of(model), root=box)
        self.settled(item)
        if picture:
            self.picture(picture)
        self.click(item)
        self.expect_printer(model)

    def expect_printer(self, model):
        """A listed printer sets address and model, which are then locked."""
        address = self.find(ADDRESS)
        self.wait_for(lambda: name(self.find(LIST)) == item_of(model), f"{item_of(model)!r} to be chosen")
        self.wait_for(lambda: text(address) == PRINTERS[model], f"address {PRINTERS[model]}")
        assert has(self.choice(model), "checked"), f"the model is not {model}"
        assert not has(address, "enabled") and not has(self.choice(model), "enabled"), "address or model is not locked"

    def expect_alert(self, message, picture):
        self.wait_for(lambda: has(self.find("alert", ALERT_TITLE), "active"), "alert to be active")
        alert = self.find("alert", ALERT_TITLE)
        labels = {name(label) for label in self.find_all("label", root=alert)} - {""}
        assert labels == {ALERT_TITLE, message}, f"the alert says {labels}"
        self.picture(picture)
        return alert

    def labels(self):
        return "\n".join(map(name, self.find_all("label")))

    @staticmethod
    def output():
        return (HOME / "output.txt").read_text(errors="replace")

    def wait_installation(self, result):
        """Waits for the end of the installation's steps and checks its result."""
        proceed = self.button(CONTINUE)
        self.wait_for(lambda: has(proceed, "enabled") and result in self.labels(), f"the result {result!r}", timeout=30)
        assert not self.find_all(ACTIVITY), "the progress bar is still visible after the installation"

    def expect_handed_over(self, model, address, result):
        """Checks the summary and the hand-off file, which has no newline."""
        shown = self.labels()
        assert result in shown, f"the summary does not say {result!r}"
        assert re.search(rf"^Model:\s+{model}\s+Address:\s+{re.escape(address)}$", shown, re.MULTILINE), \
            f"the summary does not show {model} and {address}"
        assert HAND_OFF.read_bytes() == f"{model} {address}".encode(), f"KV.txt has {HAND_OFF.read_bytes()}"

    def expect_end(self, timeout=10):
        status = self.process.wait(timeout)
        assert status == 0, f"the installer ended with the status {status}"


def expect_log(*expected, without=()):
    """Checks that the log has the expected "Line No" numbers in this order, and none of `without`."""
    numbers = [int(number) for number in re.findall(r"Line No (\d+)$", LOG.read_text(errors="replace"), re.MULTILINE)]
    found = [number for number in numbers if number in expected + without]
    assert found == list(expected), f"the line numbers in the log are {found}"


def queue_of(model, address):
    return f"Tovik-{model}-Ethernet-Printer-IP={address}"


def expect_printed(model, address):
    """Prints a raw job, and plays the printer that receives it."""
    job = bytes(range(256)) * 400
    with socket.create_server((address, 9100)) as printer:
        printer.settimeout(20)
        subprocess.run(["lp", "-d", queue_of(model, address), "-o", "raw"], input=job, check=True, timeout=20,
                       stdout=subprocess.DEVNULL)
        with printer.accept()[0] as connection, connection.makefile("rb") as received:
            assert received.read() == job, "the printer received something else"
    print(f"ok  a print job of {len(job)} bytes arrived at {address} port 9100, byte for byte")


def with_the_mouse(user):
    user.wait_window()
    user.find("label", INTRODUCTION)
    assert not has(user.button(BACK), "enabled"), f"{BACK!r} is enabled on the first page"
    # The window manager's default icon is larger.
    window, small = run("xdotool", "getactivewindow").decode().strip(), round(16 * SCALE)
    icons = run("xprop", "-id", window, "_NET_WM_ICON").decode(errors="replace")
    assert f"Icon ({small} x {small})" in icons, "the window has no icon"
    user.picture("introduction")
    user.go_on(CONNECTION)
    assert has(user.choice(DIRECTLY), "checked"), f"{DIRECTLY!r} is not chosen"
    user.picture("type")
    print("ok  the introduction leads to the printer's connection")

    user.click(user.choice(NETWORK))
    start = time.monotonic()
    activity = user.expect_search()
    user.picture("searching")
    print("ok  during the search, the progress bar moves and Continue is disabled")
    user.wait_list(activity)
    duration = time.monotonic() - start
    for address in ADDRESSES:
        assert f"IP address is: {address}\n" in LOG.read_text(), f"{address} got no device ID request"
    print(f"ok  after {duration:.1f} s the list has the manual entry and the four printers, each once")

    user.choose_printer(INSTALLED, "list")
    user.click(user.button(CONTINUE))
    alert = user.expect_alert(ALREADY_INSTALLED, "refused")
    user.click(user.find("button", "Ok", root=alert))
    user.wait_gone(alert)
    user.find("label", CONNECTION)
    assert not HAND_OFF.exists(), "KV.txt exists after the refusal"
    print(f"ok  the {INSTALLED}, which has a print queue already, is refused")

    user.choose_printer(CHOSEN)
    user.picture("chosen")
    user.go_on(INSTALLATION)
    user.wait_installation(queue_of(CHOSEN, PRINTERS[CHOSEN]))
    user.picture("installed")
    user.go_on(SUMMARY)
    user.expect_handed_over(CHOSEN, PRINTERS[CHOSEN], "This network printer is ready to print")
    user.picture("summary")
    print(f'ok  another printer is accepted; handed over: "{HAND_OFF.read_text()}"')
    expect_printed(CHOSEN, PRINTERS[CHOSEN])

    for heading in INSTALLATION, CONNECTION:
        user.click(user.button(BACK))
        user.find("label", heading)
        time.sleep(PRESS_PAUSE)
    user.click(user.button(CONTINUE))
    alert = user.expect_alert(ALREADY_INSTALLED, "refused-now")
    user.click(user.find("button", "Ok", root=alert))
    user.wait_gone(alert)
    user.key("alt+F4")
    user.expect_end()
    expect_log(1083, 1086, 1083, 1086, 1097, 1100, 1083, 1086, without=(1121, 1135))
    print("ok  the same printer is refused now, as it has a print queue")


def with_the_keyboard(user):
    user.wait_window()
    user.wait_state(user.button(CONTINUE), "focused")
    user.go_on(CONNECTION, "Return")
    assert not HAND_OFF.exists(), "the old KV.txt still exists after a new start"
    user.wait_state(user.choice(DIRECTLY), "focused")
    user.key("Down")
    user.wait_state(user.choice(NETWORK), "checked")
    user.wait_list(user.expect_search())
    print("ok  keyboard alone: the network is chosen, the old hand-off file is removed, the list is filled")

    box, address = user.find(LIST), user.find(ADDRESS)
    user.tab_to(box)
    user.key("Down")
    user.wait_for(lambda: name(box) != MANUAL_ENTRY, "another item")
    user.expect_printer(re.search(r"KV\d+", name(box))[0])
    user.key("Up")
    user.wait_for(lambda: name(box) == MANUAL_ENTRY and text(address) == "", "manual entry")
    user.wait_state(address, "enabled")
    user.tab_to(address)
    user.type(OUT_OF_RANGE_ADDRESS)
    user.wait_for(lambda: text(address) == OUT_OF_RANGE_ADDRESS, f"{OUT_OF_RANGE_ADDRESS} typed")
    user.key("Return")
    alert = user.expect_alert(INVALID_ADDRESS, "invalid")
    user.key("Return")
    user.wait_gone(alert)
    user.wait_for(lambda: text(address) == "", "the invalid address to be cleared")
    user.find("label", CONNECTION)
    print("ok  keyboard alone: an invalid address is refused and cleared")

    user.key("alt+a")
    user.wait_state(address, "focused")
    user.type(UNKNOWN_ADDRESS + "x")  # The letter is rejected.
    user.wait_for(lambda: text(address) == UNKNOWN_ADDRESS, f"{UNKNOWN_ADDRESS} typed")
    user.tab_to(user.choice(MODELS[0]))
    user.key(*["Right"] * (len(MODELS) - 1))
    user.wait_state(user.choice(MODELS[-1]), "checked")
    user.picture("typed")
    user.go_on(INSTALLATION, FORWARD_KEY)
    user.wait_installation(NO_DRIVER)
    user.picture("failed")
    user.wait_state(user.button("Try Again"), "focused")
    runs = user.output().count(NO_DRIVER)
    user.key("Return")
    user.wait_for(lambda: user.output().count(NO_DRIVER) > runs, "the step to run again")
    user.wait_installation(NO_DRIVER)
    user.key("alt+d")
    user.wait_for(lambda: NO_DRIVER in text(user.find("text", "Details")), "the details to tell the reason")
    user.picture("details")
    print("ok  keyboard alone: without a driver, the installation fails and can be tried again")
    user.go_on(SUMMARY, FORWARD_KEY)
    user.expect_handed_over(MODELS[-1], UNKNOWN_ADDRESS, NO_DRIVER)
    user.picture("not-set-up")
    user.key(FORWARD_KEY)
    user.expect_end()
    expect_log(1026, 1121, 1124, 1135, 1138, without=(1083, 1097))
    print(f'ok  keyboard alone: a typed address is accepted; handed over: "{HAND_OFF.read_text()}"')


def closed_during_the_search(user):
    user.wait_window()
    user.go_on(CONNECTION)
    user.click(user.choice(NETWORK))
    user.expect_search()
    start = time.monotonic()
    user.key("alt+F4")  # The window manager closes the window.
    user.expect_end(timeout=3)
    assert not HAND_OFF.exists(), "KV.txt exists"
    print(f"ok  closed during the search, the installer ended after {time.monotonic() - start:.1f} s")


def with_assistive_actions(user):
    user.act(user.button(CONTINUE))
    user.act(user.choice(NETWORK))
    user.wait_list(user.find(ACTIVITY))
    address = user.find(ADDRESS)
    Atspi.EditableText.insert_text(address, 0, "x", 1)
    assert text(address) == "", "a letter was accepted in the address"
    Atspi.EditableText.insert_text(address, 0, UNKNOWN_ADDRESS, len(UNKNOWN_ADDRESS))
    user.act(user.choice(CHOSEN))
    user.wait_state(user.choice(CHOSEN), "checked")
    user.act(user.button(CONTINUE))
    user.wait_installation(queue_of(CHOSEN, UNKNOWN_ADDRESS))
    user.act(user.button(CONTINUE))
    user.find("label", SUMMARY)
    user.expect_handed_over(CHOSEN, UNKNOWN_ADDRESS, "This network printer is ready to print")
    expect_printed(CHOSEN, UNKNOWN_ADDRESS)
    print(f'ok  assistive actions alone, on {os.environ["XDG_SESSION_TYPE"]}: "{HAND_OFF.read_text()}"')

    for heading in INSTALLATION, CONNECTION:
        user.act(user.button(BACK))
        user.find("label", heading)
    user.act(user.button(CONTINUE))
    alert = user.find("alert", ALERT_TITLE)
    assert user.find_all("label", ALREADY_INSTALLED, root=alert), "the printer is not refused"
    user.act(user.find("button", "Ok", root=alert))
    user.wait_gone(alert)
    user.act(user.choice(MODELS[-1]))
    user.wait_state(user.choice(MODELS[-1]), "checked")
    user.act(user.button(CONTINUE))
    user.wait_installation(NO_DRIVER)
    user.act(user.button("Show Details"))
    user.find("text", "Details")
    user.act(user.button(CONTINUE))
    user.find("label", SUMMARY)
    user.expect_handed_over(MODELS[-1], UNKNOWN_ADDRESS, NO_DRIVER)
    user.act(user.button("Close"))
    user.expect_end()
    print(f"ok  assistive actions alone: refused now; without a driver, the {MODELS[-1]} is not set up")


def looks_right(user):
    """What a script can see of the window's look: nothing is out of sight, the focus is visible, texts are readable."""
    user.wait_window()
    user.go_on(CONNECTION, "Return")
    user.key("Down")
    user.find("label", SEARCHING)
    user.wait_list(user.find(ACTIVITY))
    user.find("label", FOUND)
    _, top, _, height = user.extents(user.find("panel", "Model"))
    page = user.extents(user.find("layered pane"))
    assert top + height <= page[1] + page[3], "the page has to be scrolled"
    for node in map(user.choice, (MODELS[-1], DIRECTLY)):
        x, y, _, height = user.extents(node)
        assert user.contrast(x, y, CIRCLE, height) >= 3, f"the outline of {name(node)!r} is hardly visible"

    stops = [user.find(LIST), user.button("Search Again"), user.find(ADDRESS), user.choice(MODELS[0]),
             user.button(BACK)]
    for stop, following in zip(stops, [*stops[1:], user.button(CONTINUE)]):
        user.wait_state(stop, "focused")
        focused = user.pixels(stop)
        user.key("Tab")
        user.wait_state(following, "focused")
        assert user.pixels(stop) != focused, f"the focus on {name(stop)!r} is not visible"

    for stop in user.choice(NETWORK), user.find(LIST), user.find(ADDRESS):
        user.tab_to(stop)
        user.key("Return")  # Presses Continue; on GNOME, Qt would choose the type again, or open the list.
        alert = user.expect_alert(NOTHING_GIVEN, "nothing-given")
        user.key("Return")
        user.wait_gone(alert)
        time.sleep(PRESS_PAUSE)
    user.choose_printer(CHOSEN)
    for node in user.find(ADDRESS), user.choice(CHOSEN):
        x, y, width, height = user.extents(node)
        inside = x + height, y + 4, width - height - 4, height - 8
        assert user.contrast(*inside) >= 4.5, f"{name(node)!r} is hardly readable"
    user.tab_to(user.button(BACK))
    user.key("Return")
    user.find("label", INTRODUCTION)
    user.key("alt+F4")
    user.expect_end()
    print("ok  as another desktop shows it: the page is whole and readable, the focus visible, Return goes on or back")


def main():
    walks = [(with_assistive_actions, [])]
    if "DISPLAY" in os.environ:
        walks = [(walk, []) for walk in (with_the_mouse, with_the_keyboard, closed_during_the_search)] + walks
        for desktop, font, palette in LOOKS:
            folder = HOME / f"look-{len(walks)}"
            folder.mkdir()
            (folder / "kdeglobals").write_text(f"{palette}\n[General]\nfont={font},-1,5,50,0,0,0,0,0\n")
            # Without GTK's own accessibility, which has a second root node.
            walks.append((looks_right, ["env", f"XDG_CONFIG_HOME={folder}", f"XDG_CURRENT_DESKTOP={desktop}",
                                        "KDE_SESSION_VERSION=5", "NO_AT_BRIDGE=1"]))
    for walk, look in walks:
        signal.alarm(120)  # A last resort, as every wait has a timeout.
        with open(HOME / "output.txt", "ab") as output:
            user = Installer(look + sys.argv[1:], output)
            try:
                walk(user)
            except Exception as error:
                if "DISPLAY" in os.environ:
                    user.picture("failure")
                sys.exit(f"walk: failed: {error!r}\n{user.dump()}")
            finally:
                # The next start removes the hand-off file and the log.
                shutil.copytree(HOME / "Documents", HOME / walk.__name__, dirs_exist_ok=True)
    # Qt 6.8 warns if assistive technology requests a destroyed widget ("could not find accessible").
    printed = (HOME / "output.txt").read_text(errors="replace")
    warnings = re.findall(r"^.*(?:\bqt\.|QObject|support|fail|could not (?!find accessible)|warning).*$", printed,
                          re.IGNORECASE | re.MULTILINE)
    assert not warnings, f"the installer printed {warnings}"
    print(f"pictures, logs and hand-off files: {HOME}")


if __name__ == "__main__":
    main()
