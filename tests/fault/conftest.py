"""The option for the whole set of faults, the golden cases' module, and the number of injections."""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "golden"))


def pytest_addoption(parser):
    parser.addoption(
        "--all", action="store_true", help="make every call fail, not about every fifth"
    )


def pytest_generate_tests(metafunc):
    from scenarios import SCENARIOS

    if "scenario" in metafunc.fixturenames:
        metafunc.parametrize("scenario", SCENARIOS, ids=[item.identifier for item in SCENARIOS])


def pytest_terminal_summary(terminalreporter):
    from injection import performed

    terminalreporter.write_line(f"{performed.total()} injections in {len(performed)} runs")
