"""Drives a Qt program like a user.

Finds controls by their accessible role and name (AT-SPI) and operates them with real key and mouse events (xdotool).
Runs inside "desktop", with Debian's own Python: /usr/bin/python3. Raises AssertionError if something is not as
expected.
"""

import os
import subprocess
import time
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

# The interface getters are marked deprecated without a successor in Python.
warnings.filterwarnings("ignore", category=DeprecationWarning)
# If the program hangs, the walk must time out, not hang too.
Atspi.set_timeout(2000, 10000)

SCALE = float(os.environ.get("QT_SCALE_FACTOR", "1"))


def children(node):
    if node is None:
        return []
    return [child for child in map(node.get_child_at_index, range(node.get_child_count())) if child]


def role(node):
    """The role's name; Debian 12 says "push button", Debian 13 "button"."""
    return node.get_role_name().removeprefix("push ")


def name(node):
    return (node.get_name() or "").strip()


def text(node):
    """The content of a text field."""
    return Atspi.Text.get_text(node, 0, -1)


def has(node, state):
    return node.get_state_set().contains(getattr(Atspi.StateType, state.upper()))


def run(*command):
    return subprocess.run(command, check=True, timeout=60, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE).stdout


class Walk:
    """A running program, which ends with this process at the latest, and operations on its window."""

    def __init__(self, command, output):
        self.process = subprocess.Popen(["setpriv", "--pdeathsig", "KILL", "--", *command],
                                        stdout=output, stderr=subprocess.STDOUT)

    def application(self):
        """The program's root node, or None if it is not there yet."""
        return next((app for app in children(Atspi.get_desktop(0)) if app.get_process_id() == self.process.pid), None)

    def nodes(self, root=None, showing=True):
        """All nodes below root in tree order; with showing, only visible ones."""
        for child in children(root or self.application()):
            if not showing or has(child, "showing"):
                yield child
                yield from self.nodes(child, showing)

    def find_all(self, wanted_role, wanted_name=None, root=None, showing=True):
        return [node for node in self.nodes(root, showing)
                if role(node) == wanted_role and wanted_name in (None, name(node))]

    def find(self, wanted_role, wanted_name=None, root=None):
        """Waits for a node with this role and name (without "&"); returns the first."""
        return self.wait_for(lambda: self.find_all(wanted_role, wanted_name, root),
                             f"{wanted_role} {wanted_name or ''}")[0]

    def wait_for(self, predicate, what, timeout=10):
        """Waits until predicate() is true and returns its value."""
        end = time.monotonic() + timeout
        while time.monotonic() < end:
            try:
                if value := predicate():
                    return value
            except GLib.Error:
                pass  # A node that disappears while it is read counts as missing.
            time.sleep(0.03)
        ended = self.process.poll()
        gone = "" if ended is None else f" (the program exited with {ended}; see output.txt)"
        raise AssertionError(f"timeout after {timeout} s, waiting for {what}{gone}")

    def wait_state(self, node, state):
        self.wait_for(lambda: has(node, state), f"{name(node)!r} to be {state}")

    def wait_gone(self, node):
        self.wait_for(lambda: not has(node, "showing"), f"{name(node)!r} to disappear")

    def dump(self):
        """The visible nodes, for error messages."""
        states = ("focused", "checked", "active", "enabled")
        try:
            return "\n".join(" ".join([role(node), repr(name(node)), *(state for state in states if has(node, state))])
                             for node in self.nodes())
        except GLib.Error as error:
            return f"(can't read the program's window: {error.message})"

    def extents(self, node):
        """x, y, width and height on the screen; Qt reports them without its scale factor."""
        box = node.get_extents(Atspi.CoordType.SCREEN)
        return [round(value * SCALE) for value in (box.x, box.y, box.width, box.height)]

    def settled(self, node):
        """The node's extents once they have stopped changing."""
        last = []

        def steady():
            last.append(self.extents(node))
            return last[-1] if last[-1:] == last[-2:-1] and min(last[-1][2:]) > 0 else None

        return self.wait_for(steady, f"{name(node)!r} to stop moving")

    def pixels(self, node):
        return self.area(*self.extents(node))

    @staticmethod
    def area(x, y, width, height):
        """The pixels of a part of the screen: red, green and blue, 8 bits each."""
        return run("import", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "+repage", "-depth", "8", "rgb:-")

    def contrast(self, *area):
        """The highest contrast ratio of a pixel with the first, the background: 1 to 21, as WCAG 2 defines it."""
        linear = [value / 3294.6 if value <= 10 else ((value / 255 + 0.055) / 1.055) ** 2.4
                  for value in self.area(*area)]
        first, *others = (0.2126 * red + 0.7152 * green + 0.0722 * blue + 0.05
                          for red, green, blue in zip(linear[::3], linear[1::3], linear[2::3]))
        return max(max(first, other) / min(first, other) for other in others)

    @staticmethod
    def picture(title):
        """Saves the screen to the home folder, without the empty area around the windows."""
        run("import", "-quiet", "-window", "root", "-trim", "+repage", os.path.expanduser(f"~/{title}.png"))

    def click(self, node):
        """Clicks the middle of the node once it is enabled and has stopped moving."""
        self.wait_state(node, "enabled")
        x, y, width, height = self.settled(node)
        run("xdotool", "mousemove", str(x + width // 2), str(y + height // 2), "click", "1")

    def act(self, node):
        """Invokes the node's accessible action, "Press" or "Toggle"."""
        self.wait_state(node, "enabled")
        Atspi.Action.do_action(node, 0)

    @staticmethod
    def type(words):
        run("xdotool", "type", "--delay", "5", "--", words)

    @staticmethod
    def key(*keys):
        """Presses keys one after another: "Return", "alt+n"."""
        run("xdotool", "key", "--delay", "5", "--", *keys)

    def tab_to(self, node):
        for _ in range(15):
            if has(node, "focused"):
                return
            self.key("Tab")
            time.sleep(0.2)  # For the focus change and its event.
        raise AssertionError(f"the Tab key does not reach {name(node)!r}")
