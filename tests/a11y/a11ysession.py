"""A desktop session of its own for the monitor, read through the AT-SPI bus.

Session starts, each as a process of its own that it ends again (on failure
too): Xvfb on a free display, a session D-Bus, the accessibility bus
(at-spi-bus-launcher) with its registry (at-spi2-registryd), the real
korvane-sim and the real korvane-monitor with Qt's AT-SPI bridge on and a
temporary XDG_CONFIG_HOME. Widgets are found by role and accessible name,
keys are sent with xdotool; nothing is clicked.
"""

import json
import os
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import xml.etree.ElementTree as ElementTree

SOURCE_DIR = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
LAUNCHER = "/usr/libexec/at-spi-bus-launcher"
REGISTRY = "/usr/libexec/at-spi2-registryd"


class Failure(Exception):
    pass


# Newer AT-SPI (2.56, Debian 13) names the push button role "button"; the
# tests and the saved trees keep the older name for both.
RENAMED_ROLES = {"button": "push button"}


def role_name(acc):
    """The accessible's role by name, the same on every release."""
    name = acc.getRoleName()
    return RENAMED_ROLES.get(name, name)


def log(*parts):
    print(*parts, flush=True)


def translation(language, context, source):
    """The text the catalogue lang/monitor_<language>.ts gives for source."""
    if language in ("", "en"):
        return source
    tree = ElementTree.parse(os.path.join(SOURCE_DIR, "lang", "monitor_%s.ts" % language))
    for ctx in tree.getroot().iter("context"):
        if ctx.findtext("name") != context:
            continue
        for message in ctx.iter("message"):
            if message.findtext("source") == source:
                text = message.findtext("translation")
                return text if text else source
    return source


