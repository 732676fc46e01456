#!/usr/bin/env python3
"""Reads CMake's own dependency graph of the programs and fails when one of
them, or one of the libraries they share, reaches a library it must not: the
command-line programs and the build's catalogue writer no widgets, no GUI and
no crash handler, the simulator no protocol client.

    check_dependencies.py CMAKE SOURCE_DIR WORK_DIR

Configures SOURCE_DIR afresh in WORK_DIR (without the tests) with
cmake --graphviz and walks the graph from each program."""

import re
import subprocess
import sys
from pathlib import Path

# program or library: (libraries it must reach, libraries it must not reach)
RULES = {
    "korvane-ctl": ({"korvane_client", "korvane_texts", "Qt6::Core"},
                    {"Qt6::Widgets", "Qt6::Gui", "korvane_monitor", "korvane_breakpad", "korvane_crash"}),
    "korvane-exporter": ({"korvane_client", "korvane_reading", "korvane_http"},
                         {"Qt6::Widgets", "Qt6::Gui", "Qt6::Core", "korvane_breakpad", "korvane_crash"}),
    "korvane-web": ({"korvane_web", "korvane_reading", "korvane_http", "korvane_client"},
                    {"Qt6::Widgets", "Qt6::Gui", "Qt6::Core", "korvane_breakpad", "korvane_crash",
                     "korvane_exporter"}),
    # Run at build time for the browser's catalogues: Qt Core and the shared texts only.
    "korvane-webtexts": ({"korvane_texts", "Qt6::Core"},
                         {"Qt6::Widgets", "Qt6::Gui", "Qt6::Network", "korvane_monitor", "korvane_breakpad",
                          "korvane_crash", "korvane_web"}),
    "korvane-sim": ({"korvane_options"},
                    {"korvane_client", "Qt6::Core", "korvane_breakpad"}),
    # The libraries the programs that serve HTTP share: plain C++, and the
    # web pieces know nothing of the farm.
    "korvane_http": ({"OpenSSL::SSL"},
                     {"Qt6::Widgets", "Qt6::Gui", "Qt6::Core", "korvane_breakpad", "korvane_crash",
                      "korvane_client"}),
    "korvane_reading": ({"korvane_client", "korvane_options"},
                        {"Qt6::Widgets", "Qt6::Gui", "Qt6::Core", "korvane_breakpad", "korvane_crash"}),
    # The monitor shows that the walk finds what is there.
    "korvane-monitor": ({"Qt6::Widgets", "korvane_client", "korvane_crash", "korvane_breakpad"}, set()),
}


def read_graph(dot):
    names = {}
    edges = {}
    for line in dot.read_text().splitlines():
        node = re.match(r'\s*"(node\d+)" \[ label = "([^"]+)"', line)
        if node:
            # CMake 3.27 and later add the alias on a second line of the
            # label: "Qt6::Core\n(Qt::Core)".
            names[node.group(1)] = node.group(2).split("\\n")[0]
            continue
        edge = re.match(r'\s*"(node\d+)" -> "(node\d+)"', line)
        if edge:
            edges.setdefault(edge.group(1), set()).add(edge.group(2))
    graph = {}
    for source, targets in edges.items():
        graph.setdefault(names[source], set()).update(names[t] for t in targets)
    return set(names.values()), graph


def reach(graph, start):
    seen = set()
    todo = [start]
    while todo:
        name = todo.pop()
        for next_name in graph.get(name, ()):
            if next_name not in seen:
                seen.add(next_name)
                todo.append(next_name)
    return seen


def main():
    cmake, source, work = sys.argv[1], Path(sys.argv[2]), Path(sys.argv[3])
    work.mkdir(parents=True, exist_ok=True)
    dot = work / "dependencies.dot"
    subprocess.run([cmake, "-S", str(source), "-B", str(work), "-DKORVANE_BUILD_TESTS=OFF",
                    f"--graphviz={dot}"], check=True, stdout=subprocess.DEVNULL)
    targets, graph = read_graph(dot)
    failures = []
    for program, (needed, forbidden) in RULES.items():
        if program not in targets:
            failures.append(f"{program}: not in the graph")
            continue
        reached = reach(graph, program)
        for name in sorted(needed - reached):
            failures.append(f"{program} does not reach {name}")
        for name in sorted(forbidden & reached):
            failures.append(f"{program} reaches {name}")
    for failure in failures:
        print(failure)
    if failures:
        return 1
    print(f"{len(RULES)} programs and libraries, {len(targets)} targets: every arrow points the allowed way")
    return 0


if __name__ == "__main__":
    sys.exit(main())
