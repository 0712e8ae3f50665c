"""The worked examples of the rules, each computed by hand, against the model."""

import subprocess
import sys
from pathlib import Path

import pytest

sys.path.insert(0, str(Path(__file__).parent))

from zirpa_model import run  # noqa: E402
from zirpa_tables import (  # noqa: E402
    FilenameFromPath, RemoveExtension, ascii_to_number, copyquotedopt, line_divided,
    makePathAbsoluteUX)


def assemble(source, *options, name=b"p.szirpa"):
    return run([b"HXzirpa", *options, name], {name: source}, b"/w")


def code(source, *options):
    """The data bytes of the S-records, in order."""
    result = assemble(source, *options)
    assert b"p.s19" in result.files, result.stdout
    records = result.files[b"p.s19"].split(b"\n")
    return b"".join(bytes.fromhex(r[8:-2].decode()) for r in records if r.startswith(b"S1"))


def messages(source, *options):
    """The texts of the reports on standard output, with their line numbers."""
    lines = assemble(source, b"-w", *options).stdout.split(b"\n")
    return [line[len(b"/w/p.szirpa "):] for line in lines if line.startswith(b"/w/p.szirpa ")]


def error(line, text):
    return b"(%d) Error: %s" % (line, text)


def warning(line, text):
    return b"(%d) Warning: %s" % (line, text)


def listing(source, *options):
    """The listing without its header."""
    text = assemble(source, b"-L", *options).files[b"p.lst"]
    return text.split(b"File: p.lst\n")[1].split(b"\n")


# Records

def test_two_bytes_at_16_make_one_record_and_an_end_record():
    result = assemble(b" ORG 16\n LDA #5\n")
    assert result.files[b"p.s19"] == b"S1050010F005F5\nS9030010EC\n"


def test_first_record_begins_where_pass_1_ended():
    result = assemble(b" FCB 1,2\n")
    assert result.files[b"p.s19"] == b"S10500020102F5\nS9030002FA\n"


def test_31_bytes_make_two_records():
    result = assemble(b" ORG 0\n RMB 31\n")
    assert result.files[b"p.s19"].split(b"\n")[:2] == [
        b"S1210000" + b"00" * 30 + b"DE", b"S104001E00DD"]


def test_high_addresses_take_wider_records_whatever_the_option_says():
    assert assemble(b" ORG $12345\n NOP\n", b"-S1").files[b"p.s19"].startswith(b"S20501234500")
    assert assemble(b" ORG $100\n NOP\n", b"-S3").files[b"p.s19"].startswith(b"S104010000")


def test_origin_without_code_writes_no_empty_record():
    assert assemble(b" ORG $20\n ORG $30\n").files[b"p.s19"] == b"S9030020DC\n"


def test_c_array_rows_hold_sixteen_values():
    sixteen = assemble(b" RMB 16\n", b"-A", b"-L").files[b"p_cout.c"]
    assert sixteen.endswith(b"0x00,\n};\n")
    assert assemble(b" RMB 17\n", b"-A", b"-L").files[b"p_cout.c"].endswith(b",\n0x00\n};\n")


def test_c_array_without_listing_is_an_empty_file():
    assert assemble(b" NOP\n", b"-A").files[b"p_cout.c"] == b""


def test_script_sets_every_byte():
    assert assemble(b" ORG 16\n LDA #5\n").files[b"p.fmem"] == (
        b"HXzirpa - ZIRPA Absolute crossassembler, Version 1.3\n"
        b"Free software under the MIT License.\nFile: p.fmem\n\n # ClearAllMemory\n"
        b" # ClearAllRegisters\n #setMemory  10=F0\n #setMemory  11=05")


# Command line

def test_no_arguments_print_the_usage():
    result = run([b"HXzirpa"], {}, b"/w")
    assert result.status == 0
    assert result.stdout.startswith(
        b"HXzirpa - ZIRPA Absolute crossassembler, Version 1.3\nFree software")
    assert result.stdout.endswith(b"directives OFF\n")


