#!/bin/bash
# The same without a scheduler: shards of a manifest by GNU parallel, on this machine or, with --sshlogin, on others that
# see the same folder.
#   parallel.sh SHARDS MANIFEST DIR [OPTIONS OF parallel]
set -euo pipefail
shards=$1 manifest=$2 out=$3
shift 3
seq 0 $((shards - 1)) |
    parallel "$@" --halt never "${ORBITWALK:-orbitwalk}" batch "$manifest" -o "$out" --shard "{}/$shards"
