#!/usr/bin/env bash
# The main job: installs what is missing, builds, and prints samples/brochure.ps with settings of the sample description.
# Leaves in out/: the ticket, the spliced document, pictures of its pages before and after, and a summary.
set -euo pipefail
cd "$(dirname "$0")"
./scripts/install-deps.sh

cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target torka

torka=build/release/bin/torka
ppd=samples/torka-production.ppd
document=samples/brochure.ps
settings=(PageSize=A4 MediaType=Coated QVMediaWeight=W136 QVDuplex=LongEdge QVStaple=Saddle QVScale=85
    "Notes1=Two proofs, please" "Instruct=Trim to the crop marks")
out=out
rm -rf "$out"
mkdir -p "$out"

render() { # DOCUMENT PREFIX
    gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=png16m -r72 -dTextAlphaBits=4 -dGraphicsAlphaBits=4 \
        -o "$out/$2-%d.png" "$1"
}

{
    echo "Document: $document"
    echo "Description: $ppd"
    echo
    echo "Settings:"
    printf '  %s\n' "${settings[@]}"
    echo
    "$torka" check "$ppd" "${settings[@]}" || [ $? -eq 1 ]
} >"$out/summary.txt"
{
    echo
    echo "Where the ticket's entries went:"
    "$torka" emit "$ppd" "${settings[@]}" --ticket "$out/ticket.plist" --splice "$document" --output "$out/job.ps" |
        sed -n '/^Site /p; /^Removed: /p; /^File destination: /p'
} >>"$out/summary.txt"

render "$document" before
render "$out/job.ps" after

cat "$out/summary.txt"
echo
echo "In $out/:"
ls "$out"
