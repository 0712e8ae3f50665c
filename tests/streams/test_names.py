"""What has an output's name before the run, and what has it afterwards: links, modes, owners."""

import contextlib
import os
import stat

import pytest
from stream_runs import (
    ARRAY, ERRORS, EVERY_OUTPUT, LISTING, OLD, OUTPUTS, RECORDS, REPLACING, SCRIPT, SUMMARY, WHOLE,
    expected_outputs, own_mounts,
)

NOBODY = 65534
MODES = [0o600, 0o640, 0o644, 0o755, 0o666, 0o200]


def assemble(place, errors=0, **options):
    """A run with every output."""
    process = place.assemble(errors, *EVERY_OUTPUT, **options)
    assert (process.returncode, process.stdout) == (errors, place.messages(errors))


def mode(place, name):
    return stat.S_IMODE((place.path / name).stat().st_mode)


def status(place, name):
    return (place.path / name).stat()


# ---- Modes and owners ----


@pytest.mark.parametrize("umask", [0o000, 0o002, 0o022, 0o027, 0o077])
@pytest.mark.parametrize("name", OUTPUTS)
def test_new_file_has_the_mode_that_the_umask_leaves(place, umask, name):
    assemble(place, prepare=lambda: os.umask(umask))
    assert mode(place, name) == 0o666 & ~umask


@pytest.mark.parametrize("kept", MODES)
@pytest.mark.parametrize("umask", [0o000, 0o077])
def test_old_s_record_file_keeps_its_mode(place, kept, umask):
    place.put_old(RECORDS)
    (place.path / RECORDS).chmod(kept)
    assemble(place, prepare=lambda: os.umask(umask))
    assert mode(place, RECORDS) == kept
    (place.path / RECORDS).chmod(0o600)
    place.assert_outputs(WHOLE)


@pytest.mark.parametrize("name", REPLACING)
@pytest.mark.parametrize("old", [*MODES, 0o444, 0o000])
def test_other_outputs_are_new_files_whatever_the_old_mode(place, name, old):
    place.put_old(name)
    (place.path / name).chmod(old)
    assemble(place, prepare=lambda: os.umask(0o022))
    assert mode(place, name) == 0o644
    place.assert_outputs(WHOLE)


def test_s_record_file_behind_a_link_keeps_its_mode(place):
    place.put_old("target")
    (place.path / "target").chmod(0o640)
    place.put_link(RECORDS, "target")
    assemble(place)
    assert mode(place, "target") == 0o640


def test_new_s_record_file_behind_a_dangling_link_has_the_mode_that_the_umask_leaves(place):
    (place.path / "sub").mkdir()
    place.put_link(RECORDS, "sub/target")
    assemble(place, prepare=lambda: os.umask(0o027))
    assert mode(place, "sub/target") == 0o640
    place.assert_outputs(WHOLE)


@pytest.mark.parametrize("owner, group", [(NOBODY, NOBODY), (1, 2)])
def test_old_s_record_file_keeps_its_owner(place, owner, group):
    as_root_only()
    place.put_old(RECORDS)
    (place.path / RECORDS).chmod(0o640)
    os.chown(place.path / RECORDS, owner, group)
    assemble(place)
    result = status(place, RECORDS)
    assert (result.st_uid, result.st_gid, mode(place, RECORDS)) == (owner, group, 0o640)
    place.assert_outputs(WHOLE)


# ---- Links ----


@pytest.mark.parametrize("target", ["target", "sub/target", "/target"])
@pytest.mark.parametrize("old", [True, False])
def test_s_record_file_is_written_through_a_link(place, target, old):
    target = str(place.path / target[1:]) if target.startswith("/") else target
    (place.path / "sub").mkdir()
    if old:
        place.put_old(target)
    place.put_link("between", target)
    place.put_link(RECORDS, "between")
    assemble(place)
    assert os.readlink(place.path / RECORDS) == "between"
    assert os.readlink(place.path / "between") == target
    assert (place.path / target).read_bytes() == WHOLE[RECORDS]
    assert not any(path.name.endswith(".tmp") for path in place.path.rglob("*"))


def test_link_in_another_directory_is_followed_from_there(place):
    (place.path / "sub").mkdir()
    place.put_link("sub/out.s19", "target")
    assert place.run("-o", "sub/out.s19", "prog.szirpa").stdout == SUMMARY
    assert place.read("sub/target") == WHOLE[RECORDS]
    assert place.names() == [SCRIPT, "prog.szirpa", "sub"]


