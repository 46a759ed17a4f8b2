import subprocess

import pytest

import page


@pytest.fixture(scope="session")
def sources(tmp_path_factory):
    """Run directories by name: the samples, and those of make_page_traces."""
    made = tmp_path_factory.mktemp("traces")
    subprocess.run([page.BUILD / "tests" / "browser" / "make_page_traces", made], check=True)
    return {path.name: path for folder in (page.SAMPLES, made) for path in folder.iterdir() if path.is_dir()}


@pytest.fixture(scope="session")
def written(sources, tmp_path_factory):
    """Pages, each written once: `written("MIX", "NEXT")`."""
    folder = tmp_path_factory.mktemp("pages")

    def write(*runs, options=()):
        path = folder / ("-".join((*runs, *options)) + ".html")
        if not path.exists():
            subprocess.run([page.KIVDB, "html", *options, *(sources[run] for run in runs), "-o", path], check=True)
        return path

    return write


@pytest.fixture(scope="session")
def reported(sources):
    """What `kivdb report --json` says of a run: `reported("MIX")`."""
    known = {}

    def read(run, *options):
        if (run, *options) not in known:
            known[(run, *options)] = page.report(sources[run], *options)
        return known[(run, *options)]

    return read


@pytest.fixture(scope="session")
def browser():
    started = page.start_browser()
    yield started
    started.quit()


@pytest.fixture
def open_page(browser, written):
    def open_it(*runs, options=(), **how):
        return page.Page(browser, written(*runs, options=options), **how)

    return open_it
