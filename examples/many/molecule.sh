#!/usr/bin/env bash
# molecule.sh molecules/NAME.fchk: density, ionization potential and its lowest values on the surface, in out/NAME/.
# A molecule is done when out/NAME/sites is there; then nothing is done again. If a step fails, its message is told in
# one line and kept in out/NAME/messages, half-made cube files are removed, and the status is 1.
set -euo pipefail

input=$(realpath "$1")
name=$(basename "$1")
out=out/${name%.*}
if [ -e "$out/sites" ]; then
  exit
fi
mkdir -p "$out"
cd "$out"

# Change here what is computed. The grid has a third of the points of orva-grid's own: the lowest values of aniline
# move by 0.0005 hartree at most, and two thousand molecules of its size take 8 GB.
steps() {
  orva-grid "$input" 5 0.25 > config &&
    orva -i "$input" -t "${name##*.}" -o report &&
    orva-view --sites out.tot out.orva > sites.part &&
    gzip -f out.tot out.orva &&
    mv sites.part sites # last, and at once: what is there is whole
}

if ! steps > messages 2>&1; then
  echo "$1: $(tail -n 1 messages)" >&2
  rm -f out.tot* out.orva* sites.part
  exit 1
fi
