"""The runs that faults are injected into: golden cases, some with old outputs or from a pipe, and
runs made here for what no golden case holds."""

import dataclasses
import os

from golden_case import GoldenCase

OLD_OUTPUT = b"old\n"


@dataclasses.dataclass
class Scenario:
    """What a run begins with: files, links and directories, arguments and standard input."""

    identifier: str
    files: dict
    arguments: list
    source: bytes  # as the command line names it
    standard_input: bytes | None = None
    links: dict = dataclasses.field(default_factory=dict)
    directories: list = ()
    with_old_outputs: bool = False
    case: GoldenCase | None = None  # whose expectations hold
    closed: tuple = ()  # standard descriptors

    def prepare(self, directory, old_outputs=()):
        for name in self.directories:
            (directory / name).mkdir(parents=True, exist_ok=True)
        for name, content in self.files.items():
            path = directory / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(content)
        for name, target in self.links.items():
            (directory / name).symlink_to(target)
        for name in old_outputs:
            (directory / name).write_bytes(OLD_OUTPUT)


def source_of(arguments):
    """The first argument that is neither an option nor the value of one."""
    waiting = False
    for argument in arguments:
        if waiting or argument in (b"-o", b"-d", b"-D", b"-I", b"-C"):
            waiting = not waiting
        elif not argument.startswith(b"-"):
            return argument
    return b""


def golden(identifier, old=False):
    case = GoldenCase(*identifier.split("/"))
    arguments = case.arguments()
    return Scenario(
        identifier + ("+old" if old else ""),
        case.inputs(),
        arguments,
        source_of(arguments),
        directories=case.input_directories(),
        with_old_outputs=old,
        case=case,
    )


def piped(identifier, *options):
    case = GoldenCase(*identifier.split("/"))
    return Scenario(
        identifier + "+pipe",
        {},
        [*options, b"/dev/stdin"],
        b"/dev/stdin",
        standard_input=case.file(".szirpa"),
    )


def with_options(identifier, *options):
    case = GoldenCase(*identifier.split("/"))
    source = os.fsencode(case.stem + ".szirpa")
    return Scenario(
        identifier + b"".join(options).decode(), case.inputs(), [*options, source], source
    )


def made(identifier, source, *options, **more):
    name = b"prog.szirpa"
    return Scenario("made/" + identifier, {"prog.szirpa": source}, [*options, name], name, **more)


# More bytes than one buffer of any output holds.
LARGE = b" ORG $10\n" + b" RMB $1000\n" * 9 + b" FCB 1,2,3\n"

SCENARIOS = [
    # Every output, alone and together.
    golden("debug/all_options_at_once"),
    golden("debug/all_options_at_once", old=True),
    golden("listing/symbol_table_follows_the_last_line", old=True),
    golden("records/c_array_of_17_bytes", old=True),
    golden("records/c_array_without_a_listing_stays_empty", old=True),
    golden("records/full_record_ahead_of_an_origin"),
    golden("command_line/debugger_records_follow_the_end_record", old=True),
    golden("debug/func_with_a_missing_label"),
    golden("command_line/output_name_unquoted_ends_at_blank", old=True),
    golden("command_line/output_in_subdirectory_listing_and_script_in_working_directory"),
    golden("command_line/last_output_name_wins"),
    golden("listing/listing_takes_its_name_from_the_output", old=True),
    golden("command_line/c_array_that_cannot_be_created_is_left_out_silently"),
    golden("command_line/listing_that_cannot_be_created_is_left_out_silently"),
    # Messages.
    golden("listing/messages_stand_before_their_line", old=True),
    golden("command_line/errors_leave_listing_c_array_and_script", old=True),
    golden("diagnostics/summary_counts_errors_and_warnings"),
    golden("diagnostics/several_warnings_a_line"),
    golden("diagnostics/255_errors_are_the_exit_status"),
    golden("diagnostics/256_errors_exit_with_zero", old=True),
    golden("debug/sym_of_an_unknown_kind"),
    golden("conditionals/elif_after_else_is_reported_and_carried_out"),
    golden("symbols/nocase_multiple_definition"),
    golden("symbols/table_is_in_hash_order"),
    golden("expressions/many_symbols_in_one_expression"),
    golden("expressions/deep_parentheses"),
    # Command lines.
    golden("command_line/no_arguments_print_usage"),
    golden("command_line/options_without_source_end_silently"),
    golden("command_line/compatibility_option_without_argument_is_unknown"),
    golden("command_line/unknown_options_are_named_whole"),
    golden("command_line/missing_source_cannot_be_opened"),
    golden("command_line/directory_as_source_cannot_be_opened"),
    golden("command_line/defined_symbols_are_zero"),
    golden("source/first_matching_include_directory_wins"),
    golden("source/working_directory_comes_before_include_directories"),
    golden("source/include_directory_is_probed_with_a_backslash_and_opened_with_a_slash"),
    # Sources.
    golden("source/empty_file_lists_the_header_alone"),
    golden("source/rest_of_a_too_long_line_is_a_line_of_its_own"),
    piped("debug/all_options_at_once", b"-L", b"-S", b"-g", b"-A"),
    piped("diagnostics/summary_counts_errors_and_warnings", b"-w"),
    piped("symbols/table_holds_39800_names"),
    # Outputs that must not be written.
    golden("command_line/output_that_is_a_directory_is_fatal"),
    golden("command_line/output_option_naming_the_source_in_another_spelling_is_refused"),
    golden("command_line/source_named_as_its_s_record_file_is_kept"),
    golden("command_line/source_named_as_its_listing_is_kept"),
    golden("command_line/source_named_as_its_c_array_is_kept"),
    golden("command_line/s_record_file_and_listing_in_one_name_are_refused"),
    made("link_to_the_source", b" FCB 1\n", links={"prog.s19": "prog.szirpa"}),
    made("dangling_links_that_meet", b" FCB 1\n", b"-L", links={"prog.s19": "prog.lst"}),
    made("dangling_link", b" FCB 1\n", b"-L", links={"prog.s19": "other.s19"}),
    made("link_to_an_old_file", b" FCB 1\n", links={"prog.s19": "other.s19"}, with_old_outputs=True),
    made("link_and_an_error", b" LDA #300\n", links={"prog.s19": "other.s19"}, with_old_outputs=True),
    # Standard streams that are not there.
    made("closed_input", b" FCB 1\n", b"-L", closed=(0,)),
    made("closed_output", b" FCB 1\n", b"-L", closed=(1,)),
    made("closed_input_and_output", b" FCB 1\n", b"-L", closed=(0, 1), with_old_outputs=True),
    made("closed_streams", b" LDA #300\n", b"-L", b"-A", closed=(0, 1, 2)),
    # More than a buffer, a block of symbols or the whole table holds.
    made("large_outputs", LARGE, b"-L", b"-A"),
    made("large_outputs_with_an_error", LARGE + b" LDA #300\n", b"-L", b"-A"),
    with_options("symbols/table_holds_39800_names", b"-S"),
    golden("symbols/label_39801_ends_the_run"),
    golden("symbols/equ_name_39801_ends_the_run_before_any_output"),
]

