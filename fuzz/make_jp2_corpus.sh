#!/usr/bin/env bash
# Writes the seeds of the JPEG 2000 fuzzer: make_jp2_corpus.sh JPEG2KCODEC FOLDER. Small pictures, coded by our own
# command and, for what it does not write, by opj_compress (libopenjp2-tools).
set -e
codec=$(realpath "$1") out=$2
mkdir -p "$out"
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
picture() { # width height channels: a slope with texture, as PNM
    awk -v w="$1" -v h="$2" -v n="$3" 'BEGIN {
        print (n == 3 ? "P3" : "P2"), w, h, 255
        for (y = 0; y < h; y++) for (x = 0; x < w; x++) for (c = 0; c < n; c++)
            print (5 * x + 3 * y * (c + 1) + 40 * ((x * y + c) % 5 == 0)) % 256 }'
}
picture 33 21 3 | convert - "$dir/rgb.ppm"
picture 33 21 1 | convert - "$dir/grey.pgm"
convert "$dir/rgb.ppm" -type TrueColor "BMP3:$dir/rgb.bmp"
convert "$dir/grey.pgm" -type Grayscale -depth 8 "BMP3:$dir/grey.bmp"

own() { "$codec" -i "$dir/$1.bmp" -o "$out/own_$2.jp2" "${@:3}" 2>"$dir/errors"; }
own rgb lossless
own rgb no_mct -mct- -wlev 1
own rgb lossy -wt wt97 -ratio 4
own rgb derived -wt wt97 -ratio 2 -dquant 0.7
own grey grey -wlev 9
own grey palette -gray never -wlev 0

other() { opj_compress -i "$dir/$1" -o "$out/$2" "${@:3}" >"$dir/errors" 2>&1; }
for order in LRCP RLCP RPCL PCRL CPRL; do
    other rgb.ppm "order_$order.j2k" -p "$order" -n 3 -c '[8,8],[8,8],[4,4]' -t 16,16
done
for style in 1 2 4 8 16 32 63; do other grey.pgm "style_$style.j2k" -M "$style" -n 2 -b 16,16; done
other rgb.ppm irreversible.jp2 -I -r 5 -n 3
other rgb.ppm layers.j2k -M 4 -r 20,5,1 -n 3
other rgb.ppm changes.j2k -n 3 -POC T1=0,0,1,2,3,RLCP/T1=0,0,1,3,3,CPRL
other rgb.ppm offsets.j2k -d 3,5 -T 1,2 -t 15,11 -n 3
other grey.pgm subsampled.j2k -s 2,2 -n 3
other rgb.ppm parts.j2k -t 20,20 -TP R -n 3
