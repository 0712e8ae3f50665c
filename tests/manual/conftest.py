"""The tests of the manual write its instruction pages anew, by the tool that writes them."""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
