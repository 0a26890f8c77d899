"""Proves that the check of the documents can fail: each case plants one fault in a copy of them."""

import os
import shutil
import tempfile
from pathlib import Path

import document_rules

# What is wrong, the document, what is written behind its text, and what the check must say of it.
PLANTED = [
    ("a link into nothing", "README.md", "[a](docs/nowhere.md)", "the link leads nowhere"),
    ("a heading that was renamed", "README.md", "[a](docs/privacy.md#no-such-part)", "no such heading"),
    ("a picture that was removed", "docs/hotkeys.md", "![a](pictures/gone.png)", "the link leads nowhere"),
    ("a file that was renamed", "CONTRIBUTING.md", "`scripts/lib/gone.py`", "no such file"),
    ("a script that was removed", "CONTRIBUTING.md", "`scripts/gone --now`", "no such script"),
    ("an option that was renamed", "docs/voice.md", "`scripts/demo --spoken`", "has no option --spoken"),
    ("an option of the program", "docs/troubleshooting.md", "`tavrelon --checks`", "has no option --checks"),
    ("an action that is none", "docs/hotkeys.md", "`tavrelon --trigger sing`", "nothing is called sing"),
    ("a setting that was renamed", "docs/privacy.md", "`\"screenshotsMode\": \"none\"`", "no setting is called"),
    ("a bare setting", "docs/voice.md", "`voiceInputTimeoutMinutes`", "nothing is called"),
    ("a setting of an example", "docs/models.md", "\n    {\"enableCustomGateway\": true}\n", "no setting is called"),
    ("an example that is no JSON", "docs/models.md", "\n    {\"enableAI\": true,}\n", "no JSON"),
    ("a hotkey that was changed", "README.md", "Press Shift+Alt+Super+Q.", "no hotkey is"),
    ("a message that was reworded", "docs/troubleshooting.md", "\n| the log has | do |\n|---|---|\n| `[Hotkey] … was taken by a ghost` | a |\n",
     "the program never says"),
    ("a line of the check", "docs/troubleshooting.md", "\n| it misses | do |\n|---|---|\n| `weather` | a |\n", "the check looks at no"),
    ("an attack without a test", "SECURITY.md", "\n| attack | test |\n|---|---|\n| a | we looked |\n", "names no test"),
    ("a test that was renamed", "SECURITY.md", "\n| attack | test |\n|---|---|\n| a | `ChatKeys.StayAtHome` |\n", "no test is called"),
    ("a test of the whole program", "SECURITY.md", "\n| attack | test |\n|---|---|\n| a | test_that_is_gone |\n", "no test is called"),
    ("a command that installs", "README.md", "\n    sudo apt install hello\n", "installs"),
    ("a front page that nobody reads", "README.md", "line\n" * document_rules.LONGEST_README, "longer than"),
]


def faults_of(root, document, text):
    with tempfile.TemporaryDirectory(prefix="tavrelon-documents.") as folder:
        copy = Path(folder)
        for path in root.iterdir():
            if path.is_dir() and path.name != "docs" and not path.name.startswith((".git", "build")):
                os.symlink(path, copy / path.name)
            elif path.is_file():
                shutil.copy(path, copy / path.name)
        shutil.copytree(root / "docs", copy / "docs")
        with open(copy / document, "a", encoding="utf-8") as file:
            file.write(f"\n\n{text}\n")
        return document_rules.faults(copy)


def run(root):
    missed = 0
    for name, document, text, words in PLANTED:
        if not any(each.startswith(document) and words in each for each in faults_of(root, document, text)):
            print(f"check-documents: not noticed: {name}")
            missed += 1
    print(f"check-documents: {len(PLANTED) - missed} of {len(PLANTED)} planted faults are noticed")
    return 1 if missed else 0
