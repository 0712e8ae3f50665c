"""The example tests run once for each example, or for each source."""


def pytest_generate_tests(metafunc):
    from example_case import find_examples, find_sources

    if "example" in metafunc.fixturenames:
        examples = find_examples()
        ids = [example.identifier for example in examples]
        metafunc.parametrize("example", examples, ids=ids)
    if "source" in metafunc.fixturenames:
        sources = find_sources()
        metafunc.parametrize("source", sources, ids=[source.stem for source in sources])
