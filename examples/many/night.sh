#!/usr/bin/env bash
# Checks and configures the field definitions of a night, makes a page of each, and compares them with an earlier run:
#
#   [sbatch [--array=0-15]] night.sh [--against CONFIGURED] FIELDS NIGHT [OPTION...]
#
# FIELDS/NAME.xml gives NIGHT/checked/NAME.txt, configured/NAME.xml, reports/NAME.html and, if it is in CONFIGURED too,
# compared/NAME.txt; or failed/NAME.txt. OPTIONs of veko_configure go to every run. Another call does what is left.
#SBATCH --job-name=night --array=0-3 --output=%x_%A_%a.log
set -euo pipefail
against=() failed=0 first=${SLURM_ARRAY_TASK_MIN:-1} tasks=${SLURM_ARRAY_TASK_COUNT:-1}
if [ "${1:-}" = --against ]; then folder=$(realpath -e "${2:-}") || exit 2; against=(--against "$folder"); shift 2; fi
[[ $# -gt 1 && -d $1 && ! $1 -ef $2 ]] || { sed -n '2,7s/^# \?//p' "$0" >&2 && exit 2; }
mkdir -p "$2"/{checked,configured,reports,compared,failed,work}
fields=$(realpath "$1") night=$(realpath "$2") options=("${@:3}") with="${against[*]} ${*:3}"
look_at() { # NAME: the document that the functions are about
    name=$1 document=$fields/$1.xml results=("checked/$1.txt" "configured/$1.xml" "reports/$1.html")
    [ ! -e "${against[1]:-/dev/null}/$1.xml" ] || results+=("compared/$1.txt")
}
current() { [[ -e $night/$1 && ! $night/$1 -nt $document && ! $night/$1 -ot $document ]]; } # has the document's time
finished() { look_at "$1" && for r in "${results[@]}"; do current "$r" || current "failed/$1.txt" || return; done; }
make() { # RESULT FILE COMMAND...: unless it is there. What the check refuses is finished; what else fails is not.
    ! current "$1" || return 0
    "${@:3}" >said 2>&1 && status=0 || status=$?
    case ${1%%/*}:$status in
        *:0 | compared:1) touch -r "$name.xml" "$2" && sync "$2" && mv "$2" "$night/$1" ;;
        checked:1) touch -r "$name.xml" said && sync said && mv said "$night/failed/$name.txt" && exit 0 ;;
        *) echo "$name.xml: error: $3 ends with $status: $(<said)" >why && mv why "$night/failed/$name.txt" && exit 1 ;;
    esac
}
if [ -n "${ONLY:-}" ]; then # one document, in a folder whose name is in none of the results
    look_at "$ONLY"
    rm -rf "$night/work/$name".?????? # of a call that was killed
    work=$(mktemp -d "$night/work/$name.XXXXXX") && trap 'rm -rf "$work"' EXIT
    cd "$work" && cp -p "$document" .
    for old in "${results[@]}" "failed/$name.txt"; do current "$old" || rm -f "$night/$old"; done
    make "checked/$name.txt" said veko check "${options[@]}" "$name.xml"
    make "configured/$name.xml" configured veko_configure "${options[@]}" -i "$name.xml" -o configured
    make "reports/$name.html" page veko report "${options[@]}" "$name.xml" -o page
    [ ${#results[@]} -lt 4 ] || make "${results[3]}" said veko compare {"${against[1]}",../../configured}/"$name.xml"
    exit
fi
# Results of different options must not mix, documents of an array not be left out. A link is there whole or not at all.
ln -sn -- "$with" "$night/arguments" 2>/dev/null || begun=$(readlink -v "$night/arguments")
[ "${begun=$with}" = "$with" ] || { echo "$2 was begun with \"$begun\", not with \"$with\"" >&2 && exit 2; }
[ $((${SLURM_ARRAY_TASK_MAX:-1} - first + 1)) -eq "$tasks" ] || { echo "The array has gaps" >&2 && exit 2; }
slice=$((${SLURM_ARRAY_TASK_ID:-1} - first + 1))~$tasks
mapfile -t names < <(cd "$fields" && compgen -G '*.xml' | LC_ALL=C sort | sed -n "$slice"'s/\.xml$//p')
[ ! -t 2 ] || export PARALLEL="--bar ${PARALLEL:-}"
for name in "${names[@]}"; do finished "$name" || echo "$name"; done |
    parallel ${SLURM_CPUS_ON_NODE:+--jobs "$SLURM_CPUS_ON_NODE"} --no-run-if-empty --quote --env PATH \
        env ONLY={} "$(realpath "$0")" "${against[@]}" "$fields" "$night" "${options[@]}" || true
for name in "${names[@]}"; do
    if ! finished "$name" || [ -e "$night/failed/$name.txt" ]; then
        grep -sm 1 ' error: ' "$night/failed/$name.txt" || echo "$name.xml: not finished"
        failed=$((failed + 1))
    elif [ ${#results[@]} -eq 4 ] && read -r said <"$night/${results[3]}" && [[ $said != "the same"* ]]; then
        echo "$name.xml differs: $said"
    fi
done
echo "${#names[@]} documents, $failed failed" && [ "$failed" -eq 0 ]
