#!/usr/bin/env bash
# Configures every field definition of a folder, as many at a time as there are processors, with GNU parallel.
#
#   configure_all.parallel.sh FIELDS CONFIGURED [OPTION...]
#
# FIELDS/NAME.xml becomes CONFIGURED/NAME.xml. Options go to every run of veko_configure. A second call does what is
# left: documents that failed, were never begun, or are new. Exit status 0 when nothing is left.
set -euo pipefail

if [ $# -lt 2 ] || [ ! -d "$1" ] || [ "$1" -ef "$2" ]; then
    echo "Usage: $0 FIELDS CONFIGURED [OPTION...]   (two different folders)" >&2
    exit 2
fi
fields=$1
configured=$2
options=("${@:3}")
program=${VEKO_CONFIGURE:-veko_configure}
list=$configured/inputs.txt
log=$configured/joblog.txt

mkdir -p "$configured"
touch "$list" "$log"
# The job log knows a document by its number in the list alone, so a document keeps its number: new ones go to the end.
find "$fields" -maxdepth 1 -name '*.xml' -printf '%f\n' | LC_ALL=C sort | { grep -vxFf "$list" || true; } >>"$list"

# --tag puts the document's name before the message of a run; --quote keeps blanks in names together.
status=0
parallel --bar --tag --quote --joblog "$log" --resume-failed \
    "$program" "${options[@]}" -i "$fields/{}" -o "$configured/{}" <"$list" || status=$?

# A document has a line in the log for each time it was tried; the last one counts. Column 7 is the exit status.
awk -F '\t' -v names="$list" '
    BEGIN { while ((getline name <names) > 0) document[++count] = name }
    FNR > 1 { result[$1] = $7 + $8 }
    END {
        for (number = 1; number <= count; number++)
            if (!(number in result) || result[number] != 0) {
                print "not configured: " document[number]
                left++
            }
        printf "%d of %d configured\n", count - left, count
    }' "$log"
exit "$status"
