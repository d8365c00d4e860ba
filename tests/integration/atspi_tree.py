#!/usr/bin/python3
"""Test helper: prints or searches the AT-SPI tree of the private desktop.

  atspi_tree.py dump [PID]             the tree with roles and screen extents
  atspi_tree.py word PID WORD [ROLE]   the screen centre "X,Y" of the first occurrence of WORD
                                       in a text element (of ROLE when given)
  atspi_tree.py wait PID ROLE          waits (up to 20 s) until an element of ROLE is showing
"""
import sys
import time

import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

SCREEN = Atspi.CoordType.SCREEN
warnings.filterwarnings("ignore", category=DeprecationWarning)


def applications(pid=None):
    desktop = Atspi.get_desktop(0)
    for i in range(desktop.get_child_count()):
        app = desktop.get_child_at_index(i)
        if app is None:
            continue
        try:
            if pid is None or app.get_process_id() == pid:
                yield app
        except Exception:
            continue


def walk(node, depth=0, limit=4000):
    stack = [(node, depth)]
    seen = 0
    while stack and seen < limit:
        current, level = stack.pop()
        seen += 1
        yield current, level
        try:
            count = current.get_child_count()
        except Exception:
            continue
        children = []
        for i in range(min(count, 2000)):
            try:
                child = current.get_child_at_index(i)
            except Exception:
                child = None
            if child is not None:
                children.append((child, level + 1))
        stack.extend(reversed(children))


def text_of(node):
    text = node.get_text_iface()
    if text is None:
        return None
    return text.get_text(0, text.get_character_count())


def dump(pid):
    for app in applications(pid):
        for node, level in walk(app):
            extents = ""
            component = node.get_component_iface()
            if component is not None:
                r = component.get_extents(SCREEN)
                extents = f"{r.x},{r.y} {r.width}x{r.height}"
            role = node.get_role_name()
            shown = ""
            if role != "password text":
                value = text_of(node)
                shown = repr(value[:60]) if value else ""
            print("  " * level + f"{role} [{extents}] {shown}")


def word(pid, needle, role=None):
    for app in applications(pid):
        for node, _ in walk(app):
            if role and node.get_role_name() != role:
                continue
            if node.get_role_name() == "password text":
                continue
            value = text_of(node)
            if not value or needle not in value:
                continue
            text = node.get_text_iface()
            at = value.index(needle)
            box = text.get_character_extents(at, SCREEN)
            end = text.get_character_extents(at + len(needle) - 1, SCREEN)
            if box.width <= 0 and box.height <= 0:
                continue
            x = (box.x + end.x + end.width) // 2
            y = box.y + box.height // 2
            print(f"{x},{y}")
            return 0
    return 1


def wait(pid, role):
    deadline = time.monotonic() + 20
    while time.monotonic() < deadline:
        for app in applications(pid):
            for node, _ in walk(app, limit=3000):
                if node.get_role_name() != role:
                    continue
                states = node.get_state_set()
                if states.contains(Atspi.StateType.SHOWING):
                    return 0
        time.sleep(0.2)
    return 1


def main(argv):
    command = argv[1]
    if command == "dump":
        dump(int(argv[2]) if len(argv) > 2 else None)
        return 0
    if command == "word":
        return word(int(argv[2]), argv[3], argv[4] if len(argv) > 4 else None)
    if command == "wait":
        return wait(int(argv[2]), argv[3])
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv))
