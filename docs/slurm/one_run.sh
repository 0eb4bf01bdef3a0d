#!/usr/bin/env bash
# One deck on several nodes. Adapt the lines of sbatch, then from the folder of the deck
#
#     sbatch one_run.sh plate.dat -pc_type gamg
#
#SBATCH --job-name=zurt
#SBATCH --nodes=2
#SBATCH --ntasks-per-node=16
#SBATCH --cpus-per-task=1
#SBATCH --mem-per-cpu=2G
#SBATCH --time=04:00:00
#SBATCH --output=%x-%j.log
# A minute ahead of the limit of time the run is asked to end, and leaves whole files (status 3).
#SBATCH --signal=TERM@60
set -euo pipefail

deck=${1:?"the deck, then PETSc's options"}
shift
name=$(basename -- "$deck")
program=${ZURT_MPI:-zurt-mpi}

# A BLAS with threads of its own would take the cores of the other processes.
export OMP_NUM_THREADS=1 OPENBLAS_NUM_THREADS=1
# All nodes see this folder or not: the first process alone reads the deck and writes.
srun "$program" --output "${name%.*}-$SLURM_JOB_ID" "$deck" "$@"
