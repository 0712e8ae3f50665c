"""The tests of the editors' files read sources by the second implementation's tables."""

import pathlib
import sys

# The second implementation has an instruction table of its own.
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "model"))
