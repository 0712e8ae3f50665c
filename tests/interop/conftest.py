"""What the interoperability tests are run on."""

import pytest


class Outputs:
    """The files that a subject's run leaves; every subject is run once for all tests."""

    def __init__(self, program, directories):
        self.program = program
        self.directories = directories
        self.known = {}

    def __call__(self, subject):
        key = (subject.identifier, subject.records_name)
        if key not in self.known:
            directory = self.directories.mktemp("run")
            process, files = subject.run(self.program, directory)
            assert process.returncode == 0, process.stdout
            self.known[key] = files
        return self.known[key]

    def records(self, subject):
        return self(subject)[subject.records_name]


@pytest.fixture(scope="session")
def outputs(program, tmp_path_factory):
    return Outputs(program, tmp_path_factory)
