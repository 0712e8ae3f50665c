"""How many injections were made is part of the result."""


def pytest_terminal_summary(terminalreporter):
    from injection import performed

    terminalreporter.write_line(f"{performed.total()} injections in {len(performed)} runs")
