#!/usr/bin/python3
"""The scripted user of the demo.

walk_installer.py RESULTS REQUESTS COMMAND [ARG...]

Works the installer COMMAND three times: with the mouse, with the keys alone, and closed in the middle of the
search. Runs inside "pretend-network" and "desktop". Checks what the window shows and what lies in the
documents folder; leaves pictures, log and hand-off file in the folder RESULTS. REQUESTS is what the virtual
printers recorded. The status is 1 when a step was not as it should be.
"""

import contextlib
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
from walk import Walk, WalkError  # noqa: E402

# --- what the window calls its controls; roles where there is only one of them --------------------------------

WINDOW = "Install the Tovik KV Printer Driver"
INTRODUCTION = "Introduction"
CONNECTION = "Printer Connection"
SUMMARY = "Summary"
CONTINUE = "Continue"
BACK = "Go Back"
CLOSE = "Close"
REFRESH = "Refresh"
FORWARD_KEY = "alt+c"  # of Continue and of Close
ADDRESS_KEY = "alt+a"
DIRECTLY = "Directly to this computer"
NETWORK = "Over the network"
MODELS = ("KV210", "KV260", "KV410", "KV460")
LIST = "combo box"
ADDRESS = "text"
ACTIVITY = "progress bar"

MANUAL_ENTRY = "Enter IP Address Manually"
ALERT_TITLE = "Tovik KV Card Printer IP Configuration"
ALREADY_INSTALLED = (
    "A Printer with this IP Address is already Installed, Please choose another Ethernet Printer")
INVALID_ADDRESS = "Invalid IP"

# --- the network of the demo ----------------------------------------------------------------------------------

PRINTERS = {"KV210": "10.0.0.21", "KV260": "10.0.0.26", "KV410": "10.0.0.41", "KV460": "10.0.0.46"}
INSTALLED = "KV410"
NOT_LISTED = ("10.0.0.70", "10.0.0.99")  # of another maker; silent after the search
UNKNOWN_ADDRESS = "10.0.0.77"
IMPOSSIBLE_ADDRESS = "10.0.0.300"

SEARCH_TIMEOUT = 30
END_TIMEOUT = 3
# What openbox draws around a window: left, top, right and bottom; and the middle of its button to close it,
# from the window's upper right corner.
FRAME = (1, 20, 1, 5)
CLOSE_BUTTON = (-10, -11)


def say(text):
    print(text, flush=True)


def item_of(model):
    return f"Tovik {model} @{PRINTERS[model]}"


