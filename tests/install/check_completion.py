"""The completion in a real bash: what its function offers, and what the Tab key makes of a line.

Usage: check_completion.py COMPLETION PROGRAM
"""

import os
import pathlib
import pty
import re
import subprocess
import sys
import tempfile
import unittest

COMPLETION, PROGRAM = sys.argv[1:]
os.environ["PATH"] = f"{os.path.dirname(PROGRAM)}:{os.environ['PATH']}"
FILES = ["field.xml", "FIELD.XML", "fields.txt", "my field.xml", "it's.xml", "folder/inner.xml"]


def offered(*words, folder="."):
    """What the function offers for the last of the words."""
    script = ". \"$1\"; shift; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _veko_configure; " \
             "printf '%s\\n' \"${COMPREPLY[@]}\""
    done = subprocess.run(["bash", "-uc", script, "bash", COMPLETION, "veko_configure", *words], cwd=folder,
                          check=True, capture_output=True, text=True)
    assert done.stderr == "", done.stderr
    return sorted(done.stdout.split("\n")[:-1]) if done.stdout != "\n" else []


def typed(line, folder):
    """The arguments that the program gets when a line is typed, with its Tabs, into a bash."""
    process, terminal = pty.fork()
    if process == 0:
        os.chdir(folder)
        os.environ.update(TERM="dumb", PS1="", INPUTRC="/dev/null", HISTFILE="")
        os.execlp("bash", "bash", "--norc", "--noprofile", "-i")
    program = "veko_configure() { printf '<%s>' \"$@\"; echo; }"
    # The second and the third end are for a line that came out with a quote left open.
    end = "exit\n'\nexit\n\"\nexit\n"
    os.write(terminal, f". '{COMPLETION}'\n{program}\nveko_configure {line}\n{end}".encode())
    screen = b""
    try:
        while chunk := os.read(terminal, 4096):
            screen += chunk
    except OSError:  # the shell has ended
        pass
    os.close(terminal)
    os.waitpid(process, 0)
    shown = [text for text in screen.decode().splitlines() if text.startswith("<")]
    assert len(shown) == 1, screen
    return re.findall("<(.*?)>", shown[0])


class Completion(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.temporary = tempfile.TemporaryDirectory()
        cls.folder = cls.temporary.name
        for name in FILES:
            file = pathlib.Path(cls.folder, name)
            file.parent.mkdir(exist_ok=True)
            file.touch()

    @classmethod
    def tearDownClass(cls):
        cls.temporary.cleanup()

    def test_the_options_offered_are_those_that_the_program_lists(self):
        listing = subprocess.run([PROGRAM, "--help"], check=True, capture_output=True, text=True).stdout
        options = re.findall(r"^  (?:(-\w) \[ )?(--\w+)", listing, re.MULTILINE)
        self.assertIn(("-i", "--input"), options)
        self.assertEqual(offered("-"), sorted({name for pair in options for name in pair if name}))

    def test_an_option_is_completed_from_its_beginning(self):
        self.assertEqual(offered("--h"), ["--ha", "--help", "--horizon_limit"])
        self.assertEqual(offered("-i", "field.xml", "--ou"), ["--output"])
        self.assertEqual(offered("--nonsense"), [])

    def test_files_and_folders_follow_the_options_that_take_a_file(self):
        for option in ("-i", "--input", "-o", "--output", "-c", "--config_file"):
            self.assertEqual(offered(option, "", folder=self.folder),
                             sorted(["folder", *(name for name in FILES[:-1] if name.lower().endswith("xml"))]))
            self.assertEqual(offered(option, "field", folder=self.folder), ["field.xml"])
        self.assertEqual(offered("--input", "=", "folder/", folder=self.folder), ["folder/inner.xml"])
        self.assertEqual(offered("--input", "=", folder=self.folder), offered("--input", "", folder=self.folder))

    def test_nothing_is_offered_for_a_number(self):
        for option in ("--epoch", "--ha", "--horizon_limit", "--pressure"):
            self.assertEqual(offered(option, "", folder=self.folder), [])
            self.assertEqual(offered(option, "=", "", folder=self.folder), [])

    def test_the_tab_key_completes_names_that_need_quoting(self):
        for line, arguments in (("--inp\tfie\t", ["--input", "field.xml"]),
                                ("-i my\\ f\t", ["-i", "my field.xml"]),
                                ("-o \"my f\t", ["-o", "my field.xml"]),
                                ("--input=my\\ f\t", ["--input=my field.xml"]),
                                ("-c it\t", ["-c", "it's.xml"]),
                                ("-i fol\tin\t", ["-i", "folder/inner.xml"])):
            with self.subTest(line=line):
                self.assertEqual(typed(line, self.folder), arguments)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
