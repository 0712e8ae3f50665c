"""The list of differences is the one that users read."""

import differences
from conftest import ROOT


def test_each_reason_is_in_the_document():
    text = " ".join((ROOT / "docs" / "web.md").read_text().split())
    for reason in {row[2] for row in differences.ROWS}:
        assert reason in text