class Installer(Walk):
    """The installer, worked by the scripted user."""

    def __init__(self, command, results):
        self.scale = 1
        self.results = results
        self.documents = pathlib.Path.home() / "Documents"
        self.output = self.documents.parent / "output"
        # The shell becomes the installer, whose process id stays the same.
        super().__init__(["bash", "-c", 'exec "$@" >>"$0" 2>&1', str(self.output), *command])

    def window(self):
        return self.wait_for(lambda: [w for w in self.windows() if self.name(w) == WINDOW], what="the window")[0]

    def wait_window(self):
        self.wait_for(lambda: self.state(self.window(), "active"), what="the window to be active")
        # How many pixels of the screen one of the window's own is: Qt tells assistive technology the latter.
        width = self.settled(self.window())[2]
        geometry = subprocess.run(["xdotool", "getactivewindow", "getwindowgeometry", "--shell"], check=True,
                                  timeout=60, capture_output=True, text=True).stdout
        self.scale = int(re.search(r"WIDTH=(\d+)", geometry)[1]) / width

    def extents(self, node):
        return tuple(round(value * self.scale) for value in super().extents(node))

    # --- checks ------------------------------------------------------------

    def expect(self, condition, otherwise):
        if not condition:
            raise WalkError(f"{otherwise}\n{self.dump()}")

    def expect_equal(self, what, found, expected):
        self.expect(found == expected, f"{what}: expected {expected!r}, found {found!r}")

    def expect_page(self, title):
        """The page's heading, and with it the end of the one before."""
        self.find("label", title)

    def model(self, name):
        return self.find("radio button", name)

    def chosen_model(self):
        return [name for name in MODELS if self.state(self.model(name), "checked")]

    def wait_focus(self, node, what):
        self.wait_for(lambda: self.state(node, "focused"), what=f"{what} to have the focus")

    def hand_off(self):
        file = self.documents / "KV.txt"
        return file.read_bytes() if file.exists() else None

    def log_numbers(self, *numbers):
        """Which of the numbers of decisions the log has, in its order."""
        log = (self.documents / "QzInstall.log").read_text(errors="replace")
        found = [int(n) for n in re.findall(r"Line No (\d+)$", log, re.MULTILINE)]
        return [n for n in found if n in numbers]

    # --- steps -------------------------------------------------------------

    def frame(self):
        left, top, right, bottom = FRAME
        x, y, width, height = self.settled(self.window())
        return width + left + right, height + top + bottom, x - left, y - top

    def picture(self, name):
        """The window with its title bar and what lies before it."""
        width, height, x, y = self.frame()
        subprocess.run(["import", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "+repage",
                        str(self.results / f"{name}.png")], check=True, timeout=60, stdin=subprocess.DEVNULL)

    def pixels(self, node):
        x, y, width, height = self.extents(node)
        return subprocess.run(["import", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "+repage",
                               "-depth", "8", "rgb:-"], check=True, timeout=60, stdin=subprocess.DEVNULL,
                              capture_output=True).stdout

    def expect_search(self, picture=None):
        """Sees the search at work: something moves, and nothing can be chosen."""
        activity = self.find(ACTIVITY)
        self.wait_for(lambda: not self.state(self.find("push button", CONTINUE), "enabled"),
                      what=f"{CONTINUE!r} to be disabled during the search")
        for role, name in (("push button", BACK), ("push button", REFRESH), ("radio button", DIRECTLY),
                           ("radio button", NETWORK), (LIST, None)):
            self.expect(not self.state(self.find(role, name), "enabled"),
                        f"{name or role} can be used during the search")
        first = self.pixels(activity)
        self.wait_for(lambda: self.pixels(activity) != first, what="the sign of the search to move")
        self.expect(self.state(activity, "showing"), "the search was over too soon to be seen")
        if picture:
            self.picture(picture)
        return activity

    def wait_list(self, activity):
        self.wait_for(lambda: self.state(self.find("push button", CONTINUE), "enabled"), SEARCH_TIMEOUT,
                      "the search to end")
        self.expect(not self.state(activity, "showing"), "the sign of the search stays after its end")
        found = self.items(self.find(LIST))
        self.expect_equal("first item of the list", found[:1], [MANUAL_ENTRY])
        self.expect_equal("printers of the list", sorted(found[1:]), sorted(map(item_of, MODELS)))
        self.expect_equal("chosen item", self.name(self.find(LIST)), MANUAL_ENTRY)

    def choose_printer(self, model, picture=None):
        """Opens the list with the mouse and clicks the printer."""
        box = self.find(LIST)
        self.click(box)
        item = self.find("list item", item_of(model), root=box)
        self.settled(item)
        if picture:
            self.picture(picture)
        self.click(item)
        self.wait_for(lambda: self.name(box) == item_of(model), what=f"{item_of(model)!r} to be chosen")
        self.expect_printer(model)

    def expect_printer(self, model):
        """A printer of the list decides address and model, which are then locked."""
        address = self.find(ADDRESS)
        self.wait_for(lambda: self.text_of(address) == PRINTERS[model], what=f"address {PRINTERS[model]}")
        self.expect(not self.state(address, "enabled"), "the address of a printer of the list can be changed")
        self.expect_equal("chosen model", self.chosen_model(), [model])
        for name in MODELS:
            self.expect(not self.state(self.model(name), "enabled"),
                        "the model of a printer of the list can be changed")

    def expect_alert(self, text, picture=None):
        alert = self.wait_alert(ALERT_TITLE)
        self.expect_equal("role of the alert", alert.role, "alert")
        self.expect_equal("texts of the alert", sorted(alert.texts), sorted([ALERT_TITLE, text]))
        self.expect_equal("buttons of the alert", alert.buttons, ["Ok"])
        if picture:
            self.picture(picture)
        return alert

    def expect_handed_over(self, model, address):
        """Summary and hand-off file; nothing follows the address, not even a line end."""
        self.expect_page(SUMMARY)
        shown = "\n".join(self.name(n) for n in self.find_all("label"))
        for word in (model, address):
            self.expect(re.search(rf"(?<![\w.]){re.escape(word)}(?![\w.])", shown),
                        f"the summary does not show {word}")
        line = f"{model} {address}"
        self.expect_equal("KV.txt", self.hand_off(), line.encode())
        return line

    def expect_end(self, timeout=None):
        status = self.wait_exit(timeout)
        if status != 0:
            raise WalkError(f"the installer ended with the status {status}\n{self.output.read_text()}")

    def keep(self, suffix=""):
        """Copies what is left of this process to the results."""
        for name in ("QzInstall.log", "KV.txt"):
            file = self.documents / name
            if file.exists():
                shutil.copy(file, self.results / f"{file.stem}{suffix}{file.suffix}")

    def tab_to(self, node, what):
        for _ in range(15):
            if self.state(node, "focused"):
                return
            self.key("Tab")
            time.sleep(0.1)  # For the focus to arrive and to be told.
        raise WalkError(f"the Tab key does not reach {what}\n{self.dump()}")


