"""A session in an editor: the source, what the user does, and what must be seen of it.

Every editor opens the source, takes the first fix of its mistake, goes from the name in line 2 to its
definition, and renames it.
"""

import json
import os
import re
import shutil

import pytest
import running
from sources import EDITORS, ROOT

SCRIPTS = ROOT / "tests" / "editors" / "clients"

SOURCE = """\
        ORG     $10
start   LDAA    #speed
        STA     last
done    BRA     done
last    RMB     1
speed   EQU     5
"""
MENDED = """\
        ORG     $10
start   LDA    #tempo
        STA     last
done    BRA     done
last    RMB     1
tempo   EQU     5
"""
MESSAGE = "unknown instruction 'LDAA'"
# An immediate LDA is F0 and the value, at the address that ORG has set.
LISTED = re.compile(r"\b10 F0 ?05\b.*#tempo")


def need_editor(command, package):
    if shutil.which(command) is None:
        pytest.skip(f"there is no {command} here (Debian's package {package})")


def seen_by(directory, zirpa, script, command, package, *options):
    """What a script saw in the editor; without a server, what it saw without one."""
    need_editor(command, package)
    (directory / "prog.szirpa").write_text(SOURCE)
    environment = {**os.environ, "HOME": str(directory), "EDITOR_FILES": str(EDITORS)}
    environment.pop("ZIRPA", None)
    if zirpa is not None:
        environment["ZIRPA"] = zirpa
    process = running.run(
        directory, command, *options, str(SCRIPTS / script), env=environment, text=True
    )
    answers = directory / "seen.json"
    assert answers.exists(), f"{command} has stopped early:\n{process.stdout}{process.stderr}"
    seen = json.loads(answers.read_text())
    assert "failure" not in seen, f"{seen['failure']}\n{process.stdout}{process.stderr}"
    return seen


def check_session(seen):
    ((line, column, identifier, message),) = seen["diagnostics"]
    assert (line, column, identifier) == (2, 9, "unknown-instruction")
    assert MESSAGE in message
    assert seen["offered"][0] == "Replace by LDA"
    assert seen["jump"] == 6
    assert seen["text"] == MENDED.splitlines()
