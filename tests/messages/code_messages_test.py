"""How the messages are taken out of C++ sources, on sources of a few lines, and that the check fails where it must.

Usage: code_messages_test.py SOURCE_FOLDER
"""

import pathlib
import shutil
import sys
import tempfile
import unittest

from check_messages import complaints
from code_messages import WILD, Sources, Unreadable

ROOT = pathlib.Path(sys.argv.pop())


def messages(**files):
    return {text.replace(WILD, "*") for text in Sources({name: text for name, text in files.items()}).messages()}


class TheTextOfAMessage(unittest.TestCase):
    def test_is_found_behind_a_throw_and_a_stream(self):
        self.assertEqual(messages(a='void f() { throw std::runtime_error("It \\"broke\\""); }'), {'It "broke"'})
        self.assertEqual(messages(a='void f(int n) { std::cerr << "Only " << n << " left" << std::endl; }'),
                         {"Only * left"})
        self.assertEqual(messages(a='void f() { std::cout << "one" << \'\\n\' << "two"; }'), {"one", "two"})

    def test_is_not_taken_from_a_comment_or_a_passed_on_error(self):
        self.assertEqual(messages(a='// throw std::runtime_error("a")\n/* std::cerr << "b"; */ void f() {}'), set())
        self.assertEqual(messages(a="void f() { std::cerr << error.what() << std::endl; throw; }"), set())

    def test_is_joined_from_literals_constants_and_local_names(self):
        source = """
            namespace pos::attr { inline const QString ra = QStringLiteral("targra"); }
            constexpr int kMost = 7;
            void f(const std::string& name) {
                const std::string attribute = attr::ra.toStdString();
                throw std::runtime_error(name + " has no " "good " + attribute + ", of " + std::to_string(kMost));
            }"""
        self.assertEqual(messages(a=source), {"* has no good targra, of 7"})

    def test_has_both_ends_of_a_conditional_expression(self):
        source = 'void f(bool b) { throw std::logic_error("bad" + (b ? "" : "; worse")); }'
        self.assertEqual(messages(a=source), {"bad", "bad; worse"})

    def test_is_followed_through_helpers_to_every_call(self):
        source = """
            void fail(const std::string& what, const char* end = "!") { throw std::runtime_error(what + end); }
            void check(const std::string& who, int n) { if (n) { fail(who + " is " + text(n)); } }
            Thing::Thing(int n) : n_(n) { check("Sun", n); }
            void g(int n) { check("Moon", n); fail("Dark", "."); }"""
        self.assertEqual(messages(a=source), {"Sun is *!", "Moon is *!", "Dark."})

    def test_is_followed_through_the_helper_of_its_own_file(self):
        helper = 'void fail(const char* what) {{ throw std::runtime_error(what); }} void f() {{ fail("{}"); }}'
        self.assertEqual(messages(a=helper.format("one"), b=helper.format("two")), {"one", "two"})

    def test_that_cannot_be_told_is_an_error(self):
        for source in ("void f() { throw std::runtime_error(text()); }", "void f() { throw MyError(1); }",
                       'void f() { qWarning("careful"); }', 'void f() { std::printf("careful"); }'):
            with self.assertRaises(Unreadable, msg=source):
                messages(a=source)


class TheCheck(unittest.TestCase):
    """On a copy of the sources, the page and the manual."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.copy = pathlib.Path(folder.name)
        for part in ("pos", "man"):
            shutil.copytree(ROOT / part, self.copy / part)
        (self.copy / "docs").mkdir()
        shutil.copy(ROOT / "docs" / "messages.md", self.copy / "docs")

    def test_passes_as_it_is(self):
        self.assertEqual(complaints(self.copy), [])

    def change(self, name, old, new):
        path = self.copy / name
        text = path.read_text()
        self.assertIn(old, text)
        path.write_text(text.replace(old, new, 1))
        return complaints(self.copy)

    def test_finds_a_message_that_the_page_lacks(self):
        found = self.change("pos/positioner/poslib/Field.cpp", "\n} // namespace pos",
                            '\nvoid f() { throw std::runtime_error("A new one"); }\n} // namespace pos')
        self.assertEqual(found, ["docs/messages.md does not explain 'A new one', made in Field.cpp"])

    def test_finds_a_message_that_has_changed(self):
        found = self.change("pos/positioner/poslib/VekoTargets.cpp", '"No science target in field"', '"No target"')
        self.assertEqual(found, ["docs/messages.md does not explain 'No target', made in VekoTargets.cpp",
                                 "docs/messages.md explains 'No science target in field', which no code makes"])

    def test_finds_a_message_that_no_code_makes(self):
        found = self.change("docs/messages.md", "| `No input file` |", "| `No input file`<br>`No, nothing` |")
        self.assertEqual(found, ["docs/messages.md explains 'No, nothing', which no code makes",
                                 "veko_configure(1) lacks 'No, nothing'"])

    def test_finds_a_message_that_the_manual_lacks(self):
        found = self.change("man/veko_configure.1", '.B "No input file"', '.B "No output"')
        self.assertEqual(found, ["veko_configure(1) lacks 'No input file'",
                                 "docs/messages.md lacks 'No output' of veko_configure(1)"])


if __name__ == "__main__":
    unittest.main()
