"""What the interoperability tests are run on."""

import pytest
from subjects import find_subjects

# The name of a test's argument says which subjects the test is about.
GROUPS = {
    "subject": lambda subject: True,
    "data_subject": lambda subject: subject.data,
    "narrow_subject": lambda subject: subject.data and subject.is_narrow,
    "array_subject": lambda subject: subject.data and subject.has_array,
}


def pytest_generate_tests(metafunc):
    for name, belongs in GROUPS.items():
        if name in metafunc.fixturenames:
            subjects = [subject for subject in find_subjects() if belongs(subject)]
            metafunc.parametrize(name, subjects, ids=[subject.identifier for subject in subjects])


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
def outputs(request, tmp_path_factory):
    return Outputs(request.config.getoption("--program"), tmp_path_factory)
