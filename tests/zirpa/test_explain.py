"""Every diagnostic has a chapter, every chapter a case, and the page of them is what zirpa explains."""

import pathlib
import re

import running

ROOT = pathlib.Path(__file__).resolve().parents[2]
CASES = ROOT / "tests" / "zirpa" / "diagnostics"
ROW = re.compile(r'^    \{"(?:[^"\\]|\\.)*",\s*"([a-z-]+)",', re.MULTILINE)
CHAPTER = re.compile(r'^    \{"([a-z-]+)",\s*Severity::', re.MULTILINE)

# What no short source can bring about: limits, files, options, faults of the assembler itself, and
# words of other dialects.
WITHOUT_CASE = set(
    """word-out-of-range branch-to-next undefined-expression second-start
    bad-conditional-name output-refused no-listing no-array too-many-directories empty-directory
    too-many-files recursive-file file-not-found too-many-names old-directive
    unimplemented-directive direct-page internal-symbol-size internal-coder internal-size
    internal-definition internal-symbol long-file-name cannot-read cannot-write""".split()
)
# Their examples are command lines, or would be too long.
WITHOUT_EXAMPLE = {"array-without-listing", "idle-option", "long-line"}


def of_assembler():
    return set(ROW.findall((ROOT / "door" / "messages.cpp").read_text()))


def chapters():
    return [name for kind in ("report", "warning", "program") for name in chapters_of(kind)]


def chapters_of(kind):
    return CHAPTER.findall((ROOT / "zirpa" / f"{kind}Chapters.cpp").read_text())


def raised():
    """The identifiers that the sources of zirpa raise."""
    text = "".join(
        path.read_text()
        for path in (ROOT / "zirpa").glob("*.cpp")
        if not path.name.endswith("Chapters.cpp")
    )
    named = re.findall(r'(?:warning|add)\(\s*(?:\w+ \? )?"([a-z-]+)"', text)
    return set(named) | set(re.findall(r'"(cannot-[a-z]+|output-refused|early-[a-z]+)"', text))


def raised_for_programs():
    """The identifiers of faults in what dis and diff read; test_dis.py has a case of each."""
    text = "".join(path.read_text() for path in sorted((ROOT / "dis").glob("*.cpp")))
    command = (ROOT / "zirpa" / "disCommand.cpp").read_text()
    return set(re.findall(r'"([a-z]+(?:-[a-z]+)+)"', text)) | set(re.findall(r'"(not-[a-z]+)"', command))


def test_every_identifier_has_one_chapter():
    assert len(set(chapters())) == len(chapters())
    assert set(chapters()) == of_assembler() | raised() | raised_for_programs()
    assert set(chapters_of("program")) == raised_for_programs()


def test_every_chapter_has_a_case():
    cases = {path.name.split(".")[0] for path in CASES.glob("*.szirpa")}
    assert cases == set(chapters()) - WITHOUT_CASE - set(chapters_of("program"))


def test_every_warning_has_a_case_that_just_does_not_draw_it():
    warned = set(chapters_of("warning"))
    clean = {path.name.split(".")[0] for path in CASES.glob("*.clean.szirpa")}
    assert clean == warned - WITHOUT_CASE


def test_the_page_is_what_zirpa_explains(zirpa):
    page = running.printed_by(zirpa, "explain", "all")
    assert page == (ROOT / "docs" / "diagnostics.md").read_text(), "run ./dev pages"


def test_an_example_is_the_case_of_its_identifier(zirpa):
    of_programs = set(chapters_of("program"))
    for name in set(chapters()) - WITHOUT_CASE - WITHOUT_EXAMPLE - of_programs:
        shown = running.run(ROOT, zirpa, "explain", name).stdout
        source = (CASES / (name + ".szirpa")).read_bytes()
        indented = b"".join(b"    " + line for line in source.splitlines(keepends=True))
        assert len(source) > 200 or indented in shown, name


def test_an_unknown_identifier_is_refused_with_a_hint(zirpa):
    process = running.run(ROOT, zirpa, "explain", "reserved-wort")
    assert process.returncode == 2
    assert b"did you mean reserved-word?" in process.stderr


def test_without_an_identifier_all_are_listed(zirpa):
    assert running.printed_by(zirpa, "explain").split() == chapters()
