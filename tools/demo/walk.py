"""A scripted user of a Qt program.

Finds controls by the role and the name that the program offers to assistive technology (AT-SPI), and works them with
real key and mouse events (xdotool). Runs inside "desktop", with Debian's own Python: /usr/bin/python3. What is not as
expected is an AssertionError.
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
# A program that hangs must fail our wait, not hang us as well.
Atspi.set_timeout(2000, 10000)

SCALE = float(os.environ.get("QT_SCALE_FACTOR", "1"))


def children(node):
    if node is None:
        return []
    return [child for child in map(node.get_child_at_index, range(node.get_child_count())) if child]


def role(node):
    """A push button is a "push button" on Debian 12, and a "button" on Debian 13."""
    return node.get_role_name().removeprefix("push ")


def name(node):
    return (node.get_name() or "").strip()


def text(node):
    """What an edit contains."""
    return Atspi.Text.get_text(node, 0, -1)


def has(node, state):
    return node.get_state_set().contains(getattr(Atspi.StateType, state.upper()))


def run(*command):
    return subprocess.run(command, check=True, timeout=60, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE).stdout


class Walk:
    """One program, and the hands and eyes to use it. It is killed at the end of the "with" block."""

    def __init__(self, command, output):
        self.process = subprocess.Popen(["setpriv", "--pdeathsig", "KILL", "--", *command],
                                        stdout=output, stderr=subprocess.STDOUT)

    def __enter__(self):
        return self

    def __exit__(self, *exception):
        self.process.kill()
        self.process.wait()

    def application(self):
        """The program's root node, or None while it is not there."""
        return next((app for app in children(Atspi.get_desktop(0)) if app.get_process_id() == self.process.pid), None)

    def nodes(self, root=None, showing=True):
        """All nodes below root in the order of the tree; with showing, without what lies in a hidden widget."""
        for child in children(root or self.application()):
            if not showing or has(child, "showing"):
                yield child
                yield from self.nodes(child, showing)

    def find_all(self, wanted_role, wanted_name=None, root=None, showing=True):
        return [node for node in self.nodes(root, showing)
                if role(node) == wanted_role and wanted_name in (None, name(node))]

    def find(self, wanted_role, wanted_name=None, root=None):
        """The first node of this role and name (without "&"), waited for."""
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
                pass  # Nodes that go away while being read count as not there yet.
            time.sleep(0.03)
        ended = self.process.poll()
        gone = "" if ended is None else f" (the program has ended with {ended}; see output.txt)"
        raise AssertionError(f"{what}: not so within {timeout} s{gone}")

    def wait_state(self, node, state):
        self.wait_for(lambda: has(node, state), f"{name(node)!r} to be {state}")

    def wait_gone(self, node):
        self.wait_for(lambda: not has(node, "showing"), f"{name(node)!r} to go away")

    def dump(self):
        """What is showing, for messages."""
        states = ("focused", "checked", "active", "enabled")
        try:
            return "\n".join(" ".join([role(node), repr(name(node)), *(state for state in states if has(node, state))])
                             for node in self.nodes())
        except GLib.Error as error:
            return f"(the program does not say what it shows: {error.message})"

    def extents(self, node):
        """x, y, width and height on the screen; Qt tells them without its scale factor."""
        box = node.get_extents(Atspi.CoordType.SCREEN)
        return [round(value * SCALE) for value in (box.x, box.y, box.width, box.height)]

    def settled(self, node):
        """The node's extents once they have stopped changing."""
        last = []

        def steady():
            last.append(self.extents(node))
            return last[-1] if last[-1:] == last[-2:-1] and min(last[-1][2:]) > 0 else None

        return self.wait_for(steady, f"{name(node)!r} to stand still")

    def pixels(self, node):
        x, y, width, height = self.extents(node)
        return run("import", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "+repage", "-depth", "8", "rgb:-")

    @staticmethod
    def picture(file):
        """Everything on the screen, without the empty part around it."""
        run("import", "-quiet", "-window", "root", "-trim", "+repage", str(file))

    def click(self, node):
        """Clicks the middle of the node once it is enabled and stands still."""
        self.wait_state(node, "enabled")
        x, y, width, height = self.settled(node)
        run("xdotool", "mousemove", str(x + width // 2), str(y + height // 2), "click", "1")

    def act(self, node):
        """What an assistive program does: the node's own action, "Press" or "Toggle"."""
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
            time.sleep(0.1)  # For the focus to arrive and to be told.
        raise AssertionError(f"the Tab key does not reach {name(node)!r}")

    def wait_exit(self, timeout=10):
        """The program's exit status, waited for."""
        try:
            return self.process.wait(timeout)
        except subprocess.TimeoutExpired:
            raise AssertionError("the program does not end") from None
