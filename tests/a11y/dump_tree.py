"""Prints the AT-SPI tree (role and name) of the main window, connected to a
simulator, and of Batch Details for batch 2.

    /usr/bin/python3 tests/a11y/dump_tree.py build/bin [language]
"""

import sys

from a11ysession import Session


def main():
    bin_dir = sys.argv[1]
    language = sys.argv[2] if len(sys.argv) > 2 else "en"
    with Session(bin_dir, language, ["--seed", "1", "--batches", "3", "--nodes", "2", "--speed", "0",
                                      "--start-time", "1795440000"]) as session:
        frame = session.start_monitor(args=["--connect", "127.0.0.1:" + session.port])
        session.pump(4)
        print("== main window")
        print("\n".join(session.outline(frame)))
        # Host has the focus; Tab, Tab, Tab: Port, Connect, the batches; batch 2 is the second row
        session.key("Tab", "Tab", "Tab", "Down", "Menu")
        session.pump(1)
        session.key("Up", "Return")
        dialog = session.wait(lambda: session.find(session.app, "dialog", None, depth=1), 10, "Batch Details")
        session.pump(2)
        print("== Batch Details")
        print("\n".join(session.outline(dialog)))
        session.key("Escape")


if __name__ == "__main__":
    main()
