#!/usr/bin/env bash
# molecule.sh molecules/NAME.fchk (or NAME.wfn): density, ionization potential and its lowest values on the surface, in
# out/NAME/. A molecule is done when out/NAME/sites is there; then nothing is done again. What is told about it is kept
# in out/NAME/messages and told once more at the end, behind its name. If a step fails, the last of these lines says
# why, half-made cube files are removed, and the status is 1.
set -euo pipefail

input=$(realpath "$1")
name=$(basename "$1")
out=out/${name%.*}
if [ -e "${1%.*}.fchk" ] && [ -e "${1%.*}.wfn" ]; then
  echo "$1: error: there is another molecule of this name" >&2
  exit 1
fi
if [ -e "$out/sites" ]; then
  exit
fi
mkdir -p "$out"
cd "$out"

# Change here what is computed. The grid has a third of the points of orva-grid's own: the lowest values of aniline
# move by 0.0005 hartree at most, and two thousand molecules of its size take 8 GB. orva-grid also prints
# INPUT_CONVENTION 1, without which WFN files are read otherwise than they are meant.
steps() {
  orva-grid "$input" 5 0.25 > config &&
    orva -i "$input" -t "${name##*.}" -o report &&
    orva-view --sites out.tot out.orva > sites.part &&
    gzip -f out.tot out.orva &&
    mv sites.part sites # last, and at once: what is there is whole
}

status=0
steps > messages 2>&1 || status=1
while IFS= read -r message; do
  echo "$1: $message" >&2
done < messages
if [ "$status" != 0 ]; then
  rm -f out.tot* out.orva* sites.part
fi
exit "$status"
