"""What the documents say of the tree, held against the tree: each fault is a line "document:line: what is wrong"."""

import json
import re
from pathlib import Path

import written

DOCUMENTS = ("README.md", "SECURITY.md", "CONTRIBUTING.md", "CHANGELOG.md", "docs/*.md")
LONGEST_README = 120
SOURCES = {".cpp", ".h", ".qml", ".py", ".sh", ".cmake", ".txt", ".in", ".json", ".js", ""}
WHERE_PATHS_BEGIN = ("", "src", "tests")
PLANTED = "documents_self_test.py"  # whose faults are none
PRODUCTS = ("build/", ".ci/")  # what is made there is not in the tree
PATH = re.compile(r"[\w.][\w.-]*(?:/[\w.-]+)+/?")
CHORD = re.compile(r"\b(?:(?:Shift|Alt|Super|Control)\+)+(?:[A-Z]\b|Shift\b|Alt\b|Super\b)")
# Keys that documents name and that are other programs', pressed by Tavrelon or left alone by it.
FOREIGN_CHORDS = {"Control+C", "Control+D", "Control+V", "Control+Shift+V"}
WORDS_OF_FLAGS = {"shiftFlag": "Shift", "optionFlag": "Alt", "commandFlag": "Super", "controlFlag": "Control"}
ORDER = ("Shift", "Control", "Alt", "Super")


class Tree:
    """The sources that documents speak of, read once."""

    def __init__(self, root):
        self.root = Path(root)
        self.texts = {}
        for folder in ("src", "tests", "tools", "bench", "scripts", "cmake", "packaging"):
            for path in sorted((self.root / folder).rglob("*")):
                if path.is_file() and path.suffix in SOURCES and "__pycache__" not in path.parts and path.name != PLANTED:
                    self.texts[str(path.relative_to(self.root))] = path.read_text(encoding="utf-8", errors="replace")
        self.sources = "\n".join(self.texts.values())
        self.identifiers = set(re.findall(r"\w+", self.sources))
        self.documents = [written.read(str(path.relative_to(self.root)), path.read_text(encoding="utf-8"))
                          for pattern in DOCUMENTS for path in sorted(self.root.glob(pattern))]
        # Messages as the program has them: literals that stand side by side are one.
        program = "\n".join(text for name, text in self.texts.items() if name.startswith("src/"))
        literals = re.sub(r'"\s*\n?\s*"', "", program).replace('\\"', '"')
        self.messages = re.sub(r"\s+", " ", literals)
        self.tests = {f"{suite}.{name}" for suite, name in
                      re.findall(r"TEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\)", self.sources)}
        self.tests |= {f"*.{name}" for name in re.findall(r"^def (test_\w+)", self.sources, re.MULTILINE)}
        # Suites that are instantiated, and fixtures whose tests a macro writes, have names of their own.
        self.tests |= {f"{name}.*" for name in re.findall(r"INSTANTIATE_TEST_SUITE_P\(\s*(\w+)", self.sources)}
        self.suites = {test.split(".")[0] for test in self.tests}
        # What ctest runs: named after what a CMake list declares.
        lists = "\n".join(text for name, text in self.texts.items() if name.endswith("CMakeLists.txt"))
        self.programs = set(re.findall(r"\b(?:tavrelon_\w+|NAME)\(?\s*(\w+)", lists)) | \
            {Path(name).stem for name in self.texts if name.startswith("tests/")} | \
            {Path(name).name for name in self.texts if name.startswith("tests/")}

    def settings(self):
        text = self.texts.get("src/persistence/settings_fields.h", "")
        return set(re.findall(r'\{"(\w+)", \d+, &', text))

    def chords(self):
        """The hotkeys of a program that nobody has set, as documents write them."""
        names = dict(re.findall(r'\{(\d+), u"([A-Z])"\}', self.texts.get("src/keys/key_names.cpp", "")))
        text = self.texts.get("src/keys/hotkey_config.h", "")
        named_flags = dict(re.findall(r"Modifiers (\w+) = ([^;]+);", text))
        found = set()
        for setting, key, flags in re.findall(r"HotkeyConfig (\w+)\{(\w+), ([^}]+)\}", text):
            flags = named_flags.get(flags.strip(), flags)
            held = [word for word in ORDER if any(WORDS_OF_FLAGS[flag] == word for flag in re.findall(r"\w+Flag", flags))]
            if key.startswith("key") and len(key) == 4:
                last = [key[3:]]
            else:  # 0 is no key where modifiers may stand alone
                last = [names[key]] if key in names and not setting.startswith("voice") else []
            if held:
                found.add(frozenset(held + last))
        return found


