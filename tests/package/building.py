"""The build directory that the tests install and package from, and the tools they need."""

import pathlib

import running

ROOT = pathlib.Path(__file__).resolve().parents[2]


def build_directory(request):
    """The directory of the program under test."""
    directory = pathlib.Path(request.config.getoption("--program")).parent
    assert (directory / "CPackConfig.cmake").is_file(), f"{directory} is no build directory"
    return directory


def run(*command, **options):
    """Runs a command that must succeed; returns what it has printed."""
    return running.printed_by(*command, umask=0o022, **options)


def below(directory, *patterns):
    """The files below a directory of the source tree that match, relative to it."""
    paths = (path for pattern in patterns for path in directory.rglob(pattern))
    return {str(path.relative_to(directory)) for path in paths}


def expected_files():
    """All files of an installation, relative to its prefix."""
    documents = {"README.md", "CONTRIBUTING.md"} | {
        f"{name}/{path}" for name in ("docs", "editors") for path in below(ROOT / name, "*.md")
    }
    documents |= {f"docs/{path}" for path in below(ROOT / "docs", "*.svg", "*.png")}
    assert len(documents) >= 10
    examples = below(ROOT / "examples", "*.szirpa", "*.c", "CMakeLists.txt")
    assert len(examples) >= 8
    vim = below(ROOT / "editors" / "vim", "*.vim")
    parts = {path.partition("/")[0] for path in vim}
    assert parts == {"ale_linters", "compiler", "ftdetect", "ftplugin", "syntax"}
    neovim = below(ROOT / "editors" / "neovim", "*.lua") | {
        path for path in vim if not path.startswith("ale_linters/")
    }
    module = ("HXzirpaProgram.cmake", "HXzirpaConfig.cmake", "HXzirpaConfigVersion.cmake")
    return {
        "bin/HXzirpa",
        "bin/zirpa",
        "share/man/man1/zirpa.1.gz",
        "share/bash-completion/completions/zirpa",
        "share/zsh/vendor-completions/_zirpa",
        "share/fish/vendor_completions.d/zirpa.fish",
        "share/doc/hxzirpa/zirpa/diagnostics.schema.json",
        "share/doc/hxzirpa/zirpa/project.schema.json",
        "share/doc/hxzirpa/docs/flow.svg",
        "share/man/man1/HXzirpa.1.gz",
        "share/man/man5/HXzirpa.5.gz",
        "share/bash-completion/completions/HXzirpa",
        "share/zsh/vendor-completions/_HXzirpa",
        "share/fish/vendor_completions.d/HXzirpa.fish",
        *(f"share/cmake/HXzirpa/{name}" for name in module),
        *(f"share/doc/hxzirpa/{name}" for name in documents),
        "share/doc/hxzirpa/changelog.gz",
        "share/doc/hxzirpa/copyright",
        *(f"share/doc/hxzirpa/examples/{name}" for name in examples),
        *(f"share/vim/vimfiles/{name}" for name in vim),
        *(f"share/nvim/site/{name}" for name in neovim),
        "share/emacs/site-lisp/szirpa-mode.el",
    }
