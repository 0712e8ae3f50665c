"""The guard notices each count that grows, and none that stays about the same."""

import cachegrind
import guard
import pytest

STORED = {
    "guard-large": {"instructions": 5_000_000, "mispredictions": 70_000},
    "guard-data": {"instructions": 3_000_000, "mispredictions": 20_000},
}
EACH = [(name, kind) for name, counts in STORED.items() for kind in counts]


def changed(name, kind, percent):
    counts = {**STORED[name], kind: STORED[name][kind] * (100 + percent) // 100}
    return {**STORED, name: counts}


@pytest.mark.parametrize("name, kind", EACH)
def test_growth_by_more_than_a_tenth_fails(name, kind):
    text, failed = guard.verdict(changed(name, kind, 11), STORED)
    assert failed
    assert text.startswith("FAILED")
    assert f"{name}: " in text and f"{kind}, +11.0 %" in text


@pytest.mark.parametrize("name, kind", EACH)
@pytest.mark.parametrize("percent", [9, 0, -9])
def test_a_change_within_a_tenth_passes(name, kind, percent):
    text, failed = guard.verdict(changed(name, kind, percent), STORED)
    assert not failed
    assert text.startswith("passed\n")


@pytest.mark.parametrize("name, kind", EACH)
def test_a_gain_of_more_than_a_tenth_is_to_be_stored(name, kind):
    text, failed = guard.verdict(changed(name, kind, -11), STORED)
    assert not failed
    assert "--store" in text


def test_a_gain_does_not_hide_a_loss():
    counted = changed("guard-large", "mispredictions", 11)
    counted["guard-data"] = {"instructions": 1, "mispredictions": 1}
    assert guard.verdict(counted, STORED)[1]


def test_every_workload_is_stored_and_counted(program, tmp_path):
    reason = cachegrind.obstacle(tmp_path)
    if reason:
        pytest.skip(reason)
    stored = guard.json.loads(guard.STORED.read_text())
    counted = guard.count(program)
    assert set(counted) == set(stored) == set(guard.JOBS)
    assert all(value > 0 for counts in counted.values() for value in counts.values())
