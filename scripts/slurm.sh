#!/usr/bin/env bash
# Runs the batch examples for real: the array on a Slurm of its own (one node, this machine), with a task that is killed
# and requeued, and GNU parallel; their summaries must be those of one run alone. As root, which Slurm's daemons need.
#   scripts/slurm.sh
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

clips=24 tasks=8
install_packages "${packages_build[@]}" "${packages_cluster[@]}"
configure_release
cmake --build build/release --target orbitwalk
export ORBITWALK=$PWD/build/release/orbitwalk

work=$(mktemp -d)
export SLURM_CONF=$work/slurm.conf
daemons=()
finish() {
    [ ${#daemons[@]} -eq 0 ] || kill "${daemons[@]}" 2>/dev/null || true
    wait
    rm -rf "$work"
}
trap finish EXIT

fail() {
    echo "scripts/slurm.sh: $1" >&2
    tail -n 20 "$work"/*.log "$work"/task-*.txt >&2 || true
    exit 1
}

# wait_for SECONDS WHAT COMMAND...: until the command succeeds.
wait_for() {
    local seconds=$1 what=$2
    shift 2
    for ((i = 0; i < seconds * 5; ++i)); do
        "$@" >/dev/null 2>&1 && return
        sleep 0.2
    done
    fail "$what did not happen within $seconds s"
}

start() {
    "$@" >"$work/$(basename "$1").out" 2>&1 &
    daemons+=($!)
}

start_slurm() {
    local host
    host=$(hostname -s)
    mkdir "$work/state" "$work/spool"
    (umask 077 && head -c 1024 /dev/urandom >"$work/munge.key")
    cat >"$SLURM_CONF" <<END
ClusterName=orbitwalk
SlurmctldHost=$host(127.0.0.1)
SlurmUser=root
AuthType=auth/munge
AuthInfo=socket=$work/munge.sock
SlurmctldPort=16817
SlurmdPort=16818
StateSaveLocation=$work/state
SlurmdSpoolDir=$work/spool
SlurmctldPidFile=$work/slurmctld.pid
SlurmdPidFile=$work/slurmd.pid
SlurmctldLogFile=$work/slurmctld.log
SlurmdLogFile=$work/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
MpiDefault=none
# Two tasks at a time, however many cores there are.
SlurmdParameters=config_overrides
NodeName=$host NodeAddr=127.0.0.1 CPUs=4 RealMemory=8000
PartitionName=main Nodes=$host Default=YES
END
    start munged --foreground --force --key-file="$work/munge.key" --socket="$work/munge.sock" \
        --pid-file="$work/munged.pid" --log-file="$work/munged.log" --seed-file="$work/munge.seed"
    wait_for 20 "munged's socket" test -S "$work/munge.sock"
    start slurmctld -D
    start slurmd -D -N "$host"
    wait_for 60 "an idle node" sh -c "sinfo -h -o %t | grep -qx idle"
}

# expect_same DIR: what is in the summaries of the single run.
expect_same() {
    cmp "$work/alone/summary.csv" "$1/summary.csv" && cmp "$work/alone/summary.json" "$1/summary.json" ||
        fail "the summary in $1 is another than that of one run alone"
}

# tool_of TASK: the process of an array's task.
tool_of() {
    pgrep -f "^$ORBITWALK batch .*--shard $1/$tasks "
}

echo "id,video,refine" >"$work/clips.csv"
for ((i = 0; i < clips; ++i)); do
    "$ORBITWALK" simulate -o "$work/$i.mp4" --size 320x240 --frames 40 --seed "$i" -q
    echo "clip$i,$i.mp4,yes" >>"$work/clips.csv"
done
"$ORBITWALK" batch "$work/clips.csv" -o "$work/alone"

start_slurm
job=$(sbatch --parsable --array=0-$((tasks - 1)) --output="$work/task-%a.txt" \
    examples/batch/sweeps.sbatch "$work/clips.csv" "$work/array")
# Task 1 is killed after its first clip.
wait_for 300 "the first clip of task 1" test -e "$work/array/clip1/clip.json"
kill -KILL "$(tool_of 1)" || fail "task 1 ended before it was killed"
wait_for 60 "the failure of task 1" sh -c "scontrol show job ${job}_1 | grep -q JobState=FAILED"
[ ! -e "$work/array/clip$((1 + 2 * tasks))/clip.json" ] || fail "task 1 had made all its clips when it was killed"
scontrol requeue "${job}_1"
wait_for 600 "the end of the array" sh -c "[ -z \"\$(squeue -h -j $job)\" ]"
[ "$(scontrol show job "$job" | grep -c JobState=COMPLETED)" -eq "$tasks" ] || fail "not all tasks completed"
expect_same "$work/array"
echo "Slurm: $tasks tasks, $clips clips, one task killed and requeued: the summary of one run alone"

examples/batch/parallel.sh 3 "$work/clips.csv" "$work/parallel" --jobs 2
expect_same "$work/parallel"
echo "GNU parallel: 3 shards, $clips clips: the summary of one run alone"
