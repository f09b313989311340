#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The main job: installs what is missing, builds, and prints samples/brochure.ps with settings of the sample description.
# Leaves in out/: the ticket, the spliced document, pictures of its pages before and after, a summary, and in out/pane/
# pictures of every page of the pane in a print dialog.
#
#     ./run.sh             all of it, without a display
#     ./run.sh --dialog    shows the print dialog over a private print server with the sample queue
set -euo pipefail
cd "$(dirname "$0")"
./scripts/install-deps.sh

cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target torka torkafilter torka-print-dialog torka_bundle

torka=english_torka
ppd=samples/torka-production.ppd
document=samples/brochure.ps

english_torka() { # ARGUMENT...: the tool, whose output this script reads
    LC_ALL=C.UTF-8 build/release/bin/torka "$@"
}

dialog() { # ARGUMENT...: the print dialog over a private server with the sample queue
    ./scripts/cups-sandbox run bash -c '
        set -e
        ppd=$1; shift
        controller="$TORKA_SYSTEM_ROOT/etc/torka/controllers/127.0.0.1"
        mkdir -p "$controller"
        cp -r samples/server-data/. "$controller/"
        keys="$TORKA_SYSTEM_ROOT/var/lib/torka/ZAN"
        mkdir -p "$keys"
        cp samples/FieldKeys.plist "$keys/"
        torka queue add Production torkasink:/ "$ppd"
        torka address set -d Production --two-way Production 127.0.0.1
        torka-print-dialog --queue Production "$@"' dialog "$ppd" "$@"
}
if [ "${1:-}" = "--dialog" ]; then
    dialog "$document"
    exit
fi

wanted=(QVTrimSides=Face QVDuplex=LongEdge) # trimming needs a unit that is not declared installed
secret=$(mktemp) # a secret belongs on no command line
trap 'rm -f "$secret"' EXIT
printf harbor7 >"$secret"
settings=(PageSize=A4 MediaType=Coated QVMediaWeight=W136 QVDuplex=LongEdge QVStaple=Saddle QVScale=85
    "Notes1=Two proofs, please" "Instruct=Trim to the crop marks" "DeptPassword=@$secret")
watermark="0,0,0,232,93,58,0,0,0,450,0,0,120,Helvetica-Bold,PROOF"
out=out
rm -rf "$out"
mkdir -p "$out"

render() { # DOCUMENT PREFIX
    gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=png16m -r72 -dTextAlphaBits=4 -dGraphicsAlphaBits=4 \
        -o "$out/$2-%d.png" "$1"
}

{
    echo "Document:    $document"
    echo "Description: $ppd"
    echo
    echo "Wanted at first: ${wanted[*]}"
    "$torka" check "$ppd" "${wanted[@]}" --solve | sed '/^Forbidden/,/^A resolution/{/^A resolution/!d}' || true
    echo
    echo "Settings of the job:"
    printf '  %s\n' "${settings[@]}"
    echo "  watermark $watermark"
    echo
    echo "Conflicts among them:"
    "$torka" check "$ppd" "${settings[@]}" | sed -n '1p'
    echo
    echo "Where the ticket's entries went:"
    "$torka" emit "$ppd" "${settings[@]}" --watermark "$watermark" --keys samples/FieldKeys.plist \
        --ticket "$out/ticket.plist" --splice "$document" --output "$out/job.ps" |
        sed -n 's/^Site /  site /p; s/^Removed: /  removed /p; s/^File destination: /  file /p'
    echo
    echo "The department password in the job, and its proof with the key file:"
    hex=$(sed -n 's/^%%DeptPassword: //p' "$out/job.ps")
    echo "  %%DeptPassword: $hex"
    echo "  deciphered: $("$torka" notes decrypt --keys samples/FieldKeys.plist "$hex")"
} >"$out/summary.txt"

render "$document" before
render "$out/job.ps" after

QT_QPA_PLATFORM=offscreen dialog --pictures "$out/pane" "$document"

cat "$out/summary.txt"
echo
echo "In $out/:"
ls "$out"