def with_the_mouse(user, requests):
    user.expect_page(INTRODUCTION)
    user.expect(not user.state(user.find("push button", BACK), "enabled"), f"{BACK!r} leads nowhere, yet is enabled")
    user.picture("introduction")
    user.click(user.find("push button", CONTINUE))
    user.expect_page(CONNECTION)
    user.expect(user.state(user.find("radio button", DIRECTLY), "checked"), f"{DIRECTLY!r} is not chosen")
    user.expect_equal("lists on the page", user.find_all(LIST), [])
    user.picture("type")
    say("ok  the introduction leads to the printer's connection")

    user.click(user.find("radio button", NETWORK))
    start = time.monotonic()
    activity = user.expect_search("searching")
    say("ok  the search shows that it is at work, and nothing can be chosen meanwhile")
    user.wait_list(activity)
    duration = time.monotonic() - start
    asked = set(re.findall(r"^(\S+) ", requests.read_text(), re.MULTILINE))
    for address in (*PRINTERS.values(), *NOT_LISTED):
        user.expect(address in asked, f"{address} was never asked what it is")
    say(f"ok  after {duration:.1f} s the list has the manual entry and the four printers, each once, and neither "
        "the one of another maker nor the silent one")

    user.choose_printer(INSTALLED, "list")
    user.click(user.find("push button", CONTINUE))
    alert = user.expect_alert(ALREADY_INSTALLED, "refused")
    user.click(user.find("push button", "Ok", root=alert.node))
    user.wait_gone(alert.node)
    user.expect_page(CONNECTION)
    user.expect_equal("KV.txt after the refusal", user.hand_off(), None)
    say(f"ok  the {INSTALLED}, which is set up already, is refused")

    user.choose_printer("KV260")
    user.picture("chosen")
    user.click(user.find("push button", CONTINUE))
    line = user.expect_handed_over("KV260", PRINTERS["KV260"])
    user.picture("summary")
    say("ok  another printer fills in address and model, locks them, and is accepted")
    user.click(user.find("push button", CLOSE))
    user.expect_end()
    user.expect_equal("decisions in the log", user.log_numbers(1083, 1086, 1097, 1100, 1121, 1135),
                      [1083, 1086, 1083, 1086, 1097, 1100])
    user.expect_equal("KV.txt after the end", user.hand_off(), line.encode())
    user.keep()
    say("ok  the log has the refusal and the acceptance; the installer ended with status 0")
    say(f'    handed to the next steps: "{line}"')


