"""Runs at instants inside the windows of random fields must succeed, just outside an end they must be refused.

usage: check_windows_of_runs.py VEKO VEKO_CONFIGURE
"""
import concurrent.futures
import json
import os
import pathlib
import random
import subprocess
import sys
import tempfile

FIELDS = 90
# A run is told an instant to some 10 microseconds.
MILLISECOND = 1e-3 / 86400
REFUSALS = {"horizon": "field is below the horizon limit\n",
            "rotator low": "field position angle is outside the rotator limits\n",
            "rotator high": "field position angle is outside the rotator limits\n"}

DOCUMENT = """<configuration datamver="8.00">
 <observation pa="{pa:.3f}">
  <configure><conditions epoch="{epoch:.4f}" temperature="{temperature:.1f}" pressure="{pressure:.1f}"
    relative_humidity="{humidity:.2f}"/></configure>
  <fields><field RA_d="{ra:.6f}" Dec_d="{dec:.6f}">
    <target targname="s" targuse="T" targra="{ra:.6f}" targdec="{dec:.6f}"/>
    <target targname="g" targuse="G" targra="{ra:.6f}" targdec="{guide:.6f}"/>
  </field></fields>
 </observation>
</configuration>
"""


def random_document(random_numbers):
    dec = random_numbers.uniform(-35, 88)
    return DOCUMENT.format(pa=random_numbers.choice([0, 0, 60, 180, random_numbers.uniform(-180, 180)]), dec=dec,
                           epoch=random_numbers.uniform(2016, 2040), temperature=random_numbers.uniform(270, 295),
                           pressure=random_numbers.uniform(740, 790), humidity=random_numbers.uniform(0, 0.8),
                           ra=random_numbers.uniform(0, 360), guide=dec + 0.1)


def moved(moment, days):
    """An instant later, as a run is given it: its epoch and, to the second that it tolerates, its hour angle."""
    hour_angle = (moment["hourAngleHours"] + 24 * 1.0027379 * days + 12) % 24 - 12
    return ["--epoch", repr(moment["epoch"] + days / 365.25), "--ha", f"{hour_angle:.7f}"]


def runs_of(window, random_numbers):
    """The arguments of runs, each with the message with which it must be refused, empty where it must succeed."""
    start, best, end = (window[name] for name in ("start", "best", "end"))
    length = end["mjdTai"] - start["mjdTai"]
    yield moved(best, 0), ""
    yield moved(start, random_numbers.uniform(0, length)), ""
    for moment, outwards in ((start, -MILLISECOND), (end, MILLISECOND)):
        yield moved(moment, 0), ""
        if moment["limit"] in REFUSALS:
            yield moved(moment, outwards), REFUSALS[moment["limit"]]


def main():
    veko, veko_configure = (str(pathlib.Path(program).resolve()) for program in sys.argv[1:3])
    random_numbers = random.Random(20270301)
    failures = []
    ends = {limit: 0 for limit in REFUSALS}
    with tempfile.TemporaryDirectory() as folder, concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        names = []
        for number in range(FIELDS):
            path = pathlib.Path(folder, f"{number}.xml")
            path.write_text(random_document(random_numbers))
            names.append(str(path))
        found = subprocess.run([veko, "window", "--twilight", "none", "--format", "json", *names], check=False,
                               stdout=subprocess.PIPE)
        assert found.returncode == 0, found.returncode

        def run(job):
            number, name, arguments, refusal = job
            output = pathlib.Path(folder, f"out{number}.xml")
            result = subprocess.run([veko_configure, "-i", name, "-o", output, *arguments], check=False,
                                    capture_output=True, text=True)
            output.unlink(missing_ok=True)
            if (result.returncode, result.stderr) != (1 if refusal else 0, refusal):
                failures.append(f"{name} {arguments}: {result.returncode} '{result.stderr}', expected '{refusal}'\n"
                                + pathlib.Path(name).read_text())

        jobs = []
        for night in json.loads(found.stdout)["nights"]:
            for window in night["windows"]:
                for moment in (window["start"], window["end"]):
                    if moment["limit"] in ends:
                        ends[moment["limit"]] += 1
                jobs += [(len(jobs) + i, night["file"], *job) for i, job in enumerate(runs_of(window, random_numbers))]
        list(pool.map(run, jobs))
    print(f"{len(jobs)} runs at {ends}")
    assert sum(ends.values()) > 200 and min(ends.values()) > 20, ends
    if failures:
        sys.exit("\n".join(failures))


if __name__ == "__main__":
    main()
