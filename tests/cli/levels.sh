#!/usr/bin/env bash
# levels.sh LEVELS PROGRAM
# Runs the script that tabulates clocks level by level: on the program itself at a tiny size, where the form of what it
# writes is looked at, and on a stand-in with known clocks on a machine without the highest level.
set -u
levels=${1:?the script}
program=${2:?program to measure}
dir=$(mktemp -d) || exit 1
trap 'rm -rf "$dir"' EXIT

fail() {
    echo "FAILED: $1"
    exit 1
}
run() { "$levels" "$@" >"$dir/out" 2>"$dir/err" || fail "levels $*: $(cat "$dir/err")"; }

printf '%s\n' 'head' '<!-- Written by bench/levels from here on. -->' 'old table' >"$dir/page.md"
run --program "$program" --rounds 1 --page "$dir/page.md" -f=qoviAdd128_JPEG_16s8u_C1R -dImageSize=16x16
cell='[0-9.]+ \| ([0-9.]+|-)'
[ "$(grep -cE "^\| .qoviAdd128_JPEG_16s8u_C1R. \| 16x16 \| px \| $cell \| $cell \| ([0-9.]+|-) \|$" "$dir/out")" = 1 ] ||
    fail "no row of the form wanted: $(cat "$dir/out")"
[ "$(sed 1,3d "$dir/page.md")" = "$(cat "$dir/out")" ] || fail "the page does not end in what is printed"
[ "$(sed -n 1p "$dir/page.md")" = head ] || fail "the head of the page is lost"

# The second run of each level is the faster one.
cat >"$dir/program" <<'END'
#!/usr/bin/env bash
for key; do
    case $key in
        -T*) level=${key#-T} ;;
        -r*) table=${key#-r} ;;
        -u*) summary=${key#-u} ;;
    esac
done
echo "$level" >>"$0.runs"
slower=$((2 - $(grep -c "$level" "$0.runs")))
case $level in
    Px) up=$((20 + slower)) down=6.00 ;;
    V2) up=$((8 + slower)) down=2.00 ;;
    V3) up=$((5 + slower)) down=1.60 ;;
    *) exit 1 ;;
esac
title='funcBase,funcDataType,funcDescriptor,Len/Size,Parm1,Parm2,Parm3,Parm4,scaleFactor,Comment,Clocks,per,Time (usec),MFlops'
printf '%s\n' 'CPU,x86-64-v3 (AVX2), 2 GHz' 'OS,o' 'Computer,c' 'Library,l' 'Start,s' "$title" \
    'qoviUp,8u,C1R,size,order,-,-,-,-,parmNames,-,-,-,-' "qoviUp,8u,C1R,8x8,2,-,-,-,-,nLps=4,$up,px,1,-" \
    'qoviDown,8u,C1R,size,-,-,-,-,-,parmNames,-,-,-,-' "qoviDown,8u,C1R,8x8,-,-,-,-,-,nLps=4,$down,px,1,-" \
    'qoviStep,-,-,size,-,-,-,-,-,parmNames,-,-,-,-' 'qoviStep,-,-,8x8,-,-,-,-,-,nLps=4,9.00,px,1,-' >"$table"
printf '%s\n' CPU,c Function,Class 'qoviUp_8u_C1R,c,-,-,-,-,TimjSample' 'qoviDown_8u_C1R,c,-,-,-,-,TimjSample' \
    'qoviStep,c,-,-,-,-,TimjSample' END_DATA '.Number of tests,3' >"$summary"
END
chmod +x "$dir/program"
run --program "$dir/program" --rounds 2 -f
for line in '| `qoviUp_8u_C1R` | 8x8, order 2 | px | 20 | 8 | 5 | - | 4.0 |' \
    '| `qoviDown_8u_C1R` | 8x8 | px | 6.00 | 2.00 | 1.60 | - | 3.8 |' '- `qoviDown_8u_C1R`: 3.8' \
    '| `qoviStep` | 8x8 | px | 9.00 | 9.00 | 9.00 | - | 1.0 |'; do
    grep -qxF -- "$line" "$dir/out" || fail "no line: $line; but: $(cat "$dir/out")"
done
echo ok
