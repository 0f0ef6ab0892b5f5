"""Runs examples/many/night.sh on a small night with bad documents: check_night.py VEKO_CONFIGURE VEKO."""
import os
import pathlib
import pty
import shutil
import subprocess
import sys
import tempfile
import unittest

import make_fields
import nights

COUNT = 10
REFUSED = make_fields.failing(COUNT)
BELOW = (f"{REFUSED}.xml:8:36: error: field is below the horizon limit: "
         "it never rises above -13.88 degrees of altitude, and the limit is 25 [VK502]\n")
MOVED, NEW = "f001", "a new one"
KILLS = 3


class Night(unittest.TestCase):
    maxDiff = 2000

    @classmethod
    def setUpClass(cls):
        temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(temporary.cleanup)
        cls.folder = pathlib.Path(temporary.name)
        cls.programs = nights.Programs(cls.folder, sys.argv[1:])
        cls.fields = cls.folder / "my fields"
        make_fields.make(cls.fields, COUNT)
        cls.programs.call(cls.fields, cls.folder / "earlier")
        moved = cls.fields / f"{MOVED}.xml"
        moved.write_text(moved.read_text().replace('pa="0"', 'pa="0.01"'))
        (cls.fields / f"{NEW}.xml").write_text((cls.fields / "f000.xml").read_text())
        cls.names = {path.stem for path in cls.fields.iterdir()}
        cls.arguments = ("--against", cls.folder / "earlier" / "configured", cls.fields)
        cls.undisturbed = cls.folder / "undisturbed"
        cls.status, cls.said = cls.programs.call(*cls.arguments, cls.undisturbed)

    def setUp(self):
        self.night = self.folder / self.id().rpartition(".")[2].replace("_", " ")

    def few_fields(self):
        """Fields of a test's own, one of them bad, whose night is done."""
        fields = self.folder / f"fields of {self.night.name}"
        fields.mkdir()
        for name in ("f002", "f003", REFUSED):
            shutil.copy2(self.fields / f"{name}.xml", fields)
        self.programs.call(fields, self.night)
        return fields

    def runs(self, *arguments):
        """What a call on this night runs, and says."""
        before = len(self.programs.runs(self.night))
        said = self.programs.call(*arguments, self.night)[1]
        return sorted(self.programs.runs(self.night)[before:]), said

    def test_each_document_has_all_results_or_a_reason(self):
        self.assertEqual(self.status, 1)
        differs, rest = self.said.split("\n", 1)
        self.assertRegex(differs, f"^{MOVED}.xml differs: on the sky field 1 is turned by ")
        self.assertEqual(rest, f"{BELOW}{len(self.names)} documents, 1 failed\n")
        self.assertTrue((self.undisturbed / "failed" / f"{REFUSED}.txt").read_text().startswith(BELOW))
        good = self.names - {REFUSED}
        expected = {(stage, name) for stage in nights.RESULTS for name in good} - {("compare", NEW)}
        expected.add(("check", REFUSED))
        self.assertEqual(nights.finished(self.undisturbed), expected)
        self.assertEqual(sorted(self.programs.runs(self.undisturbed)), sorted(expected))
        alone = self.folder / "alone.xml"
        subprocess.run([sys.argv[1], "-i", self.fields / "f000.xml", "-o", alone], check=True)
        self.assertEqual(alone.read_bytes(), (self.undisturbed / "configured" / "f000.xml").read_bytes())

    def expect_the_same_after(self, stop):
        again = self.programs.disturb(lambda: self.programs.start(*self.arguments, self.night), stop, self.night, KILLS,
                                      len(self.programs.runs(self.undisturbed)), seed=1)
        self.assertEqual(again, [])
        self.assertEqual(nights.tree(self.night), nights.tree(self.undisturbed))

    def test_a_night_whose_machine_fails_becomes_the_undisturbed_one(self):
        self.expect_the_same_after(nights.kill_session)

    def test_a_night_whose_programs_outlive_it_becomes_the_undisturbed_one(self):
        self.expect_the_same_after(nights.kill_group)

    def test_the_tasks_of_an_array_share_the_night(self):
        for task, documents in ((5, 4), (6, 4), (7, 3)):
            said = self.programs.call(*self.arguments, self.night, SLURM_ARRAY_TASK_MIN="5", SLURM_ARRAY_TASK_MAX="7",
                                      SLURM_ARRAY_TASK_COUNT="3", SLURM_ARRAY_TASK_ID=str(task))[1]
            self.assertIn(f"{documents} documents, ", said)
        self.assertEqual(sorted(self.programs.runs(self.night)), sorted(self.programs.runs(self.undisturbed)))
        self.assertEqual(nights.tree(self.night), nights.tree(self.undisturbed))

    def test_an_array_with_gaps_which_would_leave_documents_out_is_refused(self):
        said = self.programs.call(*self.arguments, self.night, SLURM_ARRAY_TASK_MIN="0", SLURM_ARRAY_TASK_MAX="4",
                                  SLURM_ARRAY_TASK_COUNT="3", SLURM_ARRAY_TASK_ID="2")
        self.assertEqual(said, (2, "The array has gaps\n"))

    def test_an_earlier_run_that_is_not_there_is_refused(self):
        earlier = self.folder / "nothing"
        said = self.programs.call("--against", earlier, self.fields, self.night)
        self.assertEqual(said, (2, f"realpath: {earlier}: No such file or directory\n"))
        self.assertFalse(self.night.exists())

    def test_a_folder_without_documents_is_a_night_without_failures(self):
        empty = self.folder / "empty"
        empty.mkdir()
        self.addCleanup(empty.rmdir)
        self.assertEqual(self.programs.call(empty, self.night), (0, "0 documents, 0 failed\n"))

    def test_another_call_does_only_documents_of_another_time(self):
        fields = self.few_fields()
        older, mended, spoilt = (fields / f"{name}.xml" for name in ("f002", REFUSED, "f003"))
        os.utime(older, (1, 1))
        spoilt_text = spoilt.read_text()
        spoilt.write_text(mended.read_text())
        mended.write_text(spoilt_text)
        stages = ("check", "configure", "report")
        expected = [(stage, name) for stage in stages for name in ("f002", REFUSED)] + [("check", "f003")]
        self.assertEqual(self.runs(fields)[0], sorted(expected))
        there = nights.finished(self.night)
        self.assertEqual({name for stage, name in there if stage == "configure"}, {"f002", REFUSED})
        self.assertEqual({path.stem for path in (self.night / "failed").iterdir()}, {"f003"})

    def test_what_fails_for_another_reason_than_the_document_is_tried_again(self):
        broken = self.folder / "broken"
        broken.write_text("f002.xml")
        self.addCleanup(broken.unlink, missing_ok=True)
        fields = self.few_fields()
        runs, said = self.runs(fields)
        self.assertEqual(runs, [("configure", "f002")])
        reason = "f002.xml: error: veko_configure ends with 1: the disk is full\n"
        self.assertEqual(said, f"{reason}{BELOW}3 documents, 2 failed\n")
        broken.unlink()
        runs, said = self.runs(fields)
        self.assertEqual(runs, [("configure", "f002"), ("report", "f002")])
        self.assertEqual(said, f"{BELOW}3 documents, 1 failed\n")

    def test_other_arguments_do_not_mix_with_a_night_that_was_begun(self):
        status, said = self.programs.call(self.fields, self.undisturbed, "--epoch", "2027.3")
        begun = f'{self.undisturbed} was begun with "--against {self.arguments[1]} ", not with " --epoch 2027.3"\n'
        self.assertEqual((status, said), (2, begun))

    def test_the_fields_are_not_the_folder_of_the_night(self):
        status, said = self.programs.call(self.fields, self.fields)
        self.assertEqual(status, 2)
        self.assertIn("night.sh [--against CONFIGURED] FIELDS NIGHT [OPTION...]", said)
        self.assertEqual({path.stem for path in self.fields.iterdir()}, self.names)

    def test_a_terminal_sees_the_progress(self):
        fields = self.few_fields()
        (fields / f"{NEW}.xml").write_text("no document")
        terminal, its_end = pty.openpty()
        process = subprocess.Popen([nights.RECIPE, fields, self.night], stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=its_end, env=self.programs.environment)
        os.close(its_end)
        said = b""
        try:
            while part := os.read(terminal, 4096):
                said += part
        except OSError:  # the other end is closed
            pass
        process.wait()
        os.close(terminal)
        self.assertIn("100% 1:0=", said.decode())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