@pytest.mark.parametrize("options, printed", [
    ([b"-x"], b"HXzirpa: Unknown option 'x' is ignored.\n"),
    ([b"-ofoo"], b"HXzirpa: Unknown option 'ofoo' is ignored.\n"),
    ([b"-"], b"HXzirpa: Unknown option '' is ignored.\n"),
    ([b"-C", b"notrad"],
     b"HXzirpa: Unknown compatibility option -C 'notrad' is ignored.\n"),
    ([b"-C", b"nonative"], b""),
])
def test_odd_options_are_told_and_assembly_goes_on(options, printed):
    assert assemble(b" NOP\n", *options).stdout == printed + b"-- No errors.\n"


def test_option_without_its_argument_ends_the_run():
    result = run([b"HXzirpa", b"-o"], {}, b"/w")
    assert (result.status, result.stdout) == (0, b"HXzirpa: Unknown option 'o' is ignored.\n")


def test_missing_source_cannot_be_opened():
    result = run([b"HXzirpa", b"no.szirpa"], {}, b"/w")
    assert (result.status, result.stdout) == (1, b"HXzirpa: Can't open 'no.szirpa'\n")


def test_output_name_leads_the_other_names_but_the_script():
    files = {b"src/a.szirpa": b" NOP\n", b"out/": b""}
    result = run([b"HXzirpa", b"-L", b"-o", b"out/prog.s19", b"src/a.szirpa"], files, b"/w")
    assert sorted(result.files) == [b"a.fmem", b"out/prog.s19", b"prog.lst"]


def test_output_in_a_missing_directory_is_fatal():
    result = assemble(b" NOP\n", b"-o", b"no/x.s19")
    assert result.status == 1
    assert result.stdout == (
        b"/w/p.szirpa (0)Fatal error: Cannot create output fil 'no/x.s19'\n")


def test_clean_run_with_warnings_on_prints_no_dashes():
    assert assemble(b" NOP\n", b"-w").stdout == b"No errors.\n"


def test_errors_delete_the_records_but_not_the_listing():
    result = assemble(b" BAD\n", b"-L")
    assert sorted(result.files) == [b"p.fmem", b"p.lst"]
    assert result.status == 1
    assert result.stdout.endswith(b"-- 1 error(s).\n")
    assert result.files[b"p.lst"].endswith(b"\n\n****** Total Errors: 1\n")


# Reports

def test_first_plain_error_of_a_line_is_the_only_one():
    assert messages(b" LDA #12AB\n LDA 12AB\n") == [
        error(1, b"Illegal decimal digit"),
        error(1, b"Unterminated expression, Position[6]"),
        error(2, b"Illegal decimal digit")]


def test_second_phase_error_swallows_the_rest():
    source = b"L NOP\n NOP\nL NOP\nM NOP\nN NOP\n BAD\n"
    assert messages(source) == [
        error(1, b"Multiple definition"), error(3, b"Multiple definition"),
        error(4, b"Phase error between passes")]


def test_line_of_4093_characters_and_a_newline_is_too_long():
    assert messages(b";" * 4093 + b"\n") == [warning(1, b"Source line is to long")]
    assert messages(b";" * 4092 + b"\n") == []


# Lines

def test_label_with_and_without_colon():
    assert code(b"LOOP: NOP\n BRA LOOP\n") == code(b"LOOP NOP\n BRA LOOP\n") == b"\0\x21\xfd"


def test_label_alone_takes_the_location_counter():
    assert code(b" NOP\nHERE\n LDA #HERE\n") == b"\0\xf0\1"


def test_label_past_128_characters_goes_on_as_operation():
    assert messages(b"L" * 128 + b"NOP\n") == []
    assert code(b"L" * 128 + b"NOP\n") == b"\0"


