#!/bin/bash
# timed_span.sh PROGRAM [PRIMITIVE]
# Looks at the machine code of the two timed loops of one primitive and fails unless the counter is read where it
# should be and nothing is called inside the timed span but the primitive. PROGRAM is an optimised build without
# instrumentation: sanitizers and coverage put calls of their own everywhere.
set -u
program=${1:?program to look at}
primitive=${2:-qoviAdd128_JPEG_16s8u_C1R}

if ! command -v objdump >/dev/null; then
    echo "skipped: there is no objdump"
    exit 77
fi

# The function's fenced counter reads (T), calls of the primitive (P), other calls and jumps out of it (their target in
# <>), and backward jumps (B), in the order of the code; up to the last counter read.
steps() {
    objdump -d -C --no-show-raw-insn "$program" | awk -v head="<$1(" -v primitive="$primitive" '
        /^[0-9a-f]+ <.*>:$/ {
            inside = index($0, head) && !index($0, "[clone")
            next
        }
        !inside { next }
        {
            here = $1
            sub(/:.*/, "", here)
            name = ""
            if (match($0, /<[^>]*>/)) name = substr($0, RSTART, RLENGTH)
        }
        $2 == "lfence" { line = line "F"; kept = line; next }
        $2 ~ /^rdtsc/ { line = line "R"; kept = line; next }
        $2 == "bnd" || $2 == "notrack" { $2 = $3; $3 = $4 }
        $2 ~ /^call/ { line = line (index(name, "<" primitive ">") || index(name, "<" primitive "@") ? "P" : name "?"); next }
        $2 ~ /^j/ {
            if (!index(name, head)) line = line name "?"
            else if (length($3) < length(here) || (length($3) == length(here) && $3 "" <= here "")) line = line "B"
        }
        END { gsub(/FRF/, "T", kept); print kept }'
}

failed=0
# expect FUNCTION PATTERN WHAT: the steps, as a whole, match the pattern.
expect() {
    local found
    found=$(steps "$1")
    if [[ $found =~ ^$2$ ]]; then
        echo "ok: $1: $found"
    else
        echo "FAILED: $1: \"$found\" where $3 is wanted"
        failed=1
    fi
}

# A warm call; then one read, a loop over one call, one read.
expect "tim_${primitive}_loop" 'PTPBT' 'PTPBT (call, read, call in a loop, read)'
# A pair of reads around one call, in a loop; and the read of the fresh start behind the warm call, on either side
# of the pair in the code.
expect "tim_${primitive}_stat" 'B*(TPTB*T|TB*TPT)' 'a pair of reads around one call, and one read alone'
exit $failed