@pytest.mark.parametrize("name", REPLACING)
@pytest.mark.parametrize("target", ["target", "nowhere"])
@ERRORS
def test_other_outputs_replace_a_link(place, name, target, errors):
    place.put_old("target")
    place.put_link(name, target)
    assemble(place, errors)
    assert not (place.path / name).is_symlink()
    assert place.read(name) == expected_outputs(errors)[name]
    assert place.read("target") == OLD
    assert "nowhere" not in place.names()


def test_s_record_file_keeps_its_other_names(place):
    place.put_old(RECORDS)
    os.link(place.path / RECORDS, place.path / "other")
    before = status(place, RECORDS)
    assemble(place)
    assert (status(place, RECORDS).st_ino, status(place, "other").st_ino) == (before.st_ino,) * 2
    assert place.read("other") == WHOLE[RECORDS]


@pytest.mark.parametrize("name", REPLACING)
def test_other_names_of_other_outputs_keep_the_old_file(place, name):
    place.put_old(name)
    os.link(place.path / name, place.path / "other")
    assemble(place)
    assert place.read("other") == OLD
    place.assert_outputs(WHOLE)


# ---- After errors ----


def test_old_s_record_file_is_gone_after_errors(place):
    place.put_old(RECORDS)
    assemble(place, errors=2)
    assert RECORDS not in place.names()


def test_after_errors_a_link_is_gone_and_its_target_is_empty(place):
    place.put_old("target")
    (place.path / "target").chmod(0o640)
    place.put_link(RECORDS, "target")
    assemble(place, errors=2)
    assert not (place.path / RECORDS).is_symlink()
    assert (place.read("target"), mode(place, "target")) == (b"", 0o640)


def test_after_errors_other_names_of_the_s_record_file_are_empty(place):
    place.put_old(RECORDS)
    os.link(place.path / RECORDS, place.path / "other")
    assemble(place, errors=2)
    assert RECORDS not in place.names()
    assert place.read("other") == b""


# ---- In place ----


@pytest.mark.parametrize("name", OUTPUTS)
@ERRORS
def test_mounted_file_is_written_in_place(place, name, errors):
    before = own_mounts()
    place.put_old("behind", name)
    mount = [*before, "sh", "-c", 'mount --bind behind "$0" && exec "$@"', name]
    assemble(place, errors, before=mount)
    assert place.read("behind") == expected_outputs(errors).get(name, b"")
    assert place.read(name) == OLD


def as_root_only():
    if os.geteuid() != 0:
        pytest.skip("only root can do this")


def as_somebody_else():
    os.setgroups([])
    os.setgid(NOBODY)
    os.setuid(NOBODY)


@pytest.fixture(name="unprivileged")
def options_of_an_unprivileged_run(place):
    """Options for a run without root's rights, in a directory whose files are all root's."""
    if os.geteuid() != 0:
        return {}
    place.path.chmod(0o755)
    options = {"prepare": as_somebody_else}
    try:
        place.run(**options)
    except PermissionError:
        pytest.skip("other users cannot reach the program")
    return options


def put_old_for_everybody(place, *names):
    place.put_old(*names)
    for name in names or OUTPUTS:
        (place.path / name).chmod(0o666)


@contextlib.contextmanager
def nothing_can_be_made(place):
    """Files of the directory may be written, but none be made, renamed or deleted."""
    place.path.chmod(0o555)
    try:
        yield
    finally:
        place.path.chmod(0o755)


def assert_written_in_place(place, errors, **options):
    inodes = {name: status(place, name).st_ino for name in OUTPUTS}
    assemble(place, errors, **options)
    place.assert_outputs({RECORDS: b"", **expected_outputs(errors)})
    assert {name: status(place, name).st_ino for name in OUTPUTS} == inodes
    assert {mode(place, name) for name in OUTPUTS} == {0o666}


@ERRORS
def test_outputs_in_a_closed_directory_are_written_in_place(place, unprivileged, errors):
    put_old_for_everybody(place)
    with nothing_can_be_made(place):
        assert_written_in_place(place, errors, **unprivileged)


@ERRORS
def test_foreign_files_in_a_sticky_directory_are_written_in_place(place, unprivileged, errors):
    as_root_only()
    put_old_for_everybody(place)
    place.path.chmod(0o1777)
    assert_written_in_place(place, errors, **unprivileged)


