"""The completions in a real bash: what their functions offer, and what the Tab key makes of a line.

Usage: check_completion.py FOLDER_OF_COMPLETIONS VEKO_CONFIGURE VEKO
"""

import os
import pathlib
import pty
import re
import subprocess
import sys
import tempfile
import unittest

COMPLETIONS, PROGRAM, VEKO = sys.argv[1:]
os.environ["PATH"] = f"{os.path.dirname(PROGRAM)}:{os.path.dirname(VEKO)}:{os.environ['PATH']}"
FILES = ["field.xml", "FIELD.XML", "fields.txt", "my field.xml", "it's.xml", "folder/inner.xml"]


def offered(*words, folder=".", program="veko_configure"):
    """What the function of a program offers for the last of the words."""
    script = f". \"$1\"; shift; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _{program}; " \
             "printf '%s\\n' \"${COMPREPLY[@]}\""
    done = subprocess.run(["bash", "-uc", script, "bash", f"{COMPLETIONS}/{program}", program, *words], cwd=folder,
                          check=True, capture_output=True, text=True)
    assert done.stderr == "", done.stderr
    return sorted(done.stdout.split("\n")[:-1]) if done.stdout != "\n" else []


def typed(line, folder, program="veko_configure"):
    """The arguments that a program gets when a line is typed, with its Tabs, into a bash."""
    process, terminal = pty.fork()
    if process == 0:
        os.chdir(folder)
        os.environ.update(TERM="dumb", PS1="", INPUTRC="/dev/null", HISTFILE="")
        os.execlp("bash", "bash", "--norc", "--noprofile", "-i")
    called = f"{program}() {{ printf '<%s>' \"$@\"; echo; }}"
    # The second and the third end are for a line that came out with a quote left open.
    end = "exit\n'\nexit\n\"\nexit\n"
    os.write(terminal, f". '{COMPLETIONS}/{program}'\n{called}\n{program} {line}\n{end}".encode())
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

    def offered_by_veko(self, *words):
        return offered(*words, folder=self.folder, program="veko")

    def test_veko_offers_its_commands_and_their_options(self):
        self.assertEqual(self.offered_by_veko(""), ["check", "compare", "export", "report", "window"])
        self.assertEqual(self.offered_by_veko("-"), ["--help", "--version", "-h"])
        for command in self.offered_by_veko(""):
            listing = subprocess.run([VEKO, command, "--help"], check=True, capture_output=True, text=True).stdout
            options = re.findall(r"^  (?:(-\w), )?(--[\w-]+)", listing, re.MULTILINE)
            self.assertIn(("-h", "--help"), options)
            self.assertEqual(self.offered_by_veko(command, "-"),
                             sorted({name for pair in options for name in pair if name}))
        self.assertEqual(self.offered_by_veko("check", "--strict", "--fo"), ["--format"])

    def test_veko_offers_what_an_option_takes(self):
        self.assertEqual(self.offered_by_veko("check", "--format", ""), ["json", "sarif", "text"])
        self.assertEqual(self.offered_by_veko("check", "--format", "=", "j"), ["json"])
        self.assertEqual(self.offered_by_veko("check", "--color", "a"), ["always", "auto"])
        self.assertEqual(self.offered_by_veko("check", "--ha", ""), [])
        self.assertIn("VK105", self.offered_by_veko("check", "--explain", "VK1"))

    def test_veko_offers_files(self):
        files = sorted(["folder", *(name for name in FILES[:-1] if name.lower().endswith("xml"))])
        for words in ([], ["-c"], ["--config_file", "="], ["--strict"], ["--ha", "1"], ["field.xml"]):
            self.assertEqual(self.offered_by_veko("check", *words, ""), files, words)
        self.assertEqual(typed("ch\tfie\t my\\ f\t", self.folder, "veko"), ["check", "field.xml", "my field.xml"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