class Session:
    def __init__(self, bin_dir, language="en", sim_args=()):
        self.bin_dir = bin_dir
        self.language = language
        self.sim_args = list(sim_args)
        self.processes = []
        self.tmp = tempfile.mkdtemp(prefix="korvane-a11y-")
        self.monitor = None
        self.app = None
        self.events = []
        self.pyatspi = None

    # -- processes ---------------------------------------------------------

    def _start(self, argv, **kwargs):
        process = subprocess.Popen(argv, env=self.env, start_new_session=True, **kwargs)
        self.processes.append(process)
        return process

    def __enter__(self):
        try:
            self._start_all()
        except BaseException:
            self.close()
            raise
        return self

    def __exit__(self, *exc):
        self.close()
        return False

    def _start_all(self):
        self.env = dict(os.environ)
        for name in ("DBUS_SESSION_BUS_ADDRESS", "AT_SPI_BUS_ADDRESS", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"):
            self.env.pop(name, None)
        runtime = os.path.join(self.tmp, "run")
        os.mkdir(runtime, 0o700)
        self.env.update(
            XDG_CONFIG_HOME=os.path.join(self.tmp, "config"),
            XDG_RUNTIME_DIR=runtime,
            XDG_CACHE_HOME=os.path.join(self.tmp, "cache"),
            HOME=self.tmp,
            LANG="C.UTF-8",
            LC_ALL="C.UTF-8",
        )

        # Xvfb writes the display it took to the given descriptor
        reader, writer = os.pipe()
        self._start(["Xvfb", "-displayfd", str(writer), "-screen", "0", "1280x900x24", "-nolisten", "tcp"],
                    pass_fds=(writer,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writer)
        display = self._read_line(reader, 20, "Xvfb's display number")
        os.close(reader)
        self.env["DISPLAY"] = ":" + display

        bus = self._start(["dbus-daemon", "--session", "--nofork", "--print-address=1"],
                          stdout=subprocess.PIPE)
        self.env["DBUS_SESSION_BUS_ADDRESS"] = self._read_line(bus.stdout.fileno(), 20, "the session bus address")

        self._start([LAUNCHER, "--launch-immediately"])
        self._wait_for_name("org.a11y.Bus")
        self._start([REGISTRY], stdout=subprocess.DEVNULL)

        os.environ.update({k: self.env[k] for k in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR")})
        import gi
        gi.require_version("Atspi", "2.0")
        from gi.repository import GLib
        import pyatspi
        self.pyatspi = pyatspi
        self.glib = GLib
        pyatspi.Registry.registerEventListener(
            self._on_event, "object:state-changed:focused", "object:state-changed:showing",
            "object:property-change:accessible-name")

        sim = self._start([os.path.join(self.bin_dir, "korvane-sim"), "--listen", "127.0.0.1:0"] + self.sim_args,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        line = self._read_line(sim.stdout.fileno(), 20, "the simulator's address")
        if not line.startswith("listening on "):
            raise Failure("korvane-sim said " + line)
        self.address = line[len("listening on "):]
        self.host, self.port = self.address.rsplit(":", 1)

    def start_monitor(self, settings=None, args=()):
        config = os.path.join(self.env["XDG_CONFIG_HOME"], "Korvane")
        os.makedirs(config, exist_ok=True)
        lines = ["[main]", "language=" + self.language]
        for key, value in (settings or {}).items():
            lines.append("%s=%s" % (key, value))
        with open(os.path.join(config, "Monitor.conf"), "w") as conf:
            conf.write("\n".join(lines) + "\n")
        env = dict(self.env, QT_QPA_PLATFORM="xcb", QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_ACCESSIBILITY="1")
        self.monitor = subprocess.Popen([os.path.join(self.bin_dir, "korvane-monitor")] + list(args), env=env,
                                        start_new_session=True, stdout=subprocess.DEVNULL)
        self.processes.append(self.monitor)
        self.app = self.wait(self._find_app, 30, "the monitor on the accessibility bus")
        self.frame = self.wait(lambda: self.find(self.app, "frame", "Korvane Network Monitor", depth=1), 30,
                               "the main window")
        self.refocus()
        return self.frame

    def refocus(self):
        """There is no window manager: the main window gets the keyboard back as a
        window manager would give it on mapping and when a dialog closes."""
        subprocess.run(["xdotool", "search", "--sync", "--pid", str(self.monitor.pid), "--name",
                        "^Korvane Network Monitor$", "windowfocus", "--sync"], env=self.env, check=True, timeout=30)
        self.pump(0.5)

    def close(self):
        for process in reversed(self.processes):
            if process.poll() is None:
                try:
                    os.killpg(process.pid, signal.SIGTERM)
                except ProcessLookupError:
                    pass
        for process in reversed(self.processes):
            try:
                process.wait(5)
            except subprocess.TimeoutExpired:
                try:
                    os.killpg(process.pid, signal.SIGKILL)
                except ProcessLookupError:
                    pass
                process.wait(5)
        self.processes = []
        shutil.rmtree(self.tmp, ignore_errors=True)

    @staticmethod
    def _read_line(fd, seconds, what):
        data = b""
        deadline = time.monotonic() + seconds
        while not data.endswith(b"\n"):
            left = deadline - time.monotonic()
            if left <= 0 or not select.select([fd], [], [], left)[0]:
                raise Failure("no " + what + " within %d s" % seconds)
            chunk = os.read(fd, 1)
            if not chunk:
                raise Failure("no " + what + ": the program ended")
            data += chunk
        return data.decode().strip()

    def _wait_for_name(self, name):
        def owned():
            reply = subprocess.run(
                ["dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
                 "org.freedesktop.DBus.NameHasOwner", "string:" + name],
                env=self.env, capture_output=True, text=True)
            return "boolean true" in reply.stdout
        self.wait(owned, 20, name + " on the session bus", pump=False)

    # -- the accessibility bus ------------------------------------------------

    def _on_event(self, event):
        try:
            self.events.append((event.type, event.detail1, event.source))
        except Exception:  # an object that went away meanwhile
            pass

    def pump(self, seconds=0.0):
        context = self.glib.MainContext.default()
        deadline = time.monotonic() + seconds
        while True:
            while context.pending():
                context.iteration(False)
            if time.monotonic() >= deadline:
                return
            time.sleep(0.02)

    def wait(self, condition, seconds, what, pump=True):
        deadline = time.monotonic() + seconds
        while True:
            if pump and self.pyatspi:
                self.pump()
            try:
                value = condition()
            except Exception:  # objects come and go while the window builds
                value = None
            if value:
                return value
            if time.monotonic() >= deadline:
                raise Failure("waited %d s in vain for %s" % (seconds, what))
            time.sleep(0.05)

    def _find_app(self):
        desktop = self.pyatspi.Registry.getDesktop(0)
        for i in range(desktop.childCount):
            app = desktop.getChildAtIndex(i)
            if app is not None and app.get_process_id() == self.monitor.pid:
                return app
        return None

    def find(self, root, role, name=None, depth=40):
        """The first object below root (breadth first) with this role and name."""
        level = [root]
        for _ in range(depth):
            below = []
            for acc in level:
                for i in range(acc.childCount):
                    child = acc.getChildAtIndex(i)
                    if child is None:
                        continue
                    if role_name(child) == role and (name is None or child.name == name):
                        return child
                    if role_name(child) not in ("tree", "table", "list", "tree table"):
                        below.append(child)
            level = below
            if not level:
                break
        return None

    def outline(self, root, skip_rows=True, indent=0):
        """Role and name of every object below root, one line each, as the tree goes.
        Lists and trees show their header cells and first row only."""
        lines = []
        for i in range(root.childCount):
            child = root.getChildAtIndex(i)
            if child is None:
                continue
            lines.append("%s%s %s" % ("  " * indent, role_name(child), json.dumps(child.name, ensure_ascii=False)))
            if role_name(child) in ("tree", "table", "list", "tree table"):
                shown = 0
                for j in range(child.childCount):
                    cell = child.getChildAtIndex(j)
                    lines.append("%s%s %s" % ("  " * (indent + 1), role_name(cell),
                                              json.dumps(cell.name, ensure_ascii=False)))
                    shown += 1
                    if skip_rows and shown >= 20:
                        lines.append("%s... %d children in all" % ("  " * (indent + 1), child.childCount))
                        break
            else:
                lines.extend(self.outline(child, skip_rows, indent + 1))
        return lines

    def focused_events(self):
        return [source for kind, detail, source in self.events
                if kind == "object:state-changed:focused" and detail == 1]

    def wait_focus(self, role, name=None, seconds=10, start=0, what=None):
        """The first object focused after event number start with this role (and name,
        or a name the function name accepts)."""
        def match():
            for source in self.focused_events()[start:]:
                try:
                    if role_name(source) != role:
                        continue
                    if name is None or (callable(name) and name(source.name)) or source.name == name:
                        return source
                except Exception:
                    continue
            return None
        return self.wait(match, seconds, what or ("focus on %s %r" % (role, name)))

    def focus_mark(self):
        self.pump()
        return len(self.focused_events())

    def showing_mark(self):
        self.pump()
        return len(self.events)

    def wait_showing(self, role, start, seconds=10):
        def match():
            for kind, detail, source in self.events[start:]:
                try:
                    if kind == "object:state-changed:showing" and detail == 1 and role_name(source) == role:
                        return source
                except Exception:
                    continue
            return None
        return self.wait(match, seconds, "a %s showing" % role)

    # -- keys ---------------------------------------------------------------

    def key(self, *keys):
        for key in keys:
            subprocess.run(["xdotool", "key", "--clearmodifiers", key], env=self.env, check=True)
            self.pump(0.15)

    def type(self, text):
        subprocess.run(["xdotool", "type", "--delay", "30", text], env=self.env, check=True)
        self.pump(0.2)

    # -- the farm -------------------------------------------------------------

    def ctl(self, *args):
        result = subprocess.run([os.path.join(self.bin_dir, "korvane-ctl"), "--host", self.address] + list(args),
                                capture_output=True, text=True, timeout=30)
        if result.returncode != 0:
            raise Failure("korvane-ctl %s: %s" % (" ".join(args), result.stderr))
        return result.stdout

    def ctl_json(self, *args):
        return json.loads(self.ctl("--json", *args))


def check(condition, message):
    if not condition:
        raise Failure(message)


def run(test):
    """Runs test(bin_dir, language) with the command line's arguments; exit code 0 or 1."""
    bin_dir, language = sys.argv[1], (sys.argv[2] if len(sys.argv) > 2 else "en")
    started = time.monotonic()
    try:
        test(bin_dir, language)
    except (Failure, subprocess.TimeoutExpired) as failure:
        log("FAILED (%.1f s): %s" % (time.monotonic() - started, failure))
        return 1
    log("passed in %.1f s" % (time.monotonic() - started))
    return 0


def tr(language, context, source):
    return translation(language, context, source)


def row_sentence(language, pairs):
    """The name a current row reads: "Header: value, ..." without empty cells."""
    form = tr(language, "CurrentRowAnnouncer", "%1: %2")
    return ", ".join(form.replace("%1", tr(language, "Monitor", header)).replace("%2", value)
                     for header, value in pairs if value)


def project_name(path):
    return path[path.rfind("/") + 1:]
