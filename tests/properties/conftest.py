"""One test for each golden case that ends without errors."""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "golden"))


def pytest_generate_tests(metafunc):
    if "case" in metafunc.fixturenames:
        from golden_case import find_cases

        cases = [
            case
            for case in find_cases()
            if case.expected_status() == 0 and (case.file(".out") or b"").find(b"No errors.\n") >= 0
        ]
        assert len(cases) > 100
        metafunc.parametrize("case", cases, ids=[case.identifier for case in cases])