def fault(document, line, text):
    return f"{document.name}:{line}: {text}"


def links(tree):
    anchors = {str((tree.root / document.name).resolve()): document.headings for document in tree.documents}
    for document in tree.documents:
        folder = (tree.root / document.name).parent
        for line, target in document.links:
            if re.match(r"https?://\S+\.\S+", target):
                continue
            path, _, place = target.partition("#")
            whole = (folder / path).resolve() if path else (tree.root / document.name).resolve()
            if not whole.exists():
                yield fault(document, line, f"the link leads nowhere: {target}")
            elif place and place not in anchors.get(str(whole), ()):
                yield fault(document, line, f"no such heading: {target}")


def paths(tree):
    for document in tree.documents:
        for line, code in document.codes:
            for path in code.split():
                if not PATH.fullmatch(path) or path.startswith(PRODUCTS) or path.split("/")[0] in ("127.0.0.1", "image"):
                    continue
                begins = (tree.root / path.split("/")[0]).exists() or path.split("/")[0] in ("ui", "desktop")
                if begins and not any((tree.root / start / path).exists() for start in WHERE_PATHS_BEGIN):
                    yield fault(document, line, f"no such file: {path}")


def words_of_command(text):
    """The commands in a line of a shell, without what stands before and behind them."""
    text = re.sub(r"\s#.*$", "", text)
    for part in re.split(r"&&|\|\||;|\|", text):
        words = part.split()
        while words and re.match(r"^(sudo|exec|\(umask|\w+=.*)$", words[0]):
            words = words[1:]
        if words:
            yield words


def told_by(tree, command):
    """What a command says of its options: a script's head, or the program's help."""
    if command == "tavrelon" or command.endswith("/tavrelon"):
        return tree.texts.get("src/desktop/linux/process/command_line.cpp")
    if command == "install-voice" or command.endswith("/install-voice"):
        return tree.texts.get("scripts/install-voice")
    return tree.texts.get(command)


def options(tree):
    """Each option that a document gives to one of our commands is one that the command tells."""
    for document in tree.documents:
        told = [(line, code) for line, code in document.codes]
        told += [(block.line, line) for block in document.blocks for line in block.text.split("\n")]
        for line, text in told:
            for words in words_of_command(text):
                if words[0].startswith("scripts/") and words[0] not in tree.texts and not (tree.root / words[0]).exists():
                    yield fault(document, line, f"no such script: {words[0]}")
                if words[0] == "scripts/on-desktop":
                    continue  # what follows are another command's
                said = told_by(tree, words[0])
                if said is None:
                    continue
                for word in words[1:]:
                    if word.startswith("-") and not re.search(re.escape(word.split("=")[0]) + r"(?![\w-])", said) \
                            and words[0] != "scripts/test":  # which hands them to ctest
                        yield fault(document, line, f"{words[0]} has no option {word}")
                if words[0] == "tavrelon" and words[1:2] == ["--trigger"] and words[2:] and words[2] != "NAME" \
                        and words[2] not in re.findall(r"[a-z]+", said[said.find("--trigger NAME"):]):
                    yield fault(document, line, f"nothing is called {words[2]} to trigger")


def keys_in(value):
    if isinstance(value, dict):
        for key, inner in value.items():
            yield key
            yield from keys_in(inner)
    for inner in value if isinstance(value, list) else ():
        yield from keys_in(inner)


