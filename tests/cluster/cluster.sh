#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# A work list of 40 jobs three times: by one plain run, by GNU parallel, and by a Slurm array on a controller and a node
# of its own on this machine. The pictures have to be the same, byte for byte.
#   cluster.sh UMBRIX SOURCE_TREE WORK
set -euo pipefail
umbrix=$1 source_tree=$2 work=$3
export UMBRIX=$umbrix

fail() {
    echo "cluster: $*" >&2
    exit 1
}

stop_slurm() {
    for name in slurmd slurmctld; do
        [ ! -f "$work/slurm/$name.pid" ] || kill "$(cat "$work/slurm/$name.pid")" 2> /dev/null || true
    done
}
trap stop_slurm EXIT

rm -rf "$work"
mkdir -p "$work"/{plain,parallel,slurm}
cd "$work"

# 40 jobs: four example textures with ten settings each, each source under a name of its own.
prepare() {
    local folder=$1 i=0
    for texture in cobbles bricks cloth dunes; do
        for rays in 1 2 3 4 5 6 7 8 9 10; do
            cp "$source_tree/examples/textures/${texture}_height.png" "$folder/${texture}_$rays.png"
            "$umbrix" list add "$folder/jobs.ulist" "$folder/${texture}_$rays.png" \
                --height-map --rays "$rays" --radius 0.05 > /dev/null
            i=$((i + 1))
        done
    done
    [ "$i" -eq 40 ] || fail "40 jobs were wanted"
}

compare() {
    local count
    count=$(find "$work/$1" -name '*_Umbrix.png' | wc -l)
    [ "$count" -eq 40 ] || fail "$1 made $count of 40 pictures"
    for picture in "$work"/plain/*_Umbrix.png; do
        cmp "$picture" "$work/$1/$(basename "$picture")" || fail "$1 made another $(basename "$picture")"
    done
    echo "$1: 40 pictures, the same as those of a plain run"
}

prepare plain
prepare parallel
prepare slurm

"$umbrix" list run plain/jobs.ulist --progress none > plain.txt || fail "the plain run failed: $(cat plain.txt)"
[ "$(find plain -name '*_Umbrix.png' | wc -l)" -eq 40 ] || fail "the plain run did not make 40 pictures"

"$source_tree/scripts/cluster/list_parallel.sh" 4 "$work/parallel/jobs.ulist" > parallel.txt || fail "parallel failed"
compare parallel

# Free ports, so that a Slurm of the machine and other tests are left alone.
read -r controller node < <(python3 -c '
import socket
sockets = [socket.socket() for _ in range(2)]
for each in sockets:
    each.bind(("127.0.0.1", 0))
print(*(each.getsockname()[1] for each in sockets))')
host=$(hostname)
mkdir -p slurm/{state,spool}
cat > slurm/slurm.conf << END
ClusterName=umbrixtest
SlurmctldHost=$host(127.0.0.1)
SlurmctldPort=$controller
SlurmdPort=$node
SlurmUser=$(id -un)
SlurmdUser=$(id -un)
AuthType=auth/none
CredType=cred/none
StateSaveLocation=$work/slurm/state
SlurmdSpoolDir=$work/slurm/spool
SlurmctldPidFile=$work/slurm/slurmctld.pid
SlurmdPidFile=$work/slurm/slurmd.pid
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SwitchType=switch/none
ReturnToService=2
SchedulerParameters=sched_interval=1
NodeName=$host NodeAddr=127.0.0.1 CPUs=2 State=UNKNOWN
PartitionName=main Nodes=$host Default=YES MaxTime=INFINITE State=UP
END
export SLURM_CONF=$work/slurm/slurm.conf
slurmctld -D > slurm/slurmctld.txt 2>&1 &
slurmd -D > slurm/slurmd.txt 2>&1 &
for ((i = 0; i < 60; ++i)); do
    ! sinfo --noheader 2> /dev/null | grep -q idle || break
    sleep 1
done
sinfo --noheader | grep -q idle || fail "Slurm did not start: $(tail -n 3 slurm/slurmctld.txt slurm/slurmd.txt)"

job=$(sbatch --parsable --array=1-4 --output="$work/slurm/%a.txt" "$source_tree/scripts/cluster/list.sbatch" \
    "$work/slurm/jobs.ulist" --jobs 1)
for ((i = 0; i < 300; ++i)); do
    [ -n "$(squeue --noheader --jobs="$job" --states=PENDING,RUNNING,COMPLETING 2> /dev/null)" ] || break
    sleep 1
done
compare slurm
