"""The tests of the man pages ask the program for its options as those of the completions do."""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "completions"))
