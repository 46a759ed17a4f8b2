"""Two servers of scripts/clickhouse.sh, and kivdb asked about what is on them."""
import json
import os
import pathlib
import re
import signal
import socket
import subprocess
import urllib.error
import urllib.parse
import urllib.request

SOURCE = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("KIV_BUILD", SOURCE / "build" / "release"))
KIV = BUILD / "src" / "kiv"
KIVDB = BUILD / "src" / "kivdb"
SCRIPT = SOURCE / "scripts" / "clickhouse.sh"


def kivdb(*arguments, status=0, timeout=60, environment=None):
    """What kivdb prints, as bytes; what it complains of when another status is expected."""
    done = subprocess.run([KIVDB, *arguments], capture_output=True, timeout=timeout, env=environment)
    assert done.returncode == status, (arguments, done.returncode, done.stdout[-500:], done.stderr)
    return done.stdout if status == 0 else done.stderr.decode(errors="replace")


def kivdb_json(*arguments):
    return json.loads(kivdb(*arguments, "--json").decode(errors="surrogateescape"))


def free_ports():
    """The first of a row of ports of which the ones that the script takes are free."""
    for first in range(29000, 32000, 20):
        try:
            for port in (first + 1, first + 2, first + 11, first + 12):
                with socket.socket() as probe:
                    probe.bind(("127.0.0.1", port))
            return first
        except OSError:
            continue
    raise RuntimeError("no free ports")


class Cluster:
    def __init__(self, folder):
        self.folder = folder
        self.first_port = free_ports()
        self.values = {}
        self.start()

    def _script(self, *arguments):
        environment = dict(os.environ, KIV_CLICKHOUSE_PORT=str(self.first_port))
        done = subprocess.run([SCRIPT, *arguments], check=True, capture_output=True, text=True, timeout=60,
                              env=environment)
        for line in done.stdout.splitlines():
            name, value = line.split("=", 1)
            self.values[name] = value

    def start(self, server=None):
        self._script("start", self.folder, *([str(server)] if server else []))

    def stop(self, server=None):
        self._script("stop", self.folder, *([str(server)] if server else []))

    def kill(self, server):
        os.kill(int(self.values[f"PID{server}"]), signal.SIGKILL)

    def is_running(self, server):
        try:
            state = pathlib.Path(f"/proc/{self.values[f'PID{server}']}/stat").read_text().rsplit(")", 1)[1].split()[0]
        except FileNotFoundError:
            return False
        return state not in "ZX"

    def port(self, server):
        return self.first_port + server

    def tcp_port(self, server):
        return self.first_port + 10 + server

    def url(self, server=1, database="kiv", user="SHARD", **parameters):
        url = self.values[f"{user}{server}"].replace("/kiv?", f"/{database}?")
        return url + "".join(f"&{name}={value}" for name, value in parameters.items())

    def setup(self, database):
        kivdb("setup", self.url(1, database), self.url(2, database))

    def query(self, sql, server=1, database="default"):
        """Of the user who may do all: the answer's rows."""
        request = urllib.request.Request(
            f"http://127.0.0.1:{self.port(server)}/?" + urllib.parse.urlencode({"database": database}),
            data=sql.encode(errors="surrogateescape"),
            headers={"X-ClickHouse-User": "kiv", "X-ClickHouse-Key": "all: 100%"})
        try:
            answer = urllib.request.urlopen(request, timeout=30).read()
        except urllib.error.HTTPError as failure:
            raise AssertionError(failure.read().decode()) from None
        return [line.split("\t") for line in answer.decode(errors="surrogateescape").splitlines()]

    def shard_of(self, run):
        return int(self.query(f"SELECT cityHash64('{run}') % 2")[0][0]) + 1

    def name_on_shard(self, shard, stem):
        return next(name for name in (f"{stem}{i}" for i in range(100)) if self.shard_of(name) == shard)


def without_times(text):
    """Times of imports are those of the clock."""
    return re.sub(rb"20\d\d-\d\d-\d\d \d\d:\d\d:\d\d(?![.\d])", b"TIME", text)


def by_rank(rows, column):
    """The rows with the values of a column replaced by their ranks."""
    ranks = {value: rank for rank, value in enumerate(sorted({row[column] for row in rows}))}
    return [dict(row, **{column: ranks[row[column]]}) for row in rows]
