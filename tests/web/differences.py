"""Where the program under node can't do what it does on its own; docs/web.md tells users of it.

Each row: tests by their names, what is expected of them, the reason. FAILS: they fail under node, and
have to be taken out of here when they do not. NOT_RUN: node's own part in them leaves nothing to
compare."""

import re

import pytest

FAILS = {"strict": True}
NOT_RUN = {"run": False}

CLOSED = "node opens /dev/null for a closed descriptor, so writing there succeeds"
SIGNAL = "a signal ends node at once, so that temporary files stay"
IGNORED = "node gives signals back the effects that they have by default"
TERMINAL = "node itself asks whether its streams are terminals"
CALLS = "most of the calls are node's own, some of them of other threads"

ROWS = [
    (r"messages_go_where_they_belong(_after_errors)?\[[a-z]+-closed-", FAILS, CLOSED),
    (r"closed_standard_output_has_failed_when.*\[arguments[013]-1-", FAILS, CLOSED),
    (r"many_messages_to_closed_standard_output_land_in_no_output", FAILS, CLOSED),
    (r"output_onto_closed_standard_output_goes_to_the_null_device", FAILS, CLOSED),
    (r"ending_signal_ends_the_run_and_leaves_no_temporary_name", FAILS, SIGNAL),
    (r"output_beside_a_link_target_has_its_temporary_name_there\[TERM\]", FAILS, SIGNAL),
    (r"nobody_asks_for_a_terminal_when_all_bytes_are_harmless", FAILS, TERMINAL),
    (r"the_question_is_asked_once_when_a_control_byte_is_written", FAILS, TERMINAL),
    (r"signal_that_is_ignored_from_the_start_stays_ignored", NOT_RUN, IGNORED),
    (r"blocked_signal_stays_blocked", NOT_RUN, IGNORED),
    (r"run_that_is_(killed|terminated)_at_any_system_call", NOT_RUN, CALLS),
]


def mark(items):
    for item in items:
        for pattern, expectation, reason in ROWS:
            if re.search(pattern, item.name):
                item.add_marker(pytest.mark.xfail(**expectation, reason=reason))