@pytest.mark.parametrize("line, text", [
    (b"1ABC NOP", b"Illegal label"),
    (b" LDA,5", b"Illegal mnemonic"),
    (b"#if 1", b"Illegal label"),
    (b" #if 1", b"Illegal mnemonic"),
    (b" FDB 1", b"Illegal mnemonic"),
    (b"X EQU", b"Unterminated expression, Position[6]"),
    (b" EQU 5", b'No label for "equ"'),
    (b" ORG", b"Unterminated expression, Position[5]"),
    (b" LDA #", b"Unterminated expression, Position[6]"),
])
def test_faulty_lines(line, text):
    assert messages(line + b"\n") == [error(1, text)]


def test_crlf_is_read_as_lf():
    assert listing(b" NOP\r\n")[0] == b"00 00" + b" " * 15 + b"    1.  NOP"


# Instructions

@pytest.mark.parametrize("text, expected", [
    (b"LDA #5", "F005"), (b"lDa ,x+", "F5"), (b"CLR 10,SP", "450A"), (b"CLR A,Y", "85"),
    (b"LEAX 4,SP", "DC04"), (b"LEAY 4,Y", "CD04"), (b"LDA #-200", "F038"),
    (b"TFR X,Y", "1A"), (b"EXG SP,Y", "CF"), (b"NOP FOO", "00"),
    (b"LDA #$FF", "F0FF"), (b"LDA ,-X", "F8"), (b"PSHCC", "13"), (b"ANDCC #3", "0103"),
])
def test_encodings(text, expected):
    assert code(b" " + text + b"\n") == bytes.fromhex(expected)


@pytest.mark.parametrize("text, message", [
    (b"STA #5", b"Illegal Addressing Mode"), (b"JMP 3,SP", b"Illegal Addressing Mode"),
    (b"LEAX 4,Y", b"Illegal Addressing Mode"), (b"LDA #300", b"Value (0x12C) is truncated"),
    (b"BRA #5", b"Illegal addressing mode"), (b"BRA 5,X", b"Illegal addressing mode"),
    (b"BRA", b"Bad operand syntax"), (b"TFR A,X", b"Illegal register combination"),
    (b"TFR A", b"Bad register pair"), (b"LDA ,X", b"Syntax Error"), (b"LDA X+", b"Syntax Error"),
    (b"LDA 5,A", b"Syntax Error"), (b"LDA 10,X;", b"Syntax Error"),
    (b"BRA 130", b"Displacement (0x80) is out of range"),
])
def test_instruction_faults(text, message):
    assert messages(b" " + text + b"\n") == [error(1, message)]


def test_branch_is_measured_from_the_next_instruction():
    assert code(b" ORG 10\n BRA 12\n ORG 10\n BRA 8\n") == b"\x21\0\x21\xfc"


# Expressions

@pytest.mark.parametrize("text, value", [
    (b"2+3*4", 14), (b"2*3+4", 10), (b"1+6<<1", 14), (b"1+4&6", 4), (b"1+7%4", 0),
    (b"1+7%%100", 4), (b"8/2*2", 2), (b"2*8/4", 4), (b"1==1+1", 2), (b"-2*3", -6),
    (b"5-2-1", 2), (b"(1+)", 1), (b"()", 0), (b"3-(1+1)", 1), (b"-(2)", -2), (b"~0", -1),
    (b"!5", 0), (b"1==1", 1), (b"2+(3)*4", 20), (b"$FFFFFFFF", -1), (b"4294967296", 0),
    (b"'A'", 65), (b"'\xe9'", -23), (b"5%2", 1), (b"%101", 5), (b"0017", 17),
    (b"10%0", 0), (b"10%0+5", 5), (b"-7/2", -3), (b"($7FFFFFFF+1)>>31", 1),
    (b"(" * 2000 + b"1" + b")" * 2000, 1),
])
def test_values(text, value):
    assert code(b" FCB " + text + b"\n") == bytes([value & 0xFF])


