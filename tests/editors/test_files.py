"""The editors' files agree with the program, with each other and with what they promise."""

import json
import re
import shutil
import subprocess
import sys

import running
from program_words import words
from reading import CONDITIONAL, is_plain
from sources import EDITORS, ROOT, all_sources, lines_of

EXTENSION = EDITORS / "vscode"
WRITTEN = [
    "editors/vscode/syntaxes/szirpa.tmLanguage.json", "editors/vim/syntax/szirpa.vim",
    "editors/emacs/szirpa-mode.el", "web/page/src/words.json",
]  # fmt: skip

PLACEHOLDER = re.compile(r"\$\{\w+:((?:\\.|[^\\}])*)\}|\$0|\\(.)")


def read_json(name):
    return json.loads((EXTENSION / name).read_text())


def test_grammars_are_those_written_from_the_tables(tmp_path):
    for name in WRITTEN:
        (tmp_path / name).parent.mkdir(parents=True)
        shutil.copyfile(ROOT / name, tmp_path / name)
    folders = [tmp_path / "editors", tmp_path / "web" / "page"]
    writer = [sys.executable, ROOT / "tools" / "write_grammar.py", *folders]
    subprocess.run(writer, input=json.dumps(words()), text=True, check=True)
    for name in WRITTEN:
        assert (tmp_path / name).read_text() == (ROOT / name).read_text(), (
            f"{name} is out of date: ./dev pages writes it"
        )


def test_package_has_the_version_of_the_program():
    version = f"{running.VERSION}.0"
    assert read_json("package.json")["version"] == version
    for path in (ROOT / "README.md", EDITORS / "README.md"):
        assert set(re.findall(r"hxzirpa-([\d.]+)\.vsix", path.read_text())) == {version}


def test_packages_of_the_tools_are_exact_and_name_no_registry():
    package = read_json("package.json")
    lock = read_json("package-lock.json")["packages"]
    for name, version in package["devDependencies"].items():
        assert lock[f"node_modules/{name}"]["version"] == version
    assert package["version"] == lock[""]["version"]
    for name, entry in lock.items():
        assert "resolved" not in entry, name
        assert not name or entry["integrity"]


def test_conditionals_are_folded():
    markers = read_json("language-configuration.json")["folding"]["markers"]
    ends = {"start": {"#IF", "IFDEF", "IFNDEF"}, "end": {"ENDIF"}}
    for path in all_sources():
        for text in filter(is_plain, lines_of(path)):
            found = CONDITIONAL.match(text)
            for side, pattern in markers.items():
                is_marker = found is not None and found[2].upper() in ends[side]
                assert bool(re.match(pattern, text)) == is_marker, f"{path.name}: {text}"


def test_settings_are_those_of_project_files_and_of_the_server():
    schema = json.loads((ROOT / "zirpa" / "project.schema.json").read_text())["properties"]
    settings = read_json("package.json")["contributes"]["configuration"]["properties"]
    names = {name.removeprefix("zirpa.") for name in settings}
    own = {"path"} | {f"inlayHints.{name}" for name in ("bytes", "values")}
    own |= {f"format.{name}" for name in ("operation", "operand", "comment")}
    assert names == {name for name in schema if name != "$schema"} | own
    words = settings["zirpa.compatibility"]["items"]
    assert words == schema["compatibility"]["items"]


def test_readme_names_all_commands_and_settings():
    readme = (EXTENSION / "README.md").read_text()
    package = read_json("package.json")["contributes"]
    for command in package["commands"]:
        assert f"`{command['category']}: {command['title']}`" in readme
    for name in package["configuration"]["properties"]:
        assert f"`{name}`" in readme


def expanded(body):
    """A snippet as it stands when it has been inserted, with its defaults."""
    text = body if isinstance(body, str) else "\n".join(body)

    def inserted(match):
        default, escaped = match.groups()
        return escaped or PLACEHOLDER.sub(inserted, default or "")

    return PLACEHOLDER.sub(inserted, text)


def assembled(program, directory, source):
    (directory / "a.szirpa").write_text(source)
    return running.run(directory, program, "-w", "a.szirpa", text=True).stdout


def test_snippets_are_assembled_as_they_stand(program, tmp_path):
    rows = read_json("snippets/szirpa.json")
    snippets = {name: expanded(row["body"]) for name, row in rows.items()}
    whole = snippets.pop("Program")
    assert assembled(program, tmp_path, f"{whole}\n") == "No errors.\n"
    parts = "".join(f"{text}\n" for text in snippets.values())
    assert assembled(program, tmp_path, f" ORG $10\n{parts}") == "No errors.\n"


def test_readme_names_all_snippets():
    readme = (EXTENSION / "README.md").read_text()
    for name in ("szirpa.json", "tasks.json"):
        for row in read_json(f"snippets/{name}").values():
            assert f"`{row['prefix']}`" in readme


def test_readme_shows_the_task_that_the_snippet_writes():
    readme = (EXTENSION / "README.md").read_text()
    shown = json.loads(re.search(r"```json\n(.*?)```", readme, re.DOTALL)[1])
    (snippet,) = read_json("snippets/tasks.json").values()
    assert shown["tasks"] == [json.loads(expanded(snippet["body"]))]
    matchers = read_json("package.json")["contributes"]["problemMatchers"]
    assert shown["tasks"][0]["problemMatcher"] in [f"${matcher['name']}" for matcher in matchers]
