#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Spreads a work list over machines with GNU parallel, or over this one:
#   scripts/cluster/list_parallel.sh SHARES jobs.ulist [options of umbrix list run]
# PARALLEL_HOSTS may hold more options of parallel, such as "--sshlogin one,two --workdir .".
set -euo pipefail
shares=${1:?how many shares?} list=${2:?which work list?}
shift 2
# shellcheck disable=SC2086 # the options are meant to fall into words
seq "$shares" | parallel --will-cite --halt soon,fail=1 ${PARALLEL_HOSTS-} \
    "${UMBRIX:-umbrix}" list run "$list" --shard "{}/$shares" --progress none "$@"
