"""Every call that can fail is made to fail, in turn, in runs of every kind."""

import concurrent.futures
import os
import subprocess

import pytest
from injection import Reference, performed
from judgement import Judgement
from scenarios import SCENARIOS

# Without --all, one injection of so many is made, and no more than so many in a scenario.
SAMPLE = 5
MOST_IN_SAMPLE = 40
MOST_SHOWN = 20


def check_reference(reference):
    """The runs without a fault are those that the golden cases expect."""
    case = reference.scenario.case
    assert reference.normal.errors == b""
    if case is None:
        return
    assert reference.normal.output == case.expected_output(os.fsdecode(reference.normal.directory))
    assert reference.normal.status == case.expected_status()
    for name, content in case.expected_files().items():
        assert reference.normal.files[name] == content


def sample(injections, number):
    """Some of the injections; scenarios of different numbers begin at different ones."""
    step = max(SAMPLE, len(injections) // MOST_IN_SAMPLE)
    return injections[number % step :: step]


def assert_no_complaints(reference, injections, judgement):
    def judge(injection):
        try:
            run = reference.inject(injection)
        except subprocess.TimeoutExpired as error:
            return [f"{injection}: {error}"]
        complaints = judgement(reference, injection, run).complaints
        return [f"{injection}: {complaint}" for complaint in complaints]

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        complaints = sum(pool.map(judge, injections), [])
    shown = "\n".join(complaints[:MOST_SHOWN])
    assert not complaints, f"\n{len(complaints)} complaints\n{shown}"


@pytest.mark.parametrize("scenario", SCENARIOS, ids=lambda scenario: scenario.identifier)
def test_fault(scenario, program, request, tmp_path):
    reference = Reference(program, scenario, tmp_path.resolve())
    check_reference(reference)
    injections = list(reference.injections())
    if not request.config.getoption("--all"):
        injections = sample(injections, len(performed))
    performed[scenario.identifier] = len(injections)
    assert_no_complaints(reference, injections, Judgement)
