"""Nights through examples/many/night.sh whose program runs are counted, and that are stopped at random moments."""
import collections
import os
import pathlib
import random
import shlex
import signal
import subprocess
import time

from pages import ROOT

RECIPE = ROOT / "examples" / "many" / "night.sh"
RESULTS = {"check": "checked/{}.txt", "configure": "configured/{}.xml", "report": "reports/{}.html",
           "compare": "compared/{}.txt"}
# Notes each run: stage, folder, which tells night and document, and machine. Fails if `broken` names the document.
PROGRAM = """#!/bin/sh
case $0 in *veko) stage=$1 ;; *) stage=configure ;; esac
echo "$stage:$PWD:${{SSH_CONNECTION:-}}" >>{folder}/runs
if [ $stage = configure ] && grep -qsF "$(echo *.xml)" {folder}/broken; then
    echo "the disk is full" >&2
    exit 1
fi
exec {program} "$@"
"""


class Programs:
    """The programs, in a folder for the PATH, so that their runs are counted."""

    def __init__(self, folder, programs):
        self.folder = pathlib.Path(folder)
        self.path = self.folder / "bin"
        self.path.mkdir()
        for program in map(pathlib.Path, programs):
            counted = self.path / program.name
            words = {"folder": shlex.quote(str(folder)), "program": shlex.quote(str(program.resolve()))}
            counted.write_text(PROGRAM.format(**words))
            counted.chmod(0o755)
        self.environment = {**os.environ, "PATH": f"{self.path}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8"}
        self.log = self.folder / "runs"
        self.log.touch()

    def count(self):
        """How many runs have begun."""
        return self.log.read_bytes().count(b"\n")

    def runs(self, night):
        """Stage and document of each run for a night, in the order in which they began."""
        return [(stage, work.name.rpartition(".")[0]) for stage, work, _ in self.lines(night)]

    def machines(self, night):
        """How many runs for a night each connection's server end began; without ssh that is an empty text."""
        return collections.Counter(connection.rpartition(" ")[2] for _, _, connection in self.lines(night))

    def lines(self, night):
        found = []
        for line in self.log.read_text().splitlines():
            stage, work, connection = line.split(":")
            if pathlib.Path(work).parent == night / "work":
                found.append((stage, pathlib.Path(work), connection))
        return found

    def start(self, *arguments, **variables):
        """Starts the recipe in a session of its own."""
        return subprocess.Popen([str(a) for a in (RECIPE, *arguments)], cwd=self.folder, stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, start_new_session=True,
                                env={**self.environment, **variables})

    def call(self, *arguments, **variables):
        """Status and both streams of a call."""
        process = self.start(*arguments, **variables)
        said = process.communicate()[0]
        return process.returncode, said

    def disturb(self, start, stop, night, kills, total, seed):
        """Starts a night of `total` runs, stops it at random moments and starts it again until it ends by itself.

        Returns the runs for results that were there after a stop before them.
        """
        rng = random.Random(seed)
        stops, sessions = [], []
        before = self.count()
        for threshold in sorted(rng.sample(range(1, total), kills)):
            process = start()
            while self.count() - before < threshold:
                assert process.poll() is None, "the night ended before it was to be stopped"
                time.sleep(0.01)
            time.sleep(rng.uniform(0, 0.05))  # somewhere in the programs, or between them
            stop(process)
            sessions.append(process.pid)
            there = finished(night)
            stops.append((there, len(self.runs(night))))
        start().communicate()
        while any(map(processes, sessions)):
            time.sleep(0.005)
        runs = self.runs(night)
        return [run for there, count in stops for run in runs[count:] if run in there]


def finished(night):
    """Stage and document of each result that is there."""
    found = {("check", path.stem) for path in (night / "failed").glob("*.txt")}
    for stage, result in RESULTS.items():
        found.update((stage, path.stem) for path in night.glob(result.format("*")))
    return found


def processes(session):
    """The living processes of a session."""
    found = []
    for stat in pathlib.Path("/proc").glob("[0-9]*/stat"):
        try:
            state, _, _, its_session = stat.read_text().rpartition(")")[2].split()[:4]
        except (FileNotFoundError, ProcessLookupError):
            continue
        if int(its_session) == session and state != "Z":
            found.append(int(stat.parent.name))
    return found


def kill_group(process):
    """Kills the recipe and GNU parallel; runs of the programs, which have groups of their own, go on."""
    os.killpg(process.pid, signal.SIGKILL)
    process.wait()
    process.stdout.close()


def kill_session(process):
    """Kills everything, as when the machine fails."""
    while living := processes(process.pid):
        for pid in living:
            try:
                os.kill(pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
        process.poll()
    process.wait()
    process.stdout.close()


def tree(folder):
    """Mode, time and content of everything in a folder, by name; folders without their times."""
    def entry(path):
        stat = path.lstat()
        if path.is_symlink():
            return os.readlink(path)
        return (stat.st_mode,) if path.is_dir() else (stat.st_mode, stat.st_mtime_ns, path.read_bytes())
    return {str(path.relative_to(folder)): entry(path) for path in folder.rglob("*")}
