#!/bin/sh
# Makes the sample music: a few quiet tones in each of the three formats, with tags and covers of our own.
# Needs ffmpeg, lame, flac, metaflac, oggenc, rsvg-convert and convert (ImageMagick).
# Usage: tools/demo-unit/music/make-music.sh
set -eu
export LC_ALL=C.UTF-8 # the tags below are UTF-8
. "$(dirname "$0")/../../../tools/usage.sh"
no_words "$@"
cd "$(dirname "$0")"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# tones FILE SECONDS HERTZ STEPS: two notes a second that fade out, STEPS semitones above HERTZ, four in turn.
tones() {
    note="floor(mod(t*2,4))"
    set -- "$1" "$2" "$3" $4
    pitch="$3*pow(2,(eq($note,0)*$4+eq($note,1)*$5+eq($note,2)*$6+eq($note,3)*$7)/12)"
    ffmpeg -v error -y -f lavfi \
        -i "aevalsrc='0.12*sin(2*PI*t*$pitch)*exp(-4*mod(t,0.5))':s=16000:d=$2" \
        -fflags +bitexact -c:a pcm_s16le "$work/$1"
}

# picture NAME: the cover NAME.svg as NAME.png and NAME.jpg.
picture() {
    rsvg-convert -w 200 -h 200 "art/$1.svg" -o "$work/$1.png"
    convert "$work/$1.png" -strip -quality 85 "$work/$1.jpg"
}

tones corridor.wav 8 220 "0 4 7 12"
tones sunset.wav 6 247 "0 3 7 10"
tones river.wav 5 262 "0 5 9 12"
tones hall.wav 7 196 "12 7 5 0"
picture corridor
picture sunset

mkdir -p evening
lame --quiet -m m -b 32 --id3v2-only --id3v2-utf16 --tn 1 \
    --tt "Morning Corridor, with the Windows Open and the Radiators Ticking" \
    --ta "The Paper Lanterns 종이등불" --tl "Small Hours" --ti "$work/corridor.jpg" \
    "$work/corridor.wav" morning-corridor.mp3

flac --silent --force --best -o sunset-walk.flac "$work/sunset.wav"
metaflac --remove-all --dont-use-padding sunset-walk.flac
metaflac --set-tag="TITLE=노을 산책" --set-tag="ARTIST=종이등불" --set-tag="ALBUM=작은 시간" \
    --set-tag="TRACKNUMBER=2" --import-picture-from="3|image/png|||$work/sunset.png" sunset-walk.flac

lame --quiet -m m -b 32 --id3v2-only --id3v2-utf16 --tn 4 \
    --tt "등불이 꺼지기 전에 우리가 함께 걷던 강변의 긴 산책길과 노래" \
    --ta "종이등불과 바닷가 마을의 작은 합창단" --tl "작은 시간, 긴 저녁: 라이브 녹음 모음집" \
    "$work/river.wav" winter-river.mp3

oggenc --quiet -q 0 --serial 1 -t "Quiet Hall 조용한 홀" -a "The Paper Lanterns" -l "Small Hours" -N 3 \
    -o evening/quiet-hall.ogg "$work/hall.wav"
