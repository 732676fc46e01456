"""Batch Details by keyboard and screen reader: the task rows read back with
the task names korvane-ctl prints and follow the farm, the path keeps a
selection, Tab and Shift+Tab leave the error box without changing it, Escape
closes the dialog.

    /usr/bin/python3 tests/a11y/test_a11y_details.py build/bin [language]
"""

import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from a11ysession import Session, check, log, run, tr  # noqa: E402

SIM = ["--seed", "1", "--batches", "6", "--nodes", "3", "--speed", "20", "--failure-rate", "0",
       "--start-time", "1795440000"]


def text_of(acc):
    text = acc.queryText()
    return text.getText(0, text.characterCount)


def test(bin_dir, language):
    def t(source, context="Monitor"):
        return tr(language, context, source)

    with Session(bin_dir, language, SIM) as s:
        frame = s.start_monitor(args=["--connect", "127.0.0.1:" + s.port])
        batches = s.ctl_json("batches")
        with_error = [i for i, b in enumerate(batches) if s.ctl_json("status", str(b["batch_id"]))["last_error"]]
        check(with_error, "no batch with an error: %r" % [b["status"] for b in batches])

        def open_details(row, keys):
            batch_id = batches[row]["batch_id"]
            mark = s.focus_mark()
            s.refocus()
            s.key(*keys)
            s.wait_focus("table cell", lambda name: name.startswith("#: ") or name.startswith("#："), start=mark,
                         what="the batches list")
            s.key(*(["Down"] * row))
            mark = s.showing_mark()
            s.key("Menu")
            s.wait_showing("popup menu", mark)
            mark = s.focus_mark()
            s.key("Up")
            s.wait_focus("menu item", t("Details..."), start=mark)
            s.key("Return")
            dialog = s.wait(lambda: s.find(s.app, "dialog", t("Batch Details", "BatchDetailsDialog"), depth=1), 10,
                            "Batch Details")
            jobs = s.wait(lambda: s.find(dialog, "list", t("Tasks", "BatchDetailsDialog")), 10, "the task list")
            status = s.ctl_json("status", str(batch_id))
            s.wait(lambda: jobs.childCount == len(status["tasks"]), 10, "one row per task")
            return batch_id, dialog, jobs, status

        def close(dialog):
            s.key("Escape")
            s.wait(lambda: s.find(s.app, "dialog", None, depth=1) is None, 10, "Batch Details to close")

        # Host has the focus: three Tabs lead to the batches; after the dialog the
        # focus is back on them
        # the rows read back with the task names korvane-ctl prints
        batch_id, dialog, jobs, status = open_details(with_error[0], ["Tab", "Tab", "Tab"])
        printed = [line for line in s.ctl("status", str(batch_id)).splitlines()
                   if line and not line.startswith((" ", "Project:", "Last error:"))]
        names = [jobs.getChildAtIndex(i).name for i in range(jobs.childCount)]
        check(len(printed) == len(names), "%d rows, korvane-ctl prints %d tasks" % (len(names), len(printed)))
        for name, line, task in zip(names, printed, status["tasks"]):
            title = line[:line.index(" (")]
            check(name.startswith(t(title) + " ("), "row %r for task %r" % (name, title))
            if language == "en":
                check(name.startswith(line + ", "), "row %r for %r" % (name, line))
        log("task rows of batch %d:" % batch_id, names)

        # the path: focused first, selected, the selection kept across refreshes
        path = s.wait(lambda: s.find(dialog, "text", t("Project:", "BatchDetailsDialog")), 10, "the path field")
        check(text_of(path) == status["path"], "path field reads %r" % text_of(path))
        s.wait(lambda: path.getState().contains(s.pyatspi.STATE_FOCUSED), 10, "the focus in the path field")
        s.key("ctrl+a")
        selected = path.queryText()
        s.wait(lambda: selected.getNSelections() == 1, 5, "the path selected")
        s.pump(2.5)
        check(selected.getNSelections() == 1 and selected.getSelection(0) == (0, len(status["path"])),
              "the path's selection after two refreshes: %r" % ([selected.getSelection(i) for i in
                                                                 range(selected.getNSelections())],))
        log("the path stays selected across refreshes")

        # Tab to the error box and out of it again; its text stays as it was
        mark = s.focus_mark()
        s.key("Tab", "Tab")
        error = s.wait_focus("text", t("Last error:", "BatchDetailsDialog"), start=mark)
        before = text_of(error)
        check(before.endswith(" " + status["last_error"]["message"]), "error box reads %r" % before)
        mark = s.focus_mark()
        s.key("Tab")
        s.wait_focus("push button", start=mark, what="the Close button after the error box")
        mark = s.focus_mark()
        s.key("shift+Tab")
        s.wait_focus("text", t("Last error:", "BatchDetailsDialog"), start=mark)
        check(text_of(error) == before, "error box changed to %r" % text_of(error))
        log("Tab and Shift+Tab leave the error box; it still reads", repr(before))

        close(dialog)
        log("Escape closed Batch Details")

        # a working batch, the one with the most time left: its rows follow the farm
        batches = s.ctl_json("batches")
        working = sorted((i for i, b in enumerate(batches) if b["status"] == "inprogress"),
                         key=lambda i: -batches[i]["task"]["time_left"])
        check(working, "no batch works: %r" % [b["status"] for b in batches])
        batch_id, dialog, jobs, status = open_details(working[0], ["Home"])
        running = [i for i, task in enumerate(status["tasks"]) if task["status"] == "inprogress"]
        check(running, "batch %d has no running task" % batch_id)
        row = jobs.getChildAtIndex(running[0])
        first = row.name
        check("%" in first, "a running task's row has no progress: %r" % first)
        s.wait(lambda: jobs.getChildAtIndex(running[0]).name != first, 10, "the running task's row to change")
        later = jobs.getChildAtIndex(running[0]).name
        check(any(kind == "object:property-change:accessible-name" for kind, _, _ in s.events),
              "no name change was announced")
        log("running task read %r, then %r" % (first, later))
        close(dialog)


if __name__ == "__main__":
    sys.exit(run(test))
