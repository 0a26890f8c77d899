"""Proves that the layer check can fail: each case breaks one rule in a tree that is otherwise sound."""

import tempfile
from pathlib import Path

import layers

SOUND = {
    "src/CMakeLists.txt": "add_executable(tavrelon program/main.cpp)\n",
    "src/program/main.cpp": '#include "input/machine.h"\n#include "desktop/x11/tap.h"\n#ifdef __linux__\n#endif\n',
    "src/text/CMakeLists.txt": "tavrelon_library(text SOURCES json.cpp)\n",
    "src/text/json.cpp": '#include "text/json.h"\n',
    "src/text/json.h": "#pragma once\n#include <QString>\n",
    "src/keys/keys.h": '#include "text/json.h"\n',
    "src/platform/tap.h": '#include "keys/keys.h"\n',
    "src/input/CMakeLists.txt": "tavrelon_library(input SOURCES machine.cpp  # the heart\n  LINKS tavrelon_platform)\n",
    "src/input/machine.cpp": '#include "input/machine.h"\n',
    "src/input/machine.h": '#include "platform/tap.h"\n#include "text/json.h"\n',
    "src/app/state.h": '#include "input/machine.h"\n',
    "src/desktop/x11/CMakeLists.txt": "tavrelon_library(desktop/x11 SOURCES tap.cpp LINKS tavrelon_platform)\n",
    "src/desktop/x11/tap.cpp": '#include "desktop/x11/tap.h"\n#include <xcb/xcb.h>\n#ifdef __linux__\n#endif\n',
    "src/desktop/x11/tap.h": '#include "platform/tap.h"\n#include "text/json.h"\n',
    "tests/input/CMakeLists.txt": "tavrelon_test(t SOURCES machine_test.cpp)\n",
    "tests/input/machine_test.cpp": '#include "desktop/x11/tap.h"\n#include "input/machine.h"\n',
}

# What is broken, the file that breaks it, its text, and the place that the check must name.
BROKEN = [
    ("a higher floor", "src/input/machine.h", '\n#include "app/state.h"\n', "src/input/machine.h:2:"),
    ("a neighbour", "src/text/json.h", '#include "keys/keys.h"\n', "src/text/json.h:1:"),
    ("an adapter named in the logic", "src/app/state.h", '#include "desktop/x11/tap.h"\n', "src/app/state.h:1:"),
    ("an adapter that looks into the logic", "src/desktop/x11/tap.h", '#  include "input/machine.h"\n',
     "src/desktop/x11/tap.h:1:"),
    ("an adapter that looks into another", "src/desktop/atspi/bus.h", '#include "desktop/x11/tap.h"\n',
     "src/desktop/atspi/bus.h:1:"),
    ("a desktop header in the logic", "src/input/machine.h", "#include <xcb/xcb.h>\n", "src/input/machine.h:1:"),
    ("a condition on the platform", "src/input/machine.h", "#if defined(Q_OS_LINUX)\n#endif\n", "src/input/machine.h:1:"),
    ("an include of test code", "src/input/machine.h", '#include "support/fake_tap.h"\n', "src/input/machine.h:1:"),
    ("a folder on no floor", "src/helpers/helper.h", "#pragma once\n", "src/helpers/helper.h:1:"),
    ("a link against the rules", "src/input/CMakeLists.txt",
     "tavrelon_library(input SOURCES machine.cpp\n  LINKS tavrelon_desktop_x11)\n", "src/input/CMakeLists.txt:2:"),
    ("a source that nothing builds", "src/input/flow.cpp", "", "src/input/flow.cpp:1:"),
    ("a source named only in a comment", "src/input/CMakeLists.txt",
     "tavrelon_library(input SOURCES flow.cpp) # machine.cpp\n", "src/input/machine.cpp:1:"),
    ("a test that nothing builds", "tests/input/other_test.cpp", "", "tests/input/other_test.cpp:1:"),
    ("a list made by a pattern", "tests/input/CMakeLists.txt", "file(GLOB all *.cpp)\n# machine_test.cpp\n",
     "tests/input/CMakeLists.txt:1:"),
]


def faults_of(files):
    with tempfile.TemporaryDirectory(prefix="tavrelon-layers.") as folder:
        for name, text in files.items():
            path = Path(folder) / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        return layers.check(folder).faults


def run():
    failures = 0
    unexpected = faults_of(SOUND)
    if unexpected:
        print("check-layers: self-test: a sound tree is refused:", *unexpected, sep="\n  ")
        failures += 1
    for rule, path, text, place in BROKEN:
        faults = faults_of({**SOUND, path: text})
        if not any(fault.startswith(place) for fault in faults):
            print(f"check-layers: self-test: {rule}: nothing at {place} Found:", *faults, sep="\n  ")
            failures += 1
    print(f"check-layers: self-test: {len(BROKEN) + 1 - failures} of {len(BROKEN) + 1} cases")
    return 1 if failures else 0
