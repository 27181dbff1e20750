#!/bin/bash
# Renders the icons and the logo beside this script from the outlines in svg/. The *_icon.svg outlines, those of the
# program itself aside, are Tabler icons 3.51 (LICENSE.tabler), coloured and in part cropped for this program.
# Needs rsvg-convert (librsvg) and icotool (icoutils).
set -eu
cd "$(dirname "$0")"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# png NAME HEIGHT: NAME.png, HEIGHT pixels high, and NAME@2x.png for screens of double density.
png() {
    rsvg-convert --keep-aspect-ratio --height "$2" --output "$1.png" "svg/$1.svg"
    rsvg-convert --keep-aspect-ratio --height "$(($2 * 2))" --output "$1@2x.png" "svg/$1.svg"
}

# ico NAME OUTPUT SIZE...: OUTPUT.ico with the sizes in this order; a reader that wants just one picture takes the
# first. The size 256 is stored compressed, as every Windows since Vista expects it.
ico() {
    local name=$1 output=$2 size files=()
    shift 2
    for size in "$@"; do
        rsvg-convert --width "$size" --height "$size" --output "$work/$size.png" "svg/$name.svg"
        if [ "$size" = 256 ]; then files+=("--raw=$work/$size.png"); else files+=("$work/$size.png"); fi
    done
    icotool --create --output "$output.ico" "${files[@]}"
}

# Heights are those that the scene shows at a scale of one.
for name in close reset confirm profile expand_down expand_up details save delete; do
    png "${name}_icon" 24
done
png select_all_icon 20
png un_select_all_icon 20
png user_icon 30
png add_user_icon 30
png velstrand_logo 192
png velstrand_icon 64
for name in add search; do
    ico "${name}_icon" "${name}_icon" 24 16 32 48 64
    ico "${name}_icon" "${name}_icon@2x" 48 32
done
ico velstrand_icon velstrand 256 128 64 48 32 24 16
