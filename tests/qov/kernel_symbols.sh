#!/bin/bash
# kernel_symbols.sh NM LEVEL OBJECT... : the objects of a level define nothing that the linker might take for another
# level: no weak or COMDAT symbol, and no global one outside the namespace of the level.
nm=$1 level=$2
shift 2
[ $# -gt 0 ] || { echo "no objects given"; exit 1; }
bad=$("$nm" -C --defined-only "$@" | awk -v ns="qov::$level::" '
    NF >= 3 && $2 ~ /^[uvVwWiC]$/ { print "weak: " $0 }
    NF >= 3 && $2 ~ /^[TDBRGS]$/ && index($3, ns) != 1 { print "global: " $0 }')
[ -z "$bad" ] || { echo "$bad"; exit 1; }
"$nm" -C --defined-only "$@" | grep -q "qov::$level::" || { echo "no symbol of qov::$level"; exit 1; }
