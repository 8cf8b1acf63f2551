#!/usr/bin/env bash
#SBATCH --job-name=orva
#SBATCH --array=1-4
#SBATCH --cpus-per-task=1
#SBATCH --mem=2G
#SBATCH --time=60
# sbatch array.sh, in the directory that holds molecules/: task I of N takes the molecules I, I+N, I+2N, ... Choose N
# (--array=1-N) so that a task lasts minutes: starting one takes longer than a small molecule does.
set -u
shopt -s nullglob

molecules=(molecules/*.fchk molecules/*.wfn)
status=0
for ((i = SLURM_ARRAY_TASK_ID - 1; i < ${#molecules[@]}; i += SLURM_ARRAY_TASK_COUNT)); do
  ./molecule.sh "${molecules[i]}" || status=1
done
exit "$status"