def test_foreign_s_record_file_in_an_open_directory_keeps_its_owner(place, unprivileged):
    as_root_only()
    put_old_for_everybody(place)
    place.path.chmod(0o777)
    assemble(place, **unprivileged)
    assert status(place, RECORDS).st_uid == 0
    assert {status(place, name).st_uid for name in REPLACING} == {NOBODY}
    place.assert_outputs(WHOLE)


def test_foreign_s_record_file_in_an_open_directory_is_deleted_after_errors(place, unprivileged):
    as_root_only()
    put_old_for_everybody(place)
    place.path.chmod(0o777)
    assemble(place, errors=2, **unprivileged)
    assert RECORDS not in place.names()


def test_new_outputs_in_a_closed_directory_are_left_out_or_refused(place, unprivileged):
    with nothing_can_be_made(place):
        process = place.run(*EVERY_OUTPUT, "prog.szirpa", **unprivileged)
    assert (process.returncode, process.stdout) == (1, place.refusal(RECORDS))
    assert place.names() == ["prog.szirpa"]


@pytest.mark.parametrize("missing", REPLACING)
def test_other_outputs_that_cannot_be_made_are_left_out_silently(place, unprivileged, missing):
    put_old_for_everybody(place, *(name for name in OUTPUTS if name != missing))
    with nothing_can_be_made(place):
        assemble(place, **unprivileged)
    assert missing not in place.names()
    # Without a listing there is no array either, only its empty file.
    expected = {**WHOLE, ARRAY: b""} if missing == LISTING else WHOLE
    place.assert_outputs({name: expected[name] for name in OUTPUTS if name != missing})


def test_s_record_file_that_must_not_be_written_is_refused_in_an_open_directory(
    place, unprivileged
):
    place.put_old()
    (place.path / RECORDS).chmod(0o444)
    place.path.chmod(0o777)
    process = place.run(*EVERY_OUTPUT, "prog.szirpa", **unprivileged)
    assert (process.returncode, process.stdout) == (1, place.refusal(RECORDS))
    place.assert_outputs(dict.fromkeys(OUTPUTS, OLD))
    assert place.temporary_names() == []


def test_root_writes_an_s_record_file_that_others_must_not(place):
    as_root_only()
    place.put_old(RECORDS)
    (place.path / RECORDS).chmod(0o444)
    assemble(place)
    assert mode(place, RECORDS) == 0o444
    place.assert_outputs(WHOLE)


# ---- Directories ----


@pytest.mark.parametrize("name", REPLACING)
def test_directory_of_the_name_leaves_the_output_out(place, name):
    (place.path / name).mkdir()
    assemble(place)
    assert (place.path / name).is_dir()
    without_listing = {ARRAY: b""} if name == LISTING else {}
    place.assert_outputs({**expected_outputs(0, but=[name]), **without_listing})


@pytest.mark.parametrize("name", [RECORDS, "nowhere/out.s19", "sub/"])
def test_s_record_file_that_cannot_be_made_is_refused_and_nothing_is_touched(place, name):
    (place.path / RECORDS).mkdir()
    (place.path / "sub").mkdir()
    place.put_old(*REPLACING)
    process = place.run("-o", name, *EVERY_OUTPUT, "prog.szirpa")
    assert (process.returncode, process.stdout) == (1, place.refusal(name))
    place.assert_outputs(dict.fromkeys(REPLACING, OLD))
    assert place.temporary_names() == []


# ---- Names that are in the way ----


@pytest.mark.parametrize("kind", ["file", "link", "directory"])
def test_what_has_a_temporary_name_already_is_left_alone(place, kind):
    def occupy():
        # A child that becomes the program keeps its number.
        for number in range(10):
            path = place.path / f"HXzirpa-{os.getpid()}-{number}.tmp"
            if kind == "directory":
                path.mkdir()
            elif kind == "link":
                path.symlink_to("victim")
            else:
                path.write_bytes(OLD)

    place.put_old("victim", *OUTPUTS)
    process = place.run(*EVERY_OUTPUT, "prog.szirpa", prepare=occupy)
    assert (process.returncode, process.stdout) == (0, SUMMARY)
    place.assert_outputs(WHOLE)
    assert place.read("victim") == OLD
    occupied = [place.path / name for name in place.temporary_names()]
    assert len(occupied) == 10
    if kind == "file":
        assert all(path.read_bytes() == OLD for path in occupied)
