"""Holds the commands of CONTRIBUTING.md to the tree: programs are executable files, presets are those of CMake.

Names every command that cannot be run.
"""
import json
import os
import re

from pages import ROOT, finish

# What presets each command of CMake's takes.
PRESETS = {("cmake",): "configurePresets", ("cmake", "--build"): "buildPresets", ("ctest",): "testPresets"}


def problem_of(command, presets):
    words = command.split()
    if "--preset" in words:
        kind = PRESETS.get(tuple(words[:words.index("--preset")]))
        names = {preset["name"] for preset in presets.get(kind, []) if not preset.get("hidden")}
        return None if words[-1] in names else f"no such preset: {command}"
    path = ROOT / words[0]
    return None if "/" in words[0] and path.is_file() and os.access(path, os.X_OK) else f"no such command: {command}"


def main():
    presets = json.loads((ROOT / "CMakePresets.json").read_text())
    blocks = re.findall(r"^```sh\n(.*?)^```", (ROOT / "CONTRIBUTING.md").read_text(), re.M | re.S)
    commands = [line.split("#")[0].strip() for block in blocks for line in block.splitlines() if line.strip()]
    problems = [problem for problem in (problem_of(command, presets) for command in commands) if problem]
    if len(commands) < 10:
        problems.append("next to no commands were found")
    finish(problems)


main()
