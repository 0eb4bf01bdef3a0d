#!/usr/bin/env bash
# Many decks, one core each, one folder each. The decks stand in a list, one name a line:
#
#     ls study/*.dat >decks.txt
#     sbatch --array=1-$(wc -l <decks.txt)%40 many_runs.sh decks.txt
#
# %40: forty at a time. A deck that fails can be run again by its number: sbatch --array=17 many_runs.sh decks.txt
#SBATCH --job-name=zurt-study
#SBATCH --ntasks=1
#SBATCH --cpus-per-task=1
#SBATCH --mem=2G
#SBATCH --time=01:00:00
#SBATCH --output=%x-%A-%a.log
set -euo pipefail

list=${1:?"the list of decks"}
deck=$(sed -n "${SLURM_ARRAY_TASK_ID}p" "$list")
[[ -n $deck ]] || {
    echo "no deck in line $SLURM_ARRAY_TASK_ID of $list" >&2
    exit 2
}
name=$(basename -- "$deck")
program=${ZURT:-zurt}

# --force: what a run of the same deck that was cut off has left is overwritten.
"$program" --quiet --force --output "runs/${name%.*}" "$deck"
