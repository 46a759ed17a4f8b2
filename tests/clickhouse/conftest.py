import os
import pathlib
import shutil
import subprocess
import tempfile

import pytest

import cluster as clusters


def folder_in_memory():
    """Where the servers' many small files cost little; nothing when there is no such place."""
    shared = pathlib.Path("/dev/shm")
    roomy = shared.is_dir() and shutil.disk_usage(shared).free > 2 << 30
    return shared if roomy and os.access(shared, os.W_OK) else None


@pytest.fixture(scope="session")
def cluster():
    folder = tempfile.mkdtemp(prefix="kiv_clickhouse_", dir=folder_in_memory())
    started = clusters.Cluster(folder)
    yield started
    started.stop()
    assert not started.is_running(1) and not started.is_running(2)
    assert not os.path.exists(folder)


@pytest.fixture(scope="session")
def sources(tmp_path_factory):
    """Run directories by name, with the CSV tables of kiv beside the traces: the samples, and those of
    make_page_traces."""
    made = tmp_path_factory.mktemp("traces")
    subprocess.run([clusters.BUILD / "tests" / "browser" / "make_page_traces", made], check=True)
    for name in ("MIX", "NEXT", "SQL1"):
        shutil.copytree(clusters.SOURCE / "samples" / name, made / name)
    found = {path.name: path for path in sorted(made.iterdir()) if path.is_dir()}
    for path in found.values():
        subprocess.run([clusters.KIV, "-R", path.name], cwd=made, check=True, capture_output=True)
    return found


@pytest.fixture(scope="session")
def both(cluster, sources, tmp_path_factory):
    """The same runs in a file and on the cluster, asked through its second server by a user who may
    only read: (file, URL)."""
    file = tmp_path_factory.mktemp("sqlite") / "runs.db"
    cluster.setup("kiv")
    for name, path in sources.items():
        labels = ("--label", f"release={len(name)}.0", "--label", "odd=it's\t\\ \n=x")
        rows = ("--rows",) if name in ("MIX", "NEXT", "SQL1") else ()
        for target in (("-o", file), ("--to", cluster.url(1))):
            clusters.kivdb("import", path, *target, *labels, *rows)
    shards = {cluster.shard_of(name) for name in sources}
    assert shards == {1, 2}, "the runs must lie on both shards"
    return file, cluster.url(2, user="READER")
