"""The CMake text shown in docs/cmake.md and in the README works as it stands."""

import re

import pytest
from cmake_project import MODULE, TOP

TEXT = (TOP / "docs" / "cmake.md").read_text()
README = (TOP / "README.md").read_text()
SHOWN = re.findall(r"^```cmake\n(.*?)^```$", README + TEXT, re.MULTILINE | re.DOTALL)
USAGE = re.compile(r"add_hxzirpa_program\(name SOURCE.*?\)", re.DOTALL)
C_PROGRAM = "int main(void) { return 0; }\n"


def squeezed_usage(text):
    """The usage in one line, without the marks of comment lines."""
    return " ".join(USAGE.search(text).group().replace("#", " ").split())


@pytest.mark.parametrize("shown", SHOWN)
def test_shown_text_builds(project, shown):
    for name in re.findall(r"\w+\.szirpa", shown):
        project.write(name, "      ORG   1\n      NOP\n")
    project.write("check.c", C_PROGRAM)
    if "find_package" in shown:
        project.write("CMakeLists.txt", shown)
        project.write("package/HXzirpaConfig.cmake", f'include("{MODULE}")\n')
    else:
        project.describe(shown, languages="C" if "check.c" in shown else "NONE")
    project.make(f"-DHXzirpa_DIR={project.source / 'package'}")
    for target in re.findall(r"add_hxzirpa_program\((\w+)", shown):
        assert project.directory_of(target).is_dir()


def test_usage_is_that_of_the_module():
    assert squeezed_usage(TEXT) == squeezed_usage(MODULE.read_text())


def test_every_keyword_and_property_is_described():
    module = MODULE.read_text()
    keywords = re.search(r"set\(switches (.*)\)", module).group(1).split()
    properties = re.findall(r"_hxzirpa_add_file\(\w+ (\w+)", module)
    assert len(keywords) == 8
    assert len(properties) == 6
    for word in [*keywords, *(f"HXZIRPA_{name}" for name in properties)]:
        assert f"| `{word}" in TEXT, word
