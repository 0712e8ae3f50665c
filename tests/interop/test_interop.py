"""Other people's readers agree on what the outputs say.

The S-records are read by objcopy (binutils), the C array by a C compiler. What they find is compared
with the expected S-records of the golden cases and of the examples. That the script follows the
records, and that all lengths and checksums are right, is shown by the golden cases and the
properties.

Programs without a byte are left out: objcopy refuses a file that holds nothing but an end record.
Of the output of -g it reads the S-records only, since it stops at the end record.
"""

import pytest
import running
from subjects import ADDRESS_MASK, ARRAY_START, ARRAY_SUFFIX, find_subjects, of_each

# Beyond this size the image with its gaps filled is no use, and the sparse form is asked for.
LARGEST_IMAGE = 1 << 20
COMPILER = "cc"
COMPILER_FLAGS = ["-std=c99", "-Wall", "-Wextra", "-Wpedantic", "-Werror"]


# ---- S-records ----------------------------------------------------------------------------------


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


@of_each(find_subjects())
def test_objcopy(subject, outputs, tmp_path):
    (tmp_path / "in.s19").write_bytes(outputs(subject)[subject.records_name])
    memory = subject.memory
    first, last = min(memory), max(memory)
    sparse = last - first >= LARGEST_IMAGE
    form = "verilog" if sparse else "binary"
    process = running.run(tmp_path, "objcopy", "-I", "srec", "-O", form, "in.s19", "out")
    assert process.returncode == 0, process.stderr
    if sparse:
        assert memory_of_verilog((tmp_path / "out").read_text(encoding="ascii")) == memory
    else:
        image = bytes(memory.get(address, 0) for address in range(first, last + 1))
        assert (tmp_path / "out").read_bytes() == image


# ---- C array ------------------------------------------------------------------------------------


def with_arrays():
    return [subject for subject in find_subjects() if subject.has_array]


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
    subjects = with_arrays()
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
    compiler = running.run(directory, COMPILER, *COMPILER_FLAGS, "-o", "show", "main.c", text=True)
    assert compiler.returncode == 0, compiler.stderr
    process = running.run(directory, directory / "show", text=True)
    assert process.returncode == 0
    lines = process.stdout.splitlines()
    assert len(lines) == len(subjects)
    return {
        subject.identifier: bytes.fromhex(line) for subject, line in zip(subjects, lines)
    }


@of_each(with_arrays())
def test_c_array_holds_the_bytes_in_order(subject, compiled_arrays):
    emitted = bytes(byte for _, byte in subject.data)
    assert compiled_arrays[subject.identifier] == emitted