@pytest.mark.parametrize("text, message", [
    (b"(1+2", b"Missing Parenthesis, Position[9]"),
    (b"1+2)", b"Unexpected Parenthesis, Position[8]"),
    (b"1+", b"Unterminated expression, Position[7]"),
    (b"1(2)", b"Missing Parenthesis, Position[6]"), (b"+1", b"Operand expected, Position[5]"),
    (b"A", b"Illegal use of reserved word, Position[5]"),
    (b"(A)", b"Missing Parenthesis, Position[6]"),
    (b"1<2", b"Reached unreacheable point in Parser..P0"),
    (b"10/0", b"Integer divide by zero"), (b"'ab", b"Illegal character, Position[5]"),
    (b"NOWHERE", b"Undefined symbol 'NOWHERE'"), (b"1;2", b"Bad delimiter"),
])
def test_expression_faults(text, message):
    assert messages(b" FCB " + text + b"\n") == [error(1, message)]


@pytest.mark.parametrize("text, message", [
    (b"$", b"Illegal hexadecimal digit"), (b"%", b"Illegal binary digit"),
    (b"12AB", b"Illegal decimal digit"), (b"%2", b"Illegal binary digit"),
    (b"1+7%%4", b"Illegal binary digit"), (b"$1G", b"Illegal hexadecimal digit"),
])
def test_digit_faults_draw_two_messages(text, message):
    first, second = messages(b" FCB " + text + b"\n")
    assert first == error(1, message)
    assert second.startswith(b"(1) Error: Unterminated expression, Position[")


def test_division_by_zero_goes_on_to_the_end():
    assert listing(b" FCB 10/0+5\n")[1].startswith(b"00 05 ")


# Symbols

def test_symbol_table_is_in_hash_order():
    result = assemble(b"BA NOP\nAB NOP\nA1 NOP\n", b"-S")
    assert result.stdout.startswith(
        b"\n--\tSYMBOL TABLE:\n--\tVALUE   \tSYMBOL \n\t0002\tA1\n\t0000\tBA\n\t0001\tAB\n")


def test_nocase_makes_one_name_of_two():
    assert b"\tLOOP\n" in assemble(b"Loop NOP\n BRA LOOP\n", b"-S", b"-C", b"nocase").stdout
    assert messages(b"Loop NOP\n BRA LOOP\n")[0] == error(2, b"Undefined symbol 'LOOP'")


def test_name_39801_overflows():
    source = b"".join(b"N%d EQU 0\n" % n for n in range(39801))
    result = assemble(source)
    assert result.status == 255
    assert result.stdout == b"(F1010) Symbol table overflow\nTerminated due to fatal error(s)"
    assert assemble(source[:source.rindex(b"N")]).status == 0


# Directives

def test_equ_again_with_the_same_and_with_another_value():
    assert messages(b"X EQU 5\nX EQU 5\n") == [
        error(2, b"symbol 'X' previously defined at line 1")]
    assert messages(b"X EQU 5\nX EQU 6\n") == [
        error(2, b"symbol 'X' previously defined at line 1"),
        error(2, b"symbol 'X' redefined at line 2")]


def test_equ_behind_its_first_use_in_an_equ_draws_the_warning():
    assert messages(b"Q EQU W\nW EQU 5\n") == [
        warning(2, b"symbol 'W' is forward referenced from line 1")]
    assert messages(b" LDA #W\nW EQU 5\n") == []


def test_equ_behind_end_counts():
    assert code(b" LDA #W\n END\nW EQU 5\n") == b"\xf0\5"


def test_origin_needs_a_known_value():
    assert messages(b" ORG later\nlater NOP\n") == [error(1, b"Forward reference")]
    assert messages(b" ORG nowhere\n") == [error(1, b"Undefined symbol 'nowhere'")]


def test_label_on_an_origin_takes_the_new_address():
    assert code(b"L ORG 7\n LDA #L\n") == b"\xf0\7"


def test_end_names_the_entry():
    end = assemble(b" ORG 4\n NOP\nmain NOP\n END main+2\n").files[b"p.s19"].split(b"\n")[-2]
    assert end == b"S9030005F7"
    assert messages(b" END nosuch\n") == [warning(1, b"start symbol 'nosuch' is defined")]


