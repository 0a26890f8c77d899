"""Runs the commands that documents show, as their reader would type them, in a home that is nobody's.

A model service and a Tavrelon run beside them. A line that says that something is missing here (the check does, on a
desktop without a microphone) may end with a count; all others are to end with 0."""

import os
import shutil
import subprocess
import tempfile
from pathlib import Path

from document_rules import Tree, fault
from programs import StandIn, Tavrelon

SECONDS = 60
TYPED = "a key that is typed\n"


def is_data(block):
    return block.text.lstrip().startswith(("{", "[\n"))


def shell(command, environment, root):
    try:
        return subprocess.run(["bash", "-o", "pipefail", "-c", command], input=TYPED, capture_output=True, text=True, timeout=SECONDS,
                              env={**os.environ, **environment}, cwd=root)
    except subprocess.TimeoutExpired:
        return subprocess.CompletedProcess(command, 124, "", f"still running after {SECONDS} s")


def went_well(line, done):
    if "--check" in line:
        return done.stdout.count("MISSING ") == done.returncode or '"missing"' in done.stdout
    return done.returncode == 0


def told_commands(document):
    """(line, command): the blocks that are to be run, and what is said of `tavrelon` amid the text."""
    for block in document.blocks:
        if not block.reason and not is_data(block):
            for line in block.text.split("\n"):
                yield block.line, line
    for line, code in document.codes:
        if code.startswith("tavrelon --") and not code.endswith(("--trigger", "NAME")):  # which are no whole commands
            yield line, code


def documents_as_settings(tree, home, program, output, port):
    """Settings and scenes that a document shows are taken by the program without a word against them."""
    for document in tree.documents:
        for block in document.blocks:
            if not is_data(block):
                continue
            folder = Path(home) / f"{Path(document.name).stem}-{block.line}"
            is_scenes = block.text.lstrip().startswith("[")
            with_text = folder / ("data/Tavrelon/scenes.json" if is_scenes else "config/Tavrelon/tavrelon.settings")
            with_text.parent.mkdir(parents=True, mode=0o700)
            with_text.write_text(block.text, encoding="utf-8")
            with_text.chmod(0o600)
            environment = {"XDG_CONFIG_HOME": str(folder / "config"), "XDG_DATA_HOME": str(folder / "data")}
            if is_scenes:
                with Tavrelon(program, output / f"{folder.name}.log", folder, port) as tavrelon:
                    tavrelon.wait_until_live()
                    said = tavrelon.written()
                is_right = "Failed to load scenes" not in said
            else:
                said = shell("tavrelon --check", environment, tree.root).stdout
                is_right = "ok      settings        in order" in said
            if not is_right:
                yield fault(document, block.line, f"the program does not take it:\n{said}")


def run_all(root, build):
    tree, build = Tree(root), Path(build).resolve()
    program = build / "src/tavrelon"
    output = build / "documents"
    shutil.rmtree(output, ignore_errors=True)
    output.mkdir(parents=True)
    faults, count, done_before = [], 0, set()
    with tempfile.TemporaryDirectory(prefix="tavrelon-documents.", ignore_cleanup_errors=True) as home, \
            StandIn(build / "tests/support/tavrelon-stand-in-service", output / "service.log") as service, \
            Tavrelon(program, output / "tavrelon.log", Path(home) / "running", service.port) as tavrelon:
        tavrelon.wait_until_live()
        service.answer_with({"content": "ready"})
        own = {**tavrelon.environment, "HOME": home, "PATH": f"{program.parent}:{os.environ['PATH']}"}
        os.environ["PATH"] = own["PATH"]
        # The reader's own home is one that a Tavrelon has used, so that what is shown or removed there exists.
        shutil.copytree(tavrelon.home / "config", Path(home) / ".config", dirs_exist_ok=True)
        (Path(home) / ".local/share/Tavrelon").mkdir(parents=True)
        for document in tree.documents:
            for line, command in told_commands(document):
                if command in done_before:
                    continue
                done_before.add(command)
                done = shell(command, own, tree.root)
                count += 1
                print(f"{document.name}:{line}: {command}: {done.returncode}", flush=True)
                if not went_well(command, done):
                    faults.append(fault(document, line, f"'{command}' ended with {done.returncode}: {done.stderr.strip()[-300:]}"))
        faults += documents_as_settings(tree, home, program, output, service.port)
    if not count:
        faults.append("no document has a command that is run")
    return faults
