"""A workload is one program in several languages: the assemblers write the same bytes.

The processors have different codes, so those of instructions are left out. GNU as puts each block
on a page of its own, acme keeps the last block only.
"""

import itertools
import random
import re
import shutil
import struct
import subprocess

import generate
import measure
import pytest
from languages import ZIRPA

PAGE = 256
SEEDS = [1, 2, 3]
DRAWN = {
    "expressions": lambda rng: generate.expressions(rng, 1000, 1 / 3),
    "expressions-known": lambda rng: generate.expressions(rng, 1000, 0),
    "data": lambda rng: generate.data(rng, 200),
    "symbols": lambda rng: generate.symbols(rng, 800, 4000),
}
# Some have addresses of two bytes.
OTHER_SIZES = {("symbols", "dasm"), ("symbols", "gnu")}
CASES = [case for case in itertools.product(DRAWN, measure.PEERS) if case not in OTHER_SIZES]


def statements(name, seed):
    return list(DRAWN[name](random.Random(seed)))


def blocks_of(program):
    """For each block, which of its bytes are values."""
    blocks = []
    for kind, *given in program:
        if kind == "origin":
            blocks.append([])
        elif kind in ("bytes", "address"):
            blocks[-1] += [True] * len(given[1])
        elif kind == "instruction":
            blocks[-1] += [False, True]
    return blocks


def records(path):
    lines = path.read_text().splitlines()
    return b"".join(bytes.fromhex(line[8:-2]) for line in lines if line.startswith("S1"))


def dasm_image(path):
    image, data = b"", path.read_bytes()
    while data:
        _, size = struct.unpack_from("<HH", data)
        image, data = image + data[4:4 + size], data[4 + size:]
    return image


def gnu_image(path, blocks):
    image = path.with_suffix(".bin")
    subprocess.run(["m68hc11-objcopy", "-O", "binary", "-j", ".text", path, image], check=True)
    data = image.read_bytes()
    return b"".join(data[i * PAGE:i * PAGE + len(block)] for i, block in enumerate(blocks))


def acme_image(path, blocks):
    """Earlier blocks may show where the last one ends."""
    return path.read_bytes()[:len(blocks[-1])]


def image_of(peer, directory, blocks):
    return {
        "64tass": lambda: records(directory / "64tass.s19"),
        "acme": lambda: acme_image(directory / "acme.bin", blocks),
        "dasm": lambda: dasm_image(directory / "dasm.bin"),
        "gnu": lambda: gnu_image(directory / "gnu.o", blocks),
    }[peer]()


def values(image, blocks):
    are_values = [is_value for block in blocks for is_value in block]
    assert len(image) == len(are_values)
    return [byte for byte, is_value in zip(image, are_values) if is_value]


def assemble(command, directory):
    if shutil.which(command[0]) is None:
        pytest.skip(f"{command[0]} is not installed")
    process = subprocess.run(command, cwd=directory, check=False, text=True,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    assert process.returncode == 0, process.stdout
    assert "arning" not in process.stdout
    assert "rror:" not in process.stdout


@pytest.mark.parametrize("seed", SEEDS)
@pytest.mark.parametrize("name, peer", CASES)
def test_the_others_write_the_same_values(name, peer, seed, program, tmp_path):
    drawn = statements(name, seed)
    languages = {language.suffix: language for language in generate.PEERS}
    generate.write_languages(tmp_path, name, drawn, (ZIRPA, languages[peer]))
    assemble([program, f"{name}.szirpa"], tmp_path)
    assemble(measure.PEERS[peer].format(name).split(), tmp_path)
    blocks = blocks_of(drawn)
    own = records(tmp_path / f"{name}.s19")
    if peer == "acme":
        blocks = blocks[-1:]
        own = own[-len(blocks[0]):]
    assert values(image_of(peer, tmp_path, blocks), blocks) == values(own, blocks)


def names_and_places(drawn):
    """Each name of an expression, with the line of its definition and that of its use."""
    defined = {s[1]: number for number, s in enumerate(drawn) if s[0] == "constant"}
    for number, (kind, *given) in enumerate(drawn):
        value = given[-2][1] if kind == "instruction" else given[-1] if given else ""
        for name in re.findall(r"[a-z]+_\d+", str(value)):
            yield defined[name], number


@pytest.mark.parametrize("seed", SEEDS)
@pytest.mark.parametrize("name, share", [("expressions", 1 / 3), ("expressions-known", 0)])
def test_a_share_of_the_names_is_defined_further_down(name, share, seed):
    places = list(names_and_places(statements(name, seed)))
    ahead = sum(defined > used for defined, used in places)
    assert ahead / len(places) == pytest.approx(share, abs=0.03)


@pytest.mark.parametrize("seed", SEEDS)
def test_expressions_are_as_people_fear_them(seed):
    lines = [ZIRPA.line(s) for s in statements("expressions", seed)
             if s[0] in ("bytes", "instruction")]
    counts = [len(re.findall(r"<<|>>|[-+*/&^|]", line)) for line in lines]
    assert min(counts) == 5 and max(counts) == 10
    assert sum(map(len, lines)) / len(lines) == pytest.approx(80, abs=5)
    assert sum("(" in line for line in lines) / len(lines) == pytest.approx(1 / 3, abs=0.05)


def test_a_seed_always_draws_the_same():
    assert statements("expressions", 1) == statements("expressions", 1)
    assert statements("expressions", 1) != statements("expressions", 2)
