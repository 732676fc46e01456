"""A failed connection's warning box is announced as an alert, and Escape
closes it: Connect pressed by keyboard towards a port where nothing listens.

    /usr/bin/python3 tests/a11y/test_a11y_alert.py build/bin [language]
"""

import os
import socket
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from a11ysession import Session, check, log, run, tr  # noqa: E402


def closed_port():
    # a port that was free a moment ago: nothing listens there
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def test(bin_dir, language):
    def t(source, context="Monitor"):
        return tr(language, context, source)

    with Session(bin_dir, language, ["--seed", "1", "--batches", "2", "--nodes", "1", "--speed", "0"]) as s:
        port = closed_port()
        frame = s.start_monitor({"network_host": "127.0.0.1", "network_port": str(port)})
        mark = s.focus_mark()
        s.key("Tab", "Tab")
        button = s.wait_focus("push button", t("Connect"), start=mark)
        mark = s.showing_mark()
        s.key("space")
        alert = s.wait(lambda: s.find(s.app, "alert", "Korvane Monitor", depth=1), 15, "an alert")
        texts = [alert.getChildAtIndex(i).name for i in range(alert.childCount)]
        log("alert %r with %r" % (alert.name, texts))
        check(t("Can't connect to server", "Errors") in texts, "the alert reads %r" % texts)
        s.key("Escape")
        s.wait(lambda: s.find(s.app, "alert", None, depth=1) is None, 10, "the alert to close")
        s.wait(lambda: button.name == t("Connect"), 10, "the button to read Connect again")
        log("Escape closed the alert; the button reads", button.name)
        check(frame is not None, "no main window")


if __name__ == "__main__":
    sys.exit(run(test))