def with_the_keys(user):
    user.wait_focus(user.find("push button", CONTINUE), CONTINUE)
    user.key("Return")
    user.expect_page(CONNECTION)
    user.expect_equal("KV.txt on a new start", user.hand_off(), None)
    user.wait_focus(user.find("radio button", DIRECTLY), DIRECTLY)
    user.key("Down")
    user.wait_for(lambda: user.state(user.find("radio button", NETWORK), "checked"), what=f"{NETWORK!r} chosen")
    user.wait_list(user.expect_search())
    say("ok  keys alone: the network is chosen, the old hand-off is gone, the list is there again")

    box, address = user.find(LIST), user.find(ADDRESS)
    user.tab_to(box, "the list")
    user.key("Down")
    user.wait_for(lambda: user.name(box) != MANUAL_ENTRY, what="another item")
    user.expect_printer(re.search(r"KV\d+", user.name(box))[0])
    user.key("Up")
    user.wait_for(lambda: user.name(box) == MANUAL_ENTRY, what="manual entry")
    user.wait_for(lambda: user.text_of(address) == "" and user.state(address, "enabled"),
                  what="the address to be empty and open")
    user.tab_to(address, "the address")
    user.type(IMPOSSIBLE_ADDRESS)
    user.wait_for(lambda: user.text_of(address) == IMPOSSIBLE_ADDRESS, what=f"{IMPOSSIBLE_ADDRESS} typed")
    user.key("Return")
    alert = user.expect_alert(INVALID_ADDRESS, "invalid")
    user.key("Return")
    user.wait_gone(alert.node)
    user.wait_for(lambda: user.text_of(address) == "", what="the invalid address to be gone")
    user.expect_page(CONNECTION)
    say("ok  keys alone: an impossible address is refused and emptied")

    user.key(ADDRESS_KEY)
    user.wait_focus(address, "the address")
    user.type(UNKNOWN_ADDRESS + "x")
    user.wait_for(lambda: user.text_of(address).startswith(UNKNOWN_ADDRESS), what=f"{UNKNOWN_ADDRESS} typed")
    user.expect_equal("address, of which a letter is no part", user.text_of(address), UNKNOWN_ADDRESS)
    user.expect_equal("chosen model", user.chosen_model(), ["KV210"])
    user.tab_to(user.model("KV210"), "the models")
    for _ in MODELS[1:]:
        user.key("Right")
    user.wait_for(lambda: user.chosen_model() == ["KV460"], what="KV460 to be chosen")
    user.picture("typed")
    user.key(FORWARD_KEY)
    line = user.expect_handed_over("KV460", UNKNOWN_ADDRESS)
    user.key(FORWARD_KEY)
    user.expect_end()
    user.expect_equal("decisions in the log", user.log_numbers(1026, 1083, 1097, 1121, 1124, 1135, 1138),
                      [1026, 1121, 1124, 1135, 1138])
    user.keep("-typed")
    say("ok  keys alone: a typed address and a model are accepted; the installer ended with status 0")
    say(f'    handed to the next steps: "{line}"')


def closed_while_searching(user):
    user.click(user.find("push button", CONTINUE))
    user.click(user.find("radio button", NETWORK))
    activity = user.expect_search()
    x, y, width, _ = user.settled(user.window())
    user.expect(user.state(activity, "showing"), "the search was over before the window was closed")
    start = time.monotonic()
    user._xdotool("mousemove", str(x + width + CLOSE_BUTTON[0]), str(y + CLOSE_BUTTON[1]), "click", "1")
    user.expect_end(END_TIMEOUT)
    duration = time.monotonic() - start
    user.expect_equal("KV.txt", user.hand_off(), None)
    say(f"ok  closed in the middle of the search, the installer ended after {duration:.1f} s with status 0")


def end(number, _frame):
    sys.exit(128 + number)


def main():
    signal.signal(signal.SIGTERM, end)
    results, requests, command = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3:]
    try:
        for walk, arguments in ((with_the_mouse, (requests,)), (with_the_keys, ()), (closed_while_searching, ())):
            with Installer(command, results) as user:
                try:
                    user.wait_window()
                    walk(user, *arguments)
                except Exception:
                    # Taken while the window is still there; the first failure is the one to tell.
                    with contextlib.suppress(Exception):
                        Walk.screenshot(str(results / "failure.png"))
                        user.keep()
                    raise
    except WalkError as error:
        print(f"demo: not as it should be: {error}", file=sys.stderr, flush=True)
        return 1
    return 0


if __name__ == "__main__":
    if len(sys.argv) < 4:
        print("usage: walk_installer.py RESULTS REQUESTS COMMAND [ARG...]", file=sys.stderr)
        sys.exit(2)
    sys.exit(main())
