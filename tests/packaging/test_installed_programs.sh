#!/usr/bin/env bash
# The unpacked package's programs, started as a user starts them: through
# usr/bin, the desktop entry's Exec line, in German, and after a crash.
#   test_installed_programs.sh ROOT PROBE_PLUGIN_DIR
set -euo pipefail
source "$(dirname "$0")/testlib.sh"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# A root of its own: the package, and for its dependency qt6-translations-l10n
# the system's Qt catalogues, which lang/qt_<code>.qm links to.
root=$work/root
cp -a "$1" "$root"
mkdir -p "$root/usr/share/qt6"
ln -s /usr/share/qt6/translations "$root/usr/share/qt6/translations"
export HOME=$work/home XDG_CONFIG_HOME=$work/config
mkdir -p "$HOME" "$XDG_CONFIG_HOME/Korvane"
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM

expect_equal "korvane-monitor --version" "Korvane Monitor 0.1.0 build 2834" \
    "$("$root/usr/bin/korvane-monitor" --version 2>&1)"
expect_equal "korvane-ctl --version" "korvane-ctl 0.1.0" "$("$root/usr/bin/korvane-ctl" --version 2>&1)"
expect_equal "korvane-exporter --version" "korvane-exporter 0.1.0" \
    "$("$root/usr/bin/korvane-exporter" --version 2>&1)"
expect_equal "the exporter's service starts the packaged program with the defaults file's arguments" \
    "EnvironmentFile=-/etc/default/korvane-exporter
ExecStart=/usr/bin/korvane-exporter \$ARGS" \
    "$(grep -E '^(EnvironmentFile|ExecStart)=' "$root/usr/lib/systemd/system/korvane-exporter.service")"
expect_equal "korvane-web --version" "korvane-web 0.1.0" "$("$root/usr/bin/korvane-web" --version 2>&1)"
expect_equal "the web monitor's service starts the packaged program with the defaults file's arguments" \
    "EnvironmentFile=-/etc/default/korvane-web
ExecStart=/usr/bin/korvane-web --audit.file /var/lib/korvane-web/audit.log \$ARGS" \
    "$(grep -E '^(EnvironmentFile|ExecStart)=' "$root/usr/lib/systemd/system/korvane-web.service")"

# The probe prints the window's texts once it shows (see tests/probe/korvaneprobeplugin.h).
export QT_QPA_PLATFORM=offscreen QT_PLUGIN_PATH=$2 QT_QPA_GENERIC_PLUGINS=korvaneprobe
program_dir=$root/usr/lib/korvane-monitor

printf '[main]\nlanguage=de\n' >"$XDG_CONFIG_HOME/Korvane/Monitor.conf"
expect_equal "started through usr/bin in German" "directory: $program_dir
window: Korvane Network Monitor
menu: &Datei
menu: &Hilfe
qt: Abbrechen" "$(KORVANE_PROBE=quit timeout 60 "$root/usr/bin/korvane-monitor" 2>>"$work/stderr")"

rm "$XDG_CONFIG_HOME/Korvane/Monitor.conf"
exec_line=$(sed -n 's/^Exec=//p' "$root/usr/share/applications/com.korvane.Monitor.desktop")
expect_equal "started by the desktop entry's Exec line" "directory: $program_dir
window: Korvane Network Monitor
menu: &File
menu: &Help
qt: Cancel" "$(PATH=$root/usr/bin:$PATH KORVANE_PROBE=quit timeout 60 $exec_line 2>>"$work/stderr")"

# A crash starts the reporter beside the real program, with the dump.
reporter=$program_dir/crashreporter
reporter_pid() {
    local exe
    for exe in /proc/[0-9]*/exe; do
        if [[ $(readlink "$exe" 2>/dev/null) == "$reporter" ]]; then
            pid=${exe#/proc/}
            pid=${pid%/exe}
            return 0
        fi
    done
    return 1
}
KORVANE_PROBE=crash "$root/usr/bin/korvane-monitor" >"$work/monitor.out" 2>>"$work/stderr" &
monitor=$!
wait $monitor && status=0 || status=$?
expect_equal "the crash ends the monitor with SIGSEGV" "$((128 + 11))" "$status"
pid=
if wait_for 30 reporter_pid; then
    mapfile -d '' -t argv <"/proc/$pid/cmdline"
    pending=$HOME/.korvane/monitor/Crash\ Reports/pending
    wait_for 30 compgen -G "$pending/*.extra" >/dev/null || true
    kill "$pid"
    dump=$(basename "${argv[1]:-}")
    expect_equal "the reporter's arguments" "$reporter /tmp//$dump" "${argv[*]}"
    expect_equal "the report moved to pending/" "$dump
${dump%.dmp}.extra" "$(cd "$pending" && ls)"
    rm -f "/tmp/$dump" "/tmp/${dump%.dmp}.extra"
else
    expect_equal "a reporter running from $reporter" "running" "none"
    cat "$work/monitor.out" "$work/stderr" >&2
fi
finish
