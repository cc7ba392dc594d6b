# shellcheck shell=bash
# Read by checks: a Slurm cluster of two nodes on loopback, all of it in one folder and under the caller's user.

# A free port each, for as long as nobody else takes it.
free_ports() {
  python3 -c '
import socket, sys
sockets = [socket.socket() for _ in range(int(sys.argv[1]))]
for it in sockets: it.bind(("127.0.0.1", 0))
print(*(it.getsockname()[1] for it in sockets))' "$1"
}

write_slurm_conf() {
  local folder=$1 controller n1 n2
  read -r controller n1 n2 < <(free_ports 3)
  cat >"$folder/slurm.conf" <<CONF
ClusterName=nox
SlurmctldHost=$(hostname)(127.0.0.1)
SlurmctldPort=$controller
SlurmUser=$(id -un)
SlurmdUser=$(id -un)
AuthType=auth/munge
CredType=cred/munge
# A task that is started again waits until the credential of its first start has run out.
AuthInfo=socket=$folder/munge.socket,cred_expire=10
StateSaveLocation=$folder/state
SlurmdSpoolDir=$folder/spool-%n
SlurmctldPidFile=$folder/slurmctld.pid
SlurmdPidFile=$folder/slurmd-%n.pid
SlurmctldLogFile=$folder/slurmctld.log
SlurmdLogFile=$folder/slurmd-%n.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SwitchType=switch/none
SelectType=select/linear
MpiDefault=none
MailProg=/bin/true
# A node that is silent for so many seconds is down.
SlurmdTimeout=10
ReturnToService=0
SchedulerParameters=batch_sched_delay=0,sched_interval=1
NodeName=n1 NodeHostname=$(hostname) NodeAddr=127.0.0.1 Port=$n1 CPUs=1
NodeName=n2 NodeHostname=$(hostname) NodeAddr=127.0.0.1 Port=$n2 CPUs=1
PartitionName=all Nodes=n1,n2 Default=YES MaxTime=INFINITE State=UP
CONF
}

cluster_processes=()

# Starts a daemon in the background; its id is the last of cluster_processes.
start_daemon() {
  "$@" >>"$cluster_folder/daemons.log" 2>&1 &
  cluster_processes+=($!)
}

# Fails when the cluster has been up for longer than anything should take.
demand_time() {
  if ((SECONDS > cluster_deadline)); then
    tail -n 20 "$cluster_folder"/{daemons,slurmctld}.log >&2
    squeue >&2
    echo "the cluster did not do it in time" >&2
    exit 1
  fi
}

# Starts it in FOLDER, and returns when both nodes are there; `slurmd_n1` is the id of the first one's daemon.
start_cluster() {
  cluster_folder=$1
  cluster_deadline=$((SECONDS + 1200))
  chmod 755 "$cluster_folder"
  mkdir "$cluster_folder"/{state,spool-n1,spool-n2}
  write_slurm_conf "$cluster_folder"
  export SLURM_CONF=$cluster_folder/slurm.conf
  head -c 128 /dev/urandom >"$cluster_folder/munge.key"
  chmod 400 "$cluster_folder/munge.key"
  start_daemon munged --foreground --force --num-threads=2 \
    --key-file="$cluster_folder/munge.key" --socket="$cluster_folder/munge.socket" \
    --seed-file="$cluster_folder/munge.seed" --pid-file="$cluster_folder/munge.pid"
  until [ -S "$cluster_folder/munge.socket" ]; do
    sleep 0.1
    demand_time
  done
  start_daemon slurmctld -D
  start_daemon slurmd -D -N n1
  slurmd_n1=${cluster_processes[-1]}
  start_daemon slurmd -D -N n2
  until [ "$(sinfo -h -t idle -o %D 2>/dev/null)" = 2 ]; do
    sleep 0.5
    demand_time
  done
}

# Cancels what still runs, and ends the daemons by their ids, the first one last.
stop_cluster() {
  [ ${#cluster_processes[@]} -gt 0 ] || return 0
  scancel --user="$(id -un)" 2>/dev/null || true
  local i
  for ((i = ${#cluster_processes[@]} - 1; i >= 0; i--)); do
    kill "${cluster_processes[i]}" 2>/dev/null || continue
    wait "${cluster_processes[i]}" 2>/dev/null || true
  done
  cluster_processes=()
}
