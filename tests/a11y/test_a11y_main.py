"""The main window by keyboard and screen reader: names, focus order, connect,
rows read with their headers, Shift+F10 and the Menu key, About and Escape,
Ctrl+Q.

    /usr/bin/python3 tests/a11y/test_a11y_main.py build/bin [language]
"""

import os
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from a11ysession import Failure, Session, check, log, project_name, role_name, row_sentence, run, tr  # noqa: E402

SIM = ["--seed", "1", "--batches", "6", "--nodes", "3", "--speed", "0", "--start-time", "1795440000"]


def test(bin_dir, language):
    def t(source, context="Monitor"):
        return tr(language, context, source)

    with Session(bin_dir, language, SIM) as s:
        frame = s.start_monitor()
        states = s.pyatspi

        # names from the labels, the trees named, in the order of the screen
        host = s.wait(lambda: s.find(frame, "text", t("Host name:")), 10, "the host field by its label")
        port = s.find(frame, "spin button", t("Port:"))
        check(port is not None, "no spin button named %r" % t("Port:"))
        split = s.find(frame, "split pane")
        trees = [split.getChildAtIndex(i) for i in range(split.childCount)
                 if role_name(split.getChildAtIndex(i)) == "tree"]
        check([tree.name for tree in trees] == [t("Batches"), t("Nodes")],
              "trees in accessible order: %r" % [tree.name for tree in trees])
        relations = [r.getRelationType() for r in host.getRelationSet()]
        check(states.RELATION_LABELLED_BY in relations, "the host field has no labelled-by relation")
        log("names: host, port, Batches, Nodes in screen order")

        # connect by keyboard: the host field has the focus at the start
        s.wait(lambda: host.getState().contains(states.STATE_FOCUSED), 10, "the focus in the host field")
        s.type(s.host)
        mark = s.focus_mark()
        s.key("Tab")
        s.wait_focus("spin button", t("Port:"), start=mark)
        s.key("ctrl+a")
        s.type(s.port)
        mark = s.focus_mark()
        s.key("Tab")
        button = s.wait_focus("push button", t("Connect"), start=mark)
        s.key("space")
        s.wait(lambda: button.name == t("Disconnect"), 10, "the button to read Disconnect")

        batches = s.ctl_json("batches")
        check(len(batches) == 6, "the farm has %d batches" % len(batches))

        def batch_row(index):
            b = batches[index]
            return b["batch_id"], b["path"]

        # Tab into the batches: the current row is read with its headers
        mark = s.focus_mark()
        s.key("Tab")
        first_id, first_path = batch_row(0)
        expected = row_sentence(language, [("#", str(first_id)), ("Project", project_name(first_path))])
        cell = s.wait_focus("table cell", lambda name: name.startswith(expected + ", "), start=mark,
                            what="the first batch read with its headers")
        check(t("Status") + ": " in cell.name and t("Current Task") + ": " in cell.name,
              "row read without its headers: %r" % cell.name)
        log("focus on the batches reads:", cell.name)

        # pausable batches: the first two pending or working ones
        rows = [i for i, b in enumerate(batches) if b["status"] in ("pending", "inprogress")][:2]
        check(len(rows) == 2, "fewer than two pausable batches: %r" % [b["status"] for b in batches])

        def go_to(row, current):
            for _ in range(row - current):
                mark = s.focus_mark()
                s.key("Down")
            batch_id, path = batch_row(row)
            want = row_sentence(language, [("#", str(batch_id)), ("Project", project_name(path))])
            if row != current:
                s.wait_focus("table cell", lambda name: name.startswith(want + ", "), start=mark,
                             what="row %d read with its headers" % row)
            return batch_id

        def pause_by(key, batch_id):
            mark = s.showing_mark()
            s.key(key)
            menu = s.wait_showing("popup menu", mark)
            entries = [menu.getChildAtIndex(i).name for i in range(menu.childCount)]
            want = [t("Pause"), t("Resume"), t("Abort"), t("Set Priority"), "", t("Details...")]
            check(entries == want, "%s opened %r" % (key, entries))
            mark = s.focus_mark()
            s.key("Down")
            s.wait_focus("menu item", t("Pause"), start=mark)
            s.key("Return")
            s.wait(lambda: next(b for b in s.ctl_json("batches") if b["batch_id"] == batch_id)["status"]
                   == "paused", 10, "batch %d paused" % batch_id)
            log("%s paused batch %d" % (key, batch_id))

        current = 0
        first = go_to(rows[0], current)
        pause_by("shift+F10", first)
        second = go_to(rows[1], rows[0])
        pause_by("Menu", second)

        # on to the nodes, read with their headers
        nodes = s.ctl_json("nodes")
        mark = s.focus_mark()
        s.key("Tab")
        host_name = nodes[0]["hostname"]
        host_name = host_name[:host_name.rfind(":")] if ":" in host_name else host_name
        want = row_sentence(language, [("#", str(nodes[0]["node_id"]))]) + ", " + t("Host") + ": " + host_name
        s.wait_focus("table cell", lambda name: name.startswith(want), start=mark,
                     what="the first node read with its headers")

        def alt(source):
            # the menu's accelerator in this language: Alt+F and Alt+H in English
            text = t(source, "MainWindow")
            return "alt+" + text[text.index("&") + 1].lower()

        # Alt+F opens the File menu with Exit; Escape closes it
        mark = s.showing_mark()
        s.key(alt("&File"))
        menu = s.wait_showing("popup menu", mark)
        check([menu.getChildAtIndex(i).name for i in range(menu.childCount)] == [t("E&xit", "MainWindow").replace("&", "")],
              "Alt+F opened %r" % [menu.getChildAtIndex(i).name for i in range(menu.childCount)])
        s.key("Escape", "Escape")
        log("%s opened the File menu" % alt("&File"))

        # Help > About by Alt+H, closed by Escape
        mark = s.showing_mark()
        focus = s.focus_mark()
        s.key(alt("&Help"))
        s.wait_showing("popup menu", mark)
        # Return only once the menu has made its entry current: before that,
        # on a busy machine, the key can reach the menu and do nothing.
        s.wait_focus("menu item", t("About Monitor...", "MainWindow"), start=focus)
        s.key("Return")
        about = s.wait(lambda: s.find(s.app, "dialog", t("About Monitor", "AboutDialog"), depth=1), 10,
                       "the About dialog")
        log("About opened by %s:" % alt("&Help"), about.name)
        s.key("Escape")
        s.wait(lambda: s.find(s.app, "dialog", None, depth=1) is None, 10, "the About dialog to close")
        log("closed by Escape")
        s.refocus()

        # Ctrl+Q ends the program with 0
        started = time.monotonic()
        s.key("ctrl+q")
        try:
            code = s.monitor.wait(15)
        except subprocess.TimeoutExpired:
            raise Failure("Ctrl+Q: the monitor still runs after 15 s")
        check(code == 0, "Ctrl+Q: exit code %d" % code)
        log("Ctrl+Q: exit code 0 after %.1f s" % (time.monotonic() - started))


if __name__ == "__main__":
    sys.exit(run(test))
