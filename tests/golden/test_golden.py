"""Runs every golden case and compares standard output, status and all files, byte for byte."""

import difflib

from golden_case import find_cases


def pytest_generate_tests(metafunc):
    if "case" in metafunc.fixturenames:
        cases = find_cases(metafunc.config.getoption("--topic"))
        metafunc.parametrize("case", cases, ids=[case.identifier for case in cases])


def readable(content):
    return content.decode("latin-1").splitlines(keepends=True)


def difference(name, expected, actual):
    """A unified diff, or an empty text when both are the same bytes."""
    if expected == actual:
        return ""
    lines = difflib.unified_diff(
        [repr(line) + "\n" for line in readable(expected)],
        [repr(line) + "\n" for line in readable(actual)],
        f"expected {name}",
        f"actual {name}",
    )
    return "".join(lines)


def test_case(case, program, tmp_path):
    directory = tmp_path.resolve()
    process, files = case.run(program, directory)
    expected = case.expected_tree()
    faults = [
        difference("standard output", case.expected_output(directory), process.stdout),
        difference("standard error", b"", process.stderr),
    ]
    if process.returncode != case.expected_status():
        faults.append(f"status {process.returncode}, expected {case.expected_status()}\n")
    for name in sorted(set(expected) | set(files)):
        if name not in files:
            faults.append(f"{name} is missing\n")
        elif name not in expected:
            faults.append(f"{name} must not exist\n")
        faults.append(difference(name, expected.get(name, b""), files.get(name, b"")))
    text = "".join(faults)
    assert not text, "\n" + text