def test_end_with_an_unreadable_operand_goes_on_in_the_final_pass():
    assert code(b" END ;x\n FCB 9\n") == b"\x09"


@pytest.mark.parametrize("text, expected", [
    (b'"AB"', b"AB"), (b'"A\\tB"', b"A\x0bB"), (b'"\\0"', b"\0"), (b'"\\65"', b"\x065"),
    (b'"\\q"', b"q"), (b'"""', b'"'),
])
def test_strings(text, expected):
    assert code(b" FCS " + text + b"\n") == expected


def test_unclosed_string_emits_its_newline():
    assert messages(b' FCS ""\n') == [error(1, b"Bad operand syntax")]
    assert listing(b' FCS ""\n')[1].startswith(b"00 22 0A    ")
    assert listing(b" FCS 'a'\n")[1].startswith(b"00       ")


def test_reserving_nothing_is_an_error():
    assert messages(b" RMB 0\n") == [
        error(1, b"Undetermined size for reservation of storage")]


def test_reserving_100000_bytes():
    assert len(code(b" ORG 0\n RMB 65536\n")) == 65536
    assert assemble(b" RMB 100000\n").status == 0


# Conditional assembly

def test_ifdef_takes_one_branch():
    source = b"%s#ifdef X\n FCB 1\n#else\n FCB 2\n#endif\n"
    assert code(source % b"#define X\n") == b"\1"
    assert code(source % b"") == b"\2"
    assert code(source % b"", b"-DX") == b"\1"


def test_nested_conditional_in_a_skipped_region_changes_nothing():
    assert code(b"##if 0\n#ifdef X\n FCB 1\n#else\n FCB 2\n#endif\n#endif\n FCB 3\n") == b"\3"


def test_twentieth_level_is_too_deep_and_still_balances():
    def nested(depth):
        return b"#define X\n" + b"#ifdef X\n" * depth + b"#endif\n" * depth + b" FCB 1\n"
    assert code(nested(19)) == b"\1"
    assert messages(nested(20)) == [error(21, b"#if too deeply nested")]


@pytest.mark.parametrize("source, expected", [
    (b"#endif\n", [error(1, b"#endif with no #if")]),
    (b"#else\n", [error(1, b"#else with no #if")]),
    (b"#elif X\n", [error(1, b"#elif with no #if")]),
    (b"#error oops\n", [error(1, b"Message Directive")]),
    (b"##if 0\n#error oops\n#endif\n", []),
    (b"#define F(a) a\n", [warning(1, b"Macro Expansions is NOT supported, 'define' igored")]),
    (b"#define X 5\n#define X 5\n", [warning(2, b"symbol 'X' previously defined at line 1")]),
    (b"#define X 5\n#define X 6\n", [warning(2, b"symbol 'X' previously defined at line 1"),
                                     error(2, b"symbol 'X' redefined at line 2")]),
    (b"#ifndef W\nW EQU 5\n#endif\n LDA #W\n", [error(4, b"Undefined symbol 'W'")]),
    (b"##if\n#endif\n", [error(1, b"Unterminated expression, Position[5]")]),
])
def test_conditional_reports(source, expected):
    assert messages(source) == expected


def test_elif_tests_definedness():
    assert code(b"Y EQU 0\n##if 0\n FCB 1\n#elif Y\n FCB 2\n#else\n FCB 3\n#endif\n") == b"\2"


# Listing

def test_line_that_starts_skipping_shows_the_address_of_the_line_before():
    lines = listing(b" ORG 5\n NOP\n#ifdef Q\n FCB 1\n#endif\n")
    assert lines[2:5] == [b"05 00" + b" " * 15 + b"    2.  NOP",
                          b"05" + b" " * 18 + b"    3. #ifdef Q",
                          b"  " + b" " * 18 + b"    5. #endif"]


