# Sourced by the scripts beside it: goes to the top of the tree, installs what a build lacks, builds.
# shellcheck shell=bash
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

has_googletest() { echo '#include <gtest/gtest.h>' | "${CXX:-g++}" -x c++ -std=c++20 -fsyntax-only - 2>/dev/null; }

# Whether clang++ comes with the runtime of its fuzzer.
has_fuzzer() {
  echo 'extern "C" int LLVMFuzzerTestOneInput(const char*, unsigned long) { return 0; }' |
    clang++ -x c++ -fsanitize=fuzzer,address,undefined - -o /dev/null 2>/dev/null
}

# The other processors that scripts/cross compares, as CMake and QEMU name them; one has its bytes the other way round.
# shellcheck disable=SC2034 # for those who source this
cross_processors=(aarch64 riscv64 ppc64le s390x)
cross_triplet() { echo "${1/#ppc/powerpc}-linux-gnu"; }
cross_emulator() { command -v "qemu-$1" || command -v "qemu-$1-static"; }

# The first tool that a processor's program cannot be built or run without, or nothing.
cross_lacks() {
  local compiler
  compiler=$(cross_triplet "$1")-g++
  if ! command -v "$compiler" >/dev/null; then
    echo "$compiler"
  elif ! cross_emulator "$1" >/dev/null; then
    echo "qemu-$1"
  fi
}

# Whether there is a processor that lacks nothing.
has_cross() {
  local processor
  for processor in "${cross_processors[@]}"; do
    if [ -z "$(cross_lacks "$processor")" ]; then
      return 0
    fi
  done
  return 1
}

# Whether what a Debian package brings is there, wherever it came from; of the packages that the cookbook needs.
has_package() {
  case $1 in
    python3-*) /usr/bin/python3 -c "import ${1#python3-}" ;;
    slurm-wlm) PATH=$PATH:/usr/sbin command -v slurmctld && command -v sbatch ;;
    imagemagick) command -v convert ;;
    munge) PATH=$PATH:/usr/sbin command -v munged ;;
    *) command -v "$1" ;;
  esac >/dev/null 2>&1
}

# Installs the Debian packages named, or says which they are and stops.
install() {
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    as_root=(sudo -n)
  fi
  if ! command -v apt-get >/dev/null || ! "${as_root[@]}" true 2>/dev/null; then
    echo "Please install these first (names of the Debian packages): $*" >&2
    exit 1
  fi
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "$@"
}

# need PACKAGE COMMAND...: the package is missing if the command fails.
missing=()
need() {
  local package=$1
  shift
  "$@" >/dev/null 2>&1 || missing+=("$package")
}

install_missing() {
  need cmake command -v cmake
  need make command -v make
  need g++ command -v "${CXX:-g++}"
  if [ "${1:-}" = tests ]; then
    need libgtest-dev has_googletest
  fi
  if [ "${#missing[@]}" -gt 0 ]; then
    install "${missing[@]}"
  fi
}

# build DIRECTORY OPTION...: configures and builds a release.
build() {
  local directory=$1
  shift
  cmake -S . -B "$directory" -DCMAKE_BUILD_TYPE=Release "$@"
  cmake --build "$directory" --parallel "$(nproc)"
}

# The library that draws the pages of orva-view, where the tests find it.
install_3dmol() {
  if [ ! -e build/node_modules/3dmol ]; then
    npm install --prefix build --no-save --no-audit --no-fund 3dmol
  fi
}
