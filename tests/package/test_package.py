"""The Debian package: its name, lintian's opinion, and its life in a fresh root."""

import pathlib
import re
import shlex
import subprocess

import pytest
from building import ROOT, expected_files, run
from running import VERSION, need

SCRIPT = pathlib.Path(__file__).resolve().parent / "in_fresh_root.sh"
# A root with no more than dpkg and what the script calls; apt adds what these depend on.
ROOT_PACKAGES = "base-files,coreutils,dash,diffutils,dpkg,findutils,libc-bin,sed"
MERGED_USR = "/usr/share/mmdebstrap/hooks/merged-usr"
# What the package has beside the files of an installation.
PACKAGE_ONLY = {"share/lintian/overrides/hxzirpa"}


def control_field(package, name):
    return run("dpkg-deb", "--field", str(package), name).strip()


def test_file_is_named_after_package_version_and_architecture(package):
    architecture = run("dpkg", "--print-architecture").strip()
    assert package.name == f"hxzirpa_{VERSION}_{architecture}.deb"
    assert control_field(package, "Package") == "hxzirpa"
    assert control_field(package, "Version") == VERSION


def test_versions_agree(program):
    first_line = (ROOT / "packaging" / "changelog").read_text().partition("\n")[0]
    assert first_line.startswith(f"hxzirpa ({VERSION}) ")
    assert (ROOT / "CHANGELOG.md").read_text().partition("\n## ")[2].startswith(f"{VERSION}\n")
    assert f"Version {VERSION}\n" in run(program)


def test_program_needs_no_other_package(package):
    assert control_field(package, "Depends") == ""


def test_lintian_accepts_the_package(package):
    need("lintian", "lintian")
    # Standard error says only that it should not be run by root.
    report = run("lintian", "--fail-on", "error,warning", str(package))
    assert not re.search(r"^[EW]: ", report, re.MULTILINE), report


def test_installed_used_and_removed_in_a_fresh_root(package):
    need("mmdebstrap", "mmdebstrap")
    if not mounting_is_allowed():
        pytest.skip("no fresh root can be made: mounting is not allowed here")
    shown = run_in_fresh_root(package)
    assert shown["new"] - directories(shown["new"]) == {
        f"/usr/{path}" for path in expected_files() | PACKAGE_ONLY
    } | dpkg_records()
    assert shown["printed"] == {"-- No errors."}
    assert shown["output"] == {"report.s19", "report.lst", "report.fmem", "report_cout.c"}
    expected = ROOT / "tests" / "examples" / "report.every_output.s19"
    assert shown["record"] == set(expected.read_text().splitlines())
    assert shown["left"] == set()


def mounting_is_allowed():
    command = ["unshare", "--map-root-user", "--mount", "true"]
    return subprocess.run(command, capture_output=True, check=False).returncode == 0


def directories(paths):
    return {path for path in paths if path.endswith("/")}


def dpkg_records():
    return {f"/var/lib/dpkg/info/hxzirpa.{kind}" for kind in ("list", "md5sums")}


def run_in_fresh_root(package):
    """Runs the script there. A dictionary of the first words of its lines: the sets of the rest."""
    hooks = [
        f"upload {shlex.quote(str(package))} /tmp/hxzirpa.deb",
        f"upload {shlex.quote(str(SCRIPT))} /tmp/in_fresh_root.sh",
        'chroot "$1" sh /tmp/in_fresh_root.sh',
    ]
    command = ["mmdebstrap", "--variant=extract", f"--include={ROOT_PACKAGES}", "--quiet"]
    command += [f"--hook-dir={MERGED_USR}", *(f"--extract-hook={hook}" for hook in hooks)]
    output = run(*command, codename(), "/dev/null", *apt_sources())
    assert re.search(r"^end$", output, re.MULTILINE), output
    shown = {word: set() for word in ("new", "printed", "record", "output", "left")}
    for line in output.splitlines():
        word, _, rest = line.partition(" ")
        if word in shown:
            shown[word].add(rest)
    return shown


def codename():
    text = pathlib.Path("/etc/os-release").read_text()
    return re.search(r"^VERSION_CODENAME=(\w+)$", text, re.MULTILINE)[1]


def apt_sources():
    """The files that tell where the host's own apt gets its packages from."""
    apt = pathlib.Path("/etc/apt")
    files = [apt / "sources.list", *sorted((apt / "sources.list.d").glob("*.sources"))]
    files += sorted((apt / "sources.list.d").glob("*.list"))
    return [str(file) for file in files if file.is_file() and file.stat().st_size > 0]
