#!/usr/bin/env bash
# other_library.sh none|elsewhere SOURCE [cmake arguments]
# Builds the project in SOURCE anew, in a temporary folder, and looks at the program that comes out:
#   none       without a library (-DQOV=none)
#   elsewhere  with a library from another place (-DQOV_ROOT=dir): the bundled one, built alone and installed
set -u
form=${1:?none or elsewhere}
source=${2:?folder of the project}
shift 2
configure=("$@" -DCMAKE_BUILD_TYPE=Debug)

dir=$(mktemp -d) || exit 1
trap 'rm -rf "$dir"' EXIT

fail() {
    echo "FAILED: $1" >&2
    [ -f "$dir/out" ] && cat "$dir/out" >&2
    exit 1
}

# step COMMAND...: its output is of interest only when it fails.
step() { "$@" >"$dir/out" 2>&1 </dev/null || fail "$*"; }

build_program() { # cmake arguments
    step cmake -S "$source" -B "$dir/build" "${configure[@]}" -DBUILD_TESTING=OFF "$@"
    step cmake --build "$dir/build" -j2 --target quolkit
}

program() { # keys; the output stays in $dir/out for wants and lacks
    "$dir/build/quolkit" "$@" >"$dir/out" 2>&1 </dev/null || fail "quolkit $* ended with $?"
}
wants() { grep -qE -- "$1" "$dir/out" || fail "no line like: $1"; }
lacks() { ! grep -qE -- "$1" "$dir/out" || fail "a line like: $1"; }

if [ "$form" = none ]; then
    build_program -DQOV=none
    left_out='^\| Library  : none \(built with QOV=none\): the suites are left out +\|$'

    program -v
    wants 'Quolkit.*2\.0'
    program -h
    wants '^QUICK HELP$'
    lacks '^-[TN]\['
    program -e -TPx
    wants '^-TPx: ignored: incorrect option key$'
    wants "$left_out"
    wants $'^   1\t__qkVorexCpu\t'
    lacks 'qov[isj]'
    program -B -LPERF -r -u
    wants "$left_out"
    wants '^Vendor-ID      .'
    wants '^\| -OK +__qkVorexCpu '
    wants '^\| \.Failures        : 0 '
    lacks 'calling qov'
    grep -q '^__qkVorexCpu,Information,.*,OK,quolkit$' "$dir/build/quolkit_sum.csv" || fail "no line in the summary table"
else
    step cmake -S "$source/qov" -B "$dir/library" "${configure[@]}"
    step cmake --build "$dir/library" -j2
    step cmake --install "$dir/library" --prefix "$dir/elsewhere"
    build_program -DQOV_ROOT="$dir/elsewhere"
    [ ! -e "$dir/build/qov" ] || fail "the bundled library is built too"

    program -B -fAdd128 -dMethod=Manual -dNumLoops=2 -r
    wants '^\| Library  : qovj, '
    wants '^\| -OK +qoviAdd128_JPEG_16s8u_C1R '
    rows=$(grep -cE '^qoviAdd128_JPEG,16s8u,C1R,[0-9]+x[0-9]+,-,-,-,-,-,nLps=2,[0-9.]+,px,' "$dir/build/quolkit.csv")
    [ "$rows" = 3 ] || fail "$rows rows in the performance table where 3 are wanted"

    mkdir "$dir/empty"
    ! cmake -S "$source" -B "$dir/refused" "${configure[@]}" -DQOV_ROOT="$dir/empty" >"$dir/out" 2>&1 ||
        fail "a folder without a library is accepted"
fi
echo "ok: $form"
