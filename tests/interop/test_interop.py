"""Other people's readers agree on what the outputs say.

The S-records are read by objcopy (binutils), the C array by a C compiler. What they find is compared
with the expected S-records of the golden cases and of the examples, which a small parser in
subjects.py reads on its own.

Programs without a byte are left out where the readers are asked: objcopy refuses a file that holds
nothing but an end record. Of the output of -g it reads the S-records only, since it stops at the end
record.
"""

import re

import pytest
from golden_case import pairs_of_records
from subjects import (
    ADDRESS_MASK,
    ARRAY_START,
    ARRAY_SUFFIX,
    find_subjects,
    read_by,
    record_lines,
)

# Beyond this size the image with its gaps filled is no use, and the sparse form is asked for.
LARGEST_IMAGE = 1 << 20
SCRIPT_LINE = re.compile(rb"\n #setMemory  ([0-9A-F]{2})=([0-9A-F]{2})")
COMPILER = "cc"
COMPILER_FLAGS = ["-std=c99", "-Wall", "-Wextra", "-Wpedantic", "-Werror"]


# ---- S-records ----------------------------------------------------------------------------------


def test_lengths_and_checksums(subject, outputs):
    lines = record_lines(outputs.records(subject))
    assert lines
    for line in lines:
        assert re.fullmatch(rb"S[1-37-9](?:[0-9A-F]{2}){4,}", line), line
        content = bytes.fromhex(line[2:].decode())
        assert content[0] == len(content) - 1, line
        assert sum(content) & 0xFF == 0xFF, line


def test_one_end_record_behind_the_data(subject, outputs):
    kinds = [line[1:2] for line in record_lines(outputs.records(subject))]
    assert [kind in b"789" for kind in kinds] == [False] * (len(kinds) - 1) + [True]


def memory_of_verilog(text):
    """The bytes of a memory file: an address "@00012345", then bytes in rows."""
    memory = {}
    address = None
    for word in text.split():
        if word.startswith("@"):
            address = int(word[1:], 16)
        else:
            memory[address & ADDRESS_MASK] = int(word, 16)
            address += 1
    return memory


def test_objcopy(data_subject, outputs, tmp_path):
    (tmp_path / "in.s19").write_bytes(outputs.records(data_subject))
    memory = data_subject.memory
    first, last = min(memory), max(memory)
    sparse = last - first >= LARGEST_IMAGE
    form = "verilog" if sparse else "binary"
    process = read_by(tmp_path, "objcopy", "-I", "srec", "-O", form, "in.s19", "out")
    assert process.returncode == 0, process.stderr
    if sparse:
        assert memory_of_verilog((tmp_path / "out").read_text(encoding="ascii")) == memory
    else:
        image = bytes(memory.get(address, 0) for address in range(first, last + 1))
        assert (tmp_path / "out").read_bytes() == image


# ---- C array ------------------------------------------------------------------------------------


def array_of(files):
    """The C array among the files of a run."""
    (array,) = (
        content
        for name, content in files.items()
        if name.endswith(ARRAY_SUFFIX) and content.startswith(ARRAY_START)
    )
    return array


@pytest.fixture(scope="session")
def compiled_arrays(outputs, tmp_path_factory):
    """The bytes of every array as compiled, by the subject's identifier: one program for all."""
    directory = tmp_path_factory.mktemp("arrays")
    subjects = [subject for subject in find_subjects() if subject.data and subject.has_array]
    includes = []
    calls = []
    for number, subject in enumerate(subjects):
        (directory / f"{number}.c").write_bytes(array_of(outputs(subject)))
        includes.append(f'#define algo algo_{number}\n#include "{number}.c"\n#undef algo\n')
        calls.append(f"    show(algo_{number}, sizeof algo_{number});\n")
    (directory / "main.c").write_text(
        "#include <stdio.h>\n"
        + "".join(includes)
        + "static void show(const unsigned char *bytes, size_t size) {\n"
        + '    for (size_t at = 0; at < size; ++at) printf("%02X", bytes[at]);\n'
        + '    printf("\\n");\n'
        + "}\n"
        + "int main(void) {\n"
        + "".join(calls)
        + "    return 0;\n"
        + "}\n"
    )
    compiler = read_by(directory, COMPILER, *COMPILER_FLAGS, "-o", "show", "main.c")
    assert compiler.returncode == 0, compiler.stderr
    process = read_by(directory, directory / "show")
    assert process.returncode == 0
    lines = process.stdout.splitlines()
    assert len(lines) == len(subjects)
    return {
        subject.identifier: bytes.fromhex(line) for subject, line in zip(subjects, lines)
    }


def test_c_array_holds_the_bytes_in_order(array_subject, compiled_arrays):
    emitted = bytes(byte for _, byte in array_subject.data)
    assert compiled_arrays[array_subject.identifier] == emitted


# ---- Simulator script ---------------------------------------------------------------------------


def script_of(files):
    """(address, byte) of every memory line in the script of a run."""
    (script,) = (content for name, content in files.items() if name.endswith(".fmem"))
    assert script.count(b"#setMemory") == len(SCRIPT_LINE.findall(script))
    return SCRIPT_LINE.findall(script)


def test_script_follows_the_records(subject, outputs):
    # Also of records with wide addresses, whose surplus address bytes are taken for data.
    assert script_of(outputs(subject)) == pairs_of_records(outputs.records(subject))


def test_script_sets_the_expected_bytes(narrow_subject, outputs):
    # The script knows the low 8 bits of an address only.
    pairs = script_of(outputs(narrow_subject))
    found = [(int(address, 16), int(byte, 16)) for address, byte in pairs]
    assert found == [(address & 0xFF, byte) for address, byte in narrow_subject.data]
