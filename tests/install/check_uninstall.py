"""tools/uninstall removes what was installed, and nothing else; packing leaves no list to remove files by.

Usage: check_uninstall.py CMAKE BUILD_FOLDER
"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

import golden

CMAKE, BUILD = sys.argv[1:]
UNINSTALL = golden.PROJECT / "tools" / "uninstall"


def uninstall(prefix):
    return subprocess.run([UNINSTALL, prefix, BUILD], capture_output=True, text=True)


def everything_below(folder):
    return {str(path.relative_to(folder)) for path in folder.rglob("*")}


class Uninstall(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.prefix = pathlib.Path(temporary.name) / "my prefix"

    def install(self, component):
        subprocess.run([CMAKE, "--install", BUILD, "--prefix", self.prefix, "--component", component], check=True,
                       capture_output=True)

    def test_files_of_others_remain_and_no_folder_of_the_program(self):
        others = self.prefix / "share" / "man" / "man1" / "other.1"
        others.parent.mkdir(parents=True)
        others.write_text("")
        for component in ("program", "tools", "python", "development"):
            self.install(component)
        self.assertGreater(len(everything_below(self.prefix)), 50)
        for package in self.prefix.rglob("dist-packages/veko"):
            (package / "__pycache__").mkdir()
            (package / "__pycache__" / "_veko.pyc").write_text("compiled")
        result = uninstall(self.prefix)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        left = everything_below(self.prefix)
        self.assertEqual({name for name in left if (self.prefix / name).is_file()}, {"share/man/man1/other.1"})
        self.assertEqual([name for name in left if "veko" in name or "pos" in name], [])

    def test_an_installation_of_one_component_is_removed_too(self):
        self.install("program")
        self.assertEqual(uninstall(self.prefix).returncode, 0)
        self.assertFalse([name for name in everything_below(self.prefix) if (self.prefix / name).is_file()])

    def test_the_packages_files_are_left_to_apt(self):
        result = uninstall("/usr")
        self.assertEqual((result.returncode, result.stdout, result.stderr),
                         (1, "", "What is below /usr belongs to the packages; apt removes them.\n"))

    def test_what_is_not_built_is_told(self):
        with tempfile.TemporaryDirectory() as nothing:
            result = subprocess.run([UNINSTALL, self.prefix, nothing], capture_output=True, text=True)
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertEqual(result.stderr, "".join(f"The component {component} is not built in {nothing}, so its files "
                                                "stay.\n" for component in ("program", "tools", "python",
                                                                                         "development")))

    def test_packing_leaves_no_list_of_installed_files(self):
        for manifest in pathlib.Path(BUILD).glob("install_manifest*.txt"):
            self.assertNotRegex(manifest.read_text(), r"(?m)^/usr/(?!local/)", manifest.name)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
