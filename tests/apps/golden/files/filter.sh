# SPDX-License-Identifier: Apache-2.0
# Runs the filter as the print server does: sh filter.sh KIND TITLE OPTIONS [USER] < DOCUMENT
export CONTENT_TYPE=application/vnd.cups-$1 PPD=${PPD-kinds.ppd} PRINTER=Proofs DEVICE_URI=torkasink:/
torkafilter "${JOB-7}" "${4-anna}" "$2" 1 "$3" 2> errors
status=$?
sed 's/=eN.*/=.../' errors >&2 # compressed records differ between versions of zlib
exit $status
