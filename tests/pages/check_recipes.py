"""Runs the recipes of examples/many/ on many documents of which one fails: check_recipes.py PROGRAM COUNT."""
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

import make_fields
from pages import ROOT

PROGRAM, COUNT = os.path.abspath(sys.argv[1]), int(sys.argv[2])
RECIPES = ROOT / "examples" / "many"
FAILING = make_fields.failing(COUNT) + ".xml"
MESSAGE = "field is below the horizon limit"


def run(command, folder, **variables):
    """Status, standard output and error of a command, without a terminal."""
    result = subprocess.run([str(c) for c in command], cwd=folder, stdin=subprocess.DEVNULL, capture_output=True,
                            text=True, timeout=300, env={**os.environ, "VEKO_CONFIGURE": PROGRAM, **variables})
    return result.returncode, result.stdout, result.stderr


def outputs(folder):
    """When each output was written, in nanoseconds, by name."""
    return {f.name: f.stat().st_mtime_ns for f in folder.glob("*.xml")}


class Recipe(unittest.TestCase):
    # A folder whose name has a blank, where the recipe can do with one.
    fields_name, configured_name = "my fields", "configured fields"

    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)
        self.fields = self.folder / self.fields_name
        self.configured = self.folder / self.configured_name
        make_fields.make(self.fields, COUNT)
        self.names = {f.name for f in self.fields.iterdir()}

    def mend(self):
        document = self.fields / FAILING
        document.write_text(document.read_text().replace("-75.000000", "20.000000").replace("-74.95", "20.05"))

    def add(self, name):
        (self.fields / name).write_text((self.fields / "f000.xml").read_text())

    def check_calls(self, call, runs):
        """Four calls: all, what failed, what was mended and added, nothing. `runs` counts the program's runs so far."""
        status, text = call()
        self.assertNotEqual(status, 0)
        self.assertEqual(runs(text), COUNT)
        first = outputs(self.configured)
        self.assertEqual(set(first), self.names - {FAILING})
        self.assertIn(MESSAGE, text)
        self.assertIn(FAILING, text)

        status, text = call()
        self.assertNotEqual(status, 0)
        self.assertEqual(runs(text), COUNT + 1)
        self.assertEqual(outputs(self.configured), first)
        self.assertIn(MESSAGE, text)

        self.mend()
        self.add("a_new_one.xml")  # before all others by name
        status, text = call()
        self.assertEqual(status, 0, text)
        self.assertEqual(runs(text), COUNT + 3)
        third = outputs(self.configured)
        self.assertEqual(set(third), self.names | {"a_new_one.xml"})
        self.assertEqual({name: third[name] for name in first}, first)
        self.assertNotIn(MESSAGE, text)

        status, text = call()
        self.assertEqual(status, 0, text)
        self.assertEqual(runs(text), COUNT + 3)
        self.assertEqual(outputs(self.configured), third)


class ParallelDoesOnlyWhatIsLeft(Recipe):
    def test_calls(self):
        def call():
            status, out, err = run([RECIPES / "configure_all.parallel.sh", self.fields, self.configured], self.folder)
            left = out.count("not configured: ")
            self.assertEqual(left, int(status != 0))
            count = len(list(self.fields.iterdir()))
            self.assertEqual(out.splitlines()[-1], f"{count - left} of {count} configured")
            self.assertIn("100%", err)  # the progress bar
            return status, out + err

        self.check_calls(call, lambda _: len((self.configured / "joblog.txt").read_text().splitlines()) - 1)


class MakeDoesOnlyWhatIsLeft(Recipe):
    fields_name, configured_name = "fields", "configured"  # make has no names with blanks
    runs = 0

    def test_calls(self):
        command = ["make", "-k", "-j", os.cpu_count(), "-f", RECIPES / "Makefile"]

        def runs(text):
            self.runs += sum(line.startswith(PROGRAM) for line in text.splitlines())
            return self.runs

        def call():
            # As if started from a shell, not from a make that runs the tests.
            status, out, err = run(command, self.folder, MAKEFLAGS="", MAKELEVEL="")
            return status, out + err

        self.check_calls(call, runs)
        self.check_page()
        self.assertEqual(run([*command, "CONFIGURED=./fields"], self.folder, MAKEFLAGS="", MAKELEVEL="")[0], 2)

    def check_page(self):
        """make names the line of its file; the page shows it."""
        shown = re.search(r"Makefile:(\d+): ", (ROOT / "docs" / "many-documents.md").read_text()).group(1)
        lines = (RECIPES / "Makefile").read_text().splitlines()
        self.assertIn("$(VEKO_CONFIGURE)", lines[int(shown) - 1])


class SlurmTasksDoTheirSlice(Recipe):
    """Without Slurm, whose part the variables of a job array play; tools/try_slurm has the real one."""

    def test_tasks(self):
        tasks = 3
        for document in sorted(self.fields.iterdir())[:-11]:
            if document.name != FAILING:
                document.unlink()
        self.names = {f.name for f in self.fields.iterdir()}

        def call():
            results = [run(["bash", RECIPES / "configure_all.slurm", self.fields, self.configured], self.folder,
                           SLURM_ARRAY_TASK_MIN="1", SLURM_ARRAY_TASK_MAX=str(tasks), SLURM_ARRAY_TASK_ID=str(task))
                       for task in range(1, tasks + 1)]
            return [status for status, _, _ in results], "".join(out for _, out, _ in results)

        statuses, text = call()
        self.assertEqual(sorted(statuses), [0, 0, 1])
        self.assertIn(f"not configured: {FAILING}: {MESSAGE}\n", text)
        first = outputs(self.configured)
        self.assertEqual(set(first), self.names - {FAILING})
        self.mend()
        statuses, text = call()
        self.assertEqual(statuses, [0, 0, 0])
        self.assertEqual([line.split(": ")[1].split()[0] for line in text.splitlines()].count("1"), 1, text)
        second = outputs(self.configured)
        self.assertEqual(set(second), self.names)
        self.assertEqual({name: second[name] for name in first}, first)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
