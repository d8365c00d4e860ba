#!/usr/bin/python3
"""A GTK 3 window for the desktop tests: a text view holding known text above a password entry
holding a known secret. Run with Debian's python3 (python3-gi)."""
import sys

import gi

gi.require_version("Gtk", "3.0")
from gi.repository import Gtk  # noqa: E402

TEXT = (
    "Morning light reaches the harbour before the town wakes. "
    "Gulls circle the quiet boats.\n"
    "By noon the market is loud with traders and their carts."
)


def main():
    secret = sys.argv[1] if len(sys.argv) > 1 else "opensesame"
    window = Gtk.Window(title="Lectorbell GTK fixture")
    window.set_default_size(700, 300)
    window.move(0, 0)
    box = Gtk.Box(orientation=Gtk.Orientation.VERTICAL, spacing=12)
    view = Gtk.TextView()
    view.set_wrap_mode(Gtk.WrapMode.WORD)
    view.get_buffer().set_text(TEXT)
    scroll = Gtk.ScrolledWindow()
    scroll.set_min_content_height(160)
    scroll.add(view)
    box.pack_start(scroll, True, True, 0)
    password = Gtk.Entry()
    password.set_visibility(False)
    password.set_text(secret)
    box.pack_start(password, False, False, 0)
    window.add(box)
    window.connect("destroy", Gtk.main_quit)
    window.show_all()
    view.grab_focus()
    Gtk.main()


if __name__ == "__main__":
    main()
