"""The golden cases' module, whose script format the expectations here share."""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "golden"))
