"""Plants faults in valid documents, and sees how many of them veko check finds where they are, and mends.

    check_seeded_faults.py VEKO VEKO_CONFIGURE

A fault is found where a problem of its code is at its very line and column. It is mended where a run on the mended
document gives what a run on the valid one gives. Whatever is missed is named.
"""
import os
import sys
import tempfile

from findings import SeededFaults, places_of

LEAST_FAULTS, LEAST_FOUND, LEAST_MENDED = 300, 0.99, 0.80


def description(case):
    return f"{case.file}:{case.line}:{case.column}: {case.fault.code}, {case.fault.name}"


def main():
    veko, veko_configure = map(os.path.abspath, sys.argv[1:])
    # In memory, where each run does not wait for a disk.
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    with tempfile.TemporaryDirectory(dir=memory) as folder:
        faults = SeededFaults(folder)
        problems = faults.problems(veko)
        not_mended = faults.not_mended(veko, veko_configure)
    missed = [case for case in faults.cases if (case.line, case.column) not in places_of(case, problems[case.file])]
    for case in missed:
        told = ", ".join("{line}:{column} {code}".format(**problem) for problem in problems[case.file])
        print(f"not found: {description(case)}; told: {told or 'nothing'}")
    for case in not_mended:
        print(f"not mended: {description(case)}")
    count, mendable = len(faults.cases), len(faults.mendable())
    found, mended = 1 - len(missed) / count, 1 - len(not_mended) / mendable
    print(f"{count} faults, {found:.1%} found; {mendable} with a certain fix, {mended:.1%} mended")
    sys.exit(count < LEAST_FAULTS or found < LEAST_FOUND or mended < LEAST_MENDED)


if __name__ == "__main__":
    main()