def test_twelve_bytes_are_followed_by_a_blank_line():
    lines = listing(b" FCB 1,2,3,4,5,6,7,8,9,10,11,12\n")
    assert lines[1] == b"     07 08 09 0A 0B 0C"
    assert lines[2] == b" " * 22


def test_seven_bytes_take_two_lines():
    lines = listing(b' FCS "ABCDEFG"\n')
    assert lines[0] == b'00 41 42 43 44 45 46    1.  FCS "ABCDEFG"'
    assert lines[1] == b"     47" + b" " * 15
    assert lines[2] == b'---- File: "p.szirpa"'


def test_comments_equ_and_blank_lines():
    assert listing(b";c\n ;c\n\n \nX EQU $1234\n")[:6] == [
        b"  " + b" " * 18 + b"    1. ;c", b'---- File: "p.szirpa"',
        b"00" + b" " * 18 + b"    2.  ;c", b"  " + b" " * 18 + b"    3. ",
        b"00" + b" " * 18 + b"    4.  ", b"34" + b" " * 18 + b"    5. X EQU $1234"]


# Debug records

def test_debug_records_follow_the_end_record():
    source = b" ORG $100\nL NOP\n.stab type x:y+\nmore\n.stab func L:1:2:3:L:L:L\n"
    assert assemble(source, b"-g").files[b"p.s19"].split(b"\n")[2:] == [
        b"SX:C:s:start", b"SY:C:X:p.szirpa:2:1::100", b"ST:p.szirpa:x:y+more",
        b"SY:C:f:p.szirpa::L:1:2:3:00000100:00000100:000000FF", b""]


def test_debug_value_of_minus_one_shows_sixteen_digits():
    source = b"M EQU -1\n.stab sym v a:M:7:rest\n.stab sym V a:M:x:rest\n"
    result = assemble(source, b"-g", b"-w")
    assert b"SY:C:S:v:p.szirpa::a:M:FFFFFFFFFFFFFFFF:7:rest\n" in result.files[b"p.s19"]
    assert b"(3) Warning: Warning: Bad line number in symdebug info\n" in result.stdout


# Small functions

def test_numbers_that_name_their_own_base():
    assert [ascii_to_number(text) for text in (
        b"0x10", b"0X10", b"010", b"-5", b"-$5", b"12:", b"")] == [
            16, None, 10, 0xFFFFFFFB, None, 12, None]


def test_paths():
    assert makePathAbsoluteUX(b"/w", b"/home/u/src/../inc/./x.szirpa") == b"/home/u/inc/x.szirpa"
    assert makePathAbsoluteUX(b"/w", b"lib/../a.szirpa") == b"/w/a.szirpa"
    assert makePathAbsoluteUX(b"/w", b"a//b") == b"/w/a/b"
    assert FilenameFromPath(b"a\\b/c") == FilenameFromPath(b"a/b\\c") == b"c"
    assert [RemoveExtension(n) for n in (b"prog.szirpa", b".hidden", b"dir.old/prog")] == [
        b"prog", b".hidden", b"dir"]


def test_text():
    assert copyquotedopt(b'"my dir"') == b"my dir"
    assert copyquotedopt(b"my dir") == b"my"
    assert line_divided(b"a+\n") and not line_divided(b"a+")


def test_command_writes_its_outputs_and_exits_with_the_errors(tmp_path):
    (tmp_path / "a.szirpa").write_bytes(b" BAD\n")
    (tmp_path / "a.s19").write_bytes(b"old")
    model = Path(__file__).parent / "zirpa_model.py"
    done = subprocess.run([sys.executable, str(model), "a.szirpa"], cwd=tmp_path,
                          stdout=subprocess.PIPE, check=False)
    assert done.returncode == 1
    assert done.stdout.endswith(b"a.szirpa (1) Error: Illegal mnemonic\n-- 1 error(s).\n")
    assert sorted(p.name for p in tmp_path.iterdir()) == ["a.fmem", "a.szirpa"]
