"""The pictures of the 256 addresses."""

import xml.etree.ElementTree as tree

import running

SOURCE = """\
\tORG\t$0E
start\tLDA\t#$AB
\tFCB\t1
keep
room\tRMB\t2
\tORG\t$0F
\tFCB\t$CD
\tORG\t$FF
\tFCB\t2,3
"""
NAMESPACE = "{http://www.w3.org/2000/svg}"


def free_row(row):
    return f"{row:X}0  " + " ".join([".."] * 16)


# LDA # is F0. At 0F the operand AB is written again, as CD.
PICTURE = "\n".join(
    [
        "map.szirpa",
        "",
        "     0  1  2  3  4  5  6  7  8  9  A  B  C  D  E  F",
        "00  " + ".. " * 14 + "F0 CD!  0E start",
        "10  01'-- -- " + ".. " * 13 + "  11 keep room",
        *(free_row(row) for row in range(2, 15)),
        "F0  " + ".. " * 15 + "02'",
        "",
        "12  code 1   12' data 2   --  reserved 2   12! written twice 1   ..  free 250",
        "1 above FF, from 100",
        "",
    ]
)


def draw(zirpa, directory, *options):
    (directory / "map.szirpa").write_text(SOURCE)
    return running.run(directory, zirpa, "map", *options, "map.szirpa")


def test_the_picture_shows_every_address(zirpa, tmp_path):
    process = draw(zirpa, tmp_path)
    assert process.stdout.decode() == PICTURE
    assert process.returncode == 0


def test_colours_only_add_to_the_picture(zirpa, tmp_path):
    coloured = draw(zirpa, tmp_path, "--color", "always").stdout.decode()
    assert "\x1b[" in coloured
    plain = "".join(piece.partition("m")[2] if i else piece for i, piece in enumerate(coloured.split("\x1b[")))
    assert plain.replace(" ", "") == PICTURE.replace(" ", "")


def cells(drawing):
    return {
        group.find(NAMESPACE + "title").text: group.find(NAMESPACE + "rect").get("class")
        for group in drawing.iter(NAMESPACE + "g")
    }


def test_the_svg_has_a_cell_for_every_address(zirpa, tmp_path):
    process = draw(zirpa, tmp_path, "--svg", "map.svg")
    assert (process.returncode, process.stdout) == (0, b"")
    drawn = cells(tree.parse(tmp_path / "map.svg").getroot())
    assert len(drawn) == 256
    assert drawn["0E code start"] == "code"
    assert drawn["0F written twice"] == "twice"
    assert drawn["11 reserved keep"] == "reserved"
    assert drawn["FF data"] == "data"
    assert drawn["20 free"] == "free"


def test_an_svg_that_cannot_be_written_is_reported(zirpa, tmp_path):
    process = draw(zirpa, tmp_path, "--svg", "none/map.svg")
    assert process.returncode == 2
    assert b"none/map.svg: error: can't be created: No such file or directory" in process.stderr


def test_a_source_that_cannot_be_read_has_no_picture(zirpa, tmp_path):
    process = running.run(tmp_path, zirpa, "map", "none.szirpa")
    assert (process.returncode, process.stdout) == (2, b"")
