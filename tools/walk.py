#!/usr/bin/python3
"""A scripted user for Qt programs.

Finds controls by their role and name as the program offers them to assistive
technology (AT-SPI), and works them with real key and mouse events (xdotool).
Runs inside "desktop". Needs Debian's own Python: /usr/bin/python3.

    user = Walk(["./installer"])
    user.click(user.find("radio button", "USB"))
    user.key("alt+n")
    print(user.wait_alert("Confirm").texts)
"""

import re
import subprocess
import time
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

# The interface getters are marked deprecated without a successor in Python.
warnings.filterwarnings("ignore", category=DeprecationWarning)

POLL = 0.03

# What the states of AT-SPI are called by people.
_STATES = {
    "enabled": Atspi.StateType.SENSITIVE,
    "checked": Atspi.StateType.CHECKED,
    "focused": Atspi.StateType.FOCUSED,
    "showing": Atspi.StateType.SHOWING,
    "active": Atspi.StateType.ACTIVE,
    "default": Atspi.StateType.IS_DEFAULT,
    "editable": Atspi.StateType.EDITABLE,
    "expanded": Atspi.StateType.EXPANDED,
    "selected": Atspi.StateType.SELECTED,
    "modal": Atspi.StateType.MODAL,
    "read-only": Atspi.StateType.READ_ONLY,
}

# QMessageBox is an "alert", every other QDialog a "dialog".
_DIALOGS = ("alert", "dialog", "file chooser")


class WalkError(Exception):
    """The program did not show or do what the scripted user expected."""


class Alert:
    """A message box or dialog that is on the screen."""

    def __init__(self, walk, node):
        self.node = node
        self.role = node.get_role_name()
        self.title = node.get_name()
        self.texts = [
            walk.name(n) for n in walk.nodes(node)
            if n.get_role_name() == "label" and walk.name(n)
        ]
        self.buttons = [
            walk.name(n) for n in walk.nodes(node)
            if n.get_role_name() == "push button"
        ]

    def __repr__(self):
        return (f"{self.role} {self.title!r}: {self.texts!r} "
                f"buttons {self.buttons!r}")