def settings(tree):
    """Keys of settings and scenes that a document names are keys that the program reads."""
    known = tree.settings()
    scenes = set(re.findall(r'"(\w+)"', "".join(text for name, text in tree.texts.items() if name.startswith("src/scenes/"))))
    for document in tree.documents:
        for line, code in document.codes:
            for key in re.findall(r'"(\w+)":', code):
                if key not in known | scenes:
                    yield fault(document, line, f"no setting is called {key}")
            if re.fullmatch(r"[a-z]+[A-Z]\w*", code) and code not in tree.identifiers | {"lowerCamelCase"}:
                yield fault(document, line, f"nothing is called {code}")
        for block in document.blocks:
            if not block.text.lstrip().startswith(("{", "[\n")):
                continue
            try:
                value = json.loads(block.text)
            except ValueError as error:
                yield fault(document, block.line, f"no JSON: {error}")
                continue
            for key in keys_in(value):
                if key not in (known if isinstance(value, dict) else scenes):
                    yield fault(document, block.line, f"no setting is called {key}")


def hotkeys(tree):
    known = tree.chords()
    for document in tree.documents:
        if document.name in ("CHANGELOG.md",):  # what was
            continue
        for line, text in document.words:
            for chord in CHORD.findall(text):
                if chord not in FOREIGN_CHORDS and frozenset(chord.split("+")) not in known:
                    yield fault(document, line, f"no hotkey is {chord}")


def messages(tree):
    """What a document quotes of the log or an error is what the program can say."""
    for document in tree.documents:
        for line, cells, head in document.rows:
            if head and cells is not head and head[0] == "it misses":
                yield from (fault(document, line, f"the check looks at no '{code}'") for code in written.CODE.findall(cells[0])
                            if f'report.add(QStringLiteral("{code}")' not in tree.messages)
            if not head or cells is head or head[0] not in ("the log has", "it says"):
                continue
            for code in written.CODE.findall(cells[0].replace("\\`", "`")):
                for piece in re.split(r"…|\(\d+\)|^\[\w+\] |/", code):
                    piece = piece.strip(" .:")
                    if len(piece) >= 8 and piece not in tree.messages:
                        yield fault(document, line, f"the program never says '{piece}'")


def named_tests(cell):
    """The names of tests in a table's cell, and whether each is cut short by an ellipsis."""
    cell = re.sub(r"\([^)]*\)", " ", cell)
    for word in re.findall(r"[\w.*]+…?", cell):
        word = word.rstrip(".")
        if word.startswith("test_") or re.match(r"[A-Z]\w*\.[A-Z]|[A-Z]\w*[a-z][A-Z]", word) or word.endswith(("_test", ".py", "…")) \
                or word in ("hardening", "fuzz_seeds_test"):
            yield word.rstrip("…"), word.endswith("…")


def is_test(tree, name, is_cut):
    if name in tree.tests or name in tree.programs or name in tree.suites or f"*.{name}" in tree.tests:
        return True
    last = [test.split(".")[1] for test in tree.tests]
    return any(test.startswith(name) if is_cut else test == name for test in last)


def tests(tree):
    """Each attack names a test, and each test that a table names is there."""
    for document in tree.documents:
        for line, cells, head in document.rows:
            if not head or cells is head or head[-1] not in ("test", "what holds it", "caught now by"):
                continue
            cell = cells[-1]
            found = list(named_tests(cell))
            if not found and not cell.startswith(("the same", "none")) and head[-1] == "test":
                yield fault(document, line, "the row names no test")
            for name, is_cut in found:
                if not is_test(tree, name, is_cut):
                    yield fault(document, line, f"no test is called {name}")


def blocks(tree):
    """A block is run, read as JSON, or says right before it why not."""
    for document in tree.documents:
        for block in document.blocks:
            if block.reason or block.text.lstrip().startswith(("{", "[\n")):
                continue
            for line in block.text.split("\n"):
                for words in words_of_command(line):
                    if words[0] in ("sudo", "apt", "apt-get") or "sudo " in line:
                        yield fault(document, block.line, f"'{line.strip()}' installs: say before it that it is not run")


def length(tree):
    for document in tree.documents:
        lines = (tree.root / document.name).read_text(encoding="utf-8").count("\n")
        if document.name == "README.md" and lines > LONGEST_README:
            yield fault(document, lines, f"longer than {LONGEST_README} lines")


RULES = (links, paths, options, settings, hotkeys, messages, tests, blocks, length)


def faults(root):
    tree = Tree(root)
    return [each for rule in RULES for each in rule(tree)]