class Walk:
    """One program and the hands and eyes to use it.

    command is started and later ended by this object; with pid, a program
    that somebody else started is used. timeout is the default of every wait.
    """

    def __init__(self, command=None, pid=None, timeout=10, env=None, cwd=None):
        self.timeout = timeout
        self.process = None
        # A program that hangs must fail our wait, not hang us as well.
        Atspi.set_timeout(2000, 10000)
        if command is not None:
            self.process = subprocess.Popen(command, env=env, cwd=cwd)
            pid = self.process.pid
        if pid is None:
            raise ValueError("neither command nor pid")
        self.pid = pid

    # --- seeing ------------------------------------------------------------

    def application(self):
        """The program's root node, or None while it is not there."""
        try:
            desktop = Atspi.get_desktop(0)
            for child in self._children(desktop):
                if child.get_process_id() == self.pid:
                    return child
        except GLib.Error:
            pass
        return None

    @staticmethod
    def _children(node):
        try:
            for i in range(node.get_child_count()):
                child = node.get_child_at_index(i)
                if child is not None:
                    yield child
        except GLib.Error:
            # The node went away between two questions.
            return

    def _has(self, node, state):
        try:
            return node.get_state_set().contains(state)
        except GLib.Error:
            return False

    def nodes(self, root=None, showing=True):
        """All nodes below root in the order of the tree.

        With showing, what lies in a hidden widget is left out: Qt calls the
        items of a closed combo box and its like showing.
        """
        if root is None:
            root = self.application()
            if root is None:
                return
        for child in self._children(root):
            if showing and not self._has(child, Atspi.StateType.SHOWING):
                continue
            yield child
            yield from self.nodes(child, showing)

    @staticmethod
    def name(node):
        """The node's name, with line ends and edges made plain."""
        try:
            return (node.get_name() or "").strip()
        except GLib.Error:
            return ""

    def labels(self, node):
        """The names of the labels that belong to the node.

        Qt names a combo box after its current item; what its label says is
        only in this relation.
        """
        found = []
        try:
            for relation in node.get_relation_set():
                if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY:
                    for i in range(relation.get_n_targets()):
                        found.append(self.name(relation.get_target(i)))
        except GLib.Error:
            pass
        return found

    def _matches(self, node, role, name):
        try:
            if role is not None and node.get_role_name() != role:
                return False
        except GLib.Error:
            return False
        if name is None:
            return True
        for text in [self.name(node)] + self.labels(node):
            if isinstance(name, re.Pattern):
                if name.search(text):
                    return True
            elif text == name:
                return True
        return False

    def find_all(self, role=None, name=None, root=None, showing=True):
        """The nodes of this role and name that are there now.

        name is the whole name (without "&"), or a compiled regular
        expression; the text of a label that belongs to the node counts too.
        """
        return [n for n in self.nodes(root, showing)
                if self._matches(n, role, name)]

    def find(self, role=None, name=None, timeout=None, root=None, showing=True):
        """The first such node, waited for."""
        what = f"{role or 'control'} {name!r}" if name else f"{role}"

        def first():
            for node in self.nodes(root, showing):
                if self._matches(node, role, name):
                    return node
            return None

        return self.wait_for(first, timeout, what)

    def wait_for(self, predicate, timeout=None, what="condition"):
        """Waits until predicate() is true and returns its value."""
        if timeout is None:
            timeout = self.timeout
        end = time.monotonic() + timeout
        while True:
            try:
                value = predicate()
            except GLib.Error:
                # Nodes that go away while being read count as not there yet.
                value = None
            if value:
                return value
            if time.monotonic() >= end:
                break
            time.sleep(POLL)
        gone = ""
        if self.process is not None and self.process.poll() is not None:
            gone = f" (the program has ended with {self.process.returncode})"
        raise WalkError(f"{what}: not so within {timeout} s{gone}\n{self.dump()}")

    def wait_gone(self, node, timeout=None):
        """Waits until the node is no longer on the screen."""
        self.wait_for(lambda: not self.state(node, "showing"), timeout,
                      "control to go away")

    def state(self, node, state):
        """Whether the node is enabled, checked, focused, showing and so on."""
        return self._has(node, _STATES[state])

    def text_of(self, node):
        """What the node shows: an edit's contents, else its name."""
        if "Text" in node.get_interfaces():
            return Atspi.Text.get_text(node, 0, -1)
        return node.get_name()

    def extents(self, node):
        """x, y, width and height on the screen."""
        e = node.get_extents(Atspi.CoordType.SCREEN)
        return e.x, e.y, e.width, e.height

    def items(self, combo):
        """The names of all items of a combo box or list, open or not."""
        return [self.name(n) for n in self.nodes(combo, showing=False)
                if n.get_role_name() == "list item"]

    def windows(self):
        """The program's windows that are on the screen."""
        app = self.application()
        return [w for w in self._children(app)
                if self.state(w, "showing")] if app else []

    def alerts(self):
        """The message boxes and dialogs on the screen, oldest first."""
        return [Alert(self, n) for n in self.nodes()
                if n.get_role_name() in _DIALOGS]

    def wait_alert(self, title=None, timeout=None):
        """The alert (of this title, or the newest), ready for keys."""
        def ready():
            for n in reversed([n for n in self.nodes()
                               if n.get_role_name() in _DIALOGS]):
                if title in (None, self.name(n)) and self.state(n, "active"):
                    return n
            return None

        node = self.wait_for(ready, timeout, f"alert {title!r}")
        return Alert(self, node)

    def dump(self, showing=True):
        """The tree as text, for messages."""
        lines = []

        def walk(node, depth):
            for n in self._children(node):
                if showing and not self._has(n, Atspi.StateType.SHOWING):
                    continue
                try:
                    states = [s for s in ("focused", "checked", "active",
                                          "default") if self.state(n, s)]
                    if not self.state(n, "enabled"):
                        states.append("disabled")
                    lines.append(f"{'  ' * depth}{n.get_role_name()} "
                                 f"{self.text_of(n)!r} {self.extents(n)} "
                                 f"{' '.join(states)}".rstrip())
                except GLib.Error:
                    continue
                walk(n, depth + 1)

        app = self.application()
        if app is None:
            return "(no program)"
        walk(app, 0)
        return "\n".join(lines)

    # --- doing -------------------------------------------------------------

    @staticmethod
    def _xdotool(*args):
        subprocess.run(["xdotool", *args], check=True, timeout=60,
                       stdin=subprocess.DEVNULL)

    def settled(self, node, timeout=None):
        """The node's extents once they have stopped changing."""
        last = [None]

        def same():
            now = self.extents(node)
            steady = now == last[0] and now[2] > 0 and now[3] > 0
            last[0] = now
            return now if steady else None

        return self.wait_for(same, timeout, "control to stand still")

    def click(self, node, button=1, timeout=None):
        """Clicks the middle of the node once it is enabled and stands still."""
        self.wait_for(lambda: self.state(node, "showing"), timeout,
                      f"{self.name(node)!r} to be showing")
        self.wait_for(lambda: self.state(node, "enabled"), timeout,
                      f"{self.name(node)!r} to be enabled")
        x, y, width, height = self.settled(node, timeout)
        self._xdotool("mousemove", str(x + width // 2), str(y + height // 2),
                      "click", str(button))

    def type(self, text):
        """Types text into whatever has the focus."""
        self._xdotool("type", "--delay", "5", "--", text)

    def key(self, *keys):
        """Presses keys one after another: "Return", "alt+n", "ctrl+a"."""
        self._xdotool("key", "--delay", "5", "--", *keys)

    def focus(self, node, timeout=None):
        """Clicks the node and waits until it has the keyboard."""
        self.click(node, timeout=timeout)
        self.wait_for(lambda: self.state(node, "focused"), timeout,
                      f"{self.name(node)!r} to have the focus")

    def enter(self, node, text, timeout=None):
        """Replaces an edit's contents and waits until it shows the text."""
        self.focus(node, timeout)
        self.key("ctrl+a", "Delete")
        self.wait_for(lambda: self.text_of(node) == "", timeout, "edit to be empty")
        self.type(text)
        self.wait_for(lambda: self.text_of(node) == text, timeout,
                      f"edit to show {text!r}")

    def choose(self, combo, item, timeout=None):
        """Opens a combo box, clicks the item and waits until it is shown."""
        self.click(combo, timeout=timeout)
        # Only now do the items' extents mean anything.
        node = self.find("list item", item, timeout, root=combo)
        self.click(node, timeout=timeout)
        self.wait_for(lambda: self.name(combo) == item, timeout,
                      f"combo box to show {item!r}")

    @staticmethod
    def screenshot(path):
        """Writes the whole screen to path (.png)."""
        subprocess.run(["import", "-window", "root", path], check=True,
                       timeout=60, stdin=subprocess.DEVNULL)

    # --- ending ------------------------------------------------------------

    def wait_exit(self, timeout=None):
        """The program's exit status, waited for."""
        try:
            return self.process.wait(self.timeout if timeout is None else timeout)
        except subprocess.TimeoutExpired:
            raise WalkError(f"the program does not end\n{self.dump()}") from None

    def close(self):
        """Ends the program, if this object started it."""
        if self.process is not None and self.process.poll() is None:
            self.process.terminate()
            try:
                self.process.wait(5)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.close()
