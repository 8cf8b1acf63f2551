// How fast the input files are read, in bytes per second.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "app/input/fcheck.hpp"
#include "app/input/wfn.hpp"
#include "app/model/memory.hpp"
#include "app/model/setup.hpp"

namespace {

void read_file(benchmark::State& state, void (*read)(Molecule*), const std::string& path) {
  if (!std::filesystem::exists(path)) {
    state.SkipWithError(("no file " + path).c_str());
    return;
  }
  std::snprintf(glob_file_input, sizeof glob_file_input, "%s", path.c_str());
  for ([[maybe_unused]] auto _ : state) {
    Molecule molecule;
    mem_init_mol(&molecule);
    read(&molecule);
    benchmark::DoNotOptimize(molecule);
    mem_clean(&molecule, nullptr);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(std::filesystem::file_size(path)));
}

void read_fchk(benchmark::State& state) {
  const char* path = std::getenv("ORVA_BENCH_FCHK");
  read_file(state, fcheck_read, path != nullptr ? path : "examples/aniline.fchk");
}
BENCHMARK(read_fchk);

// One nucleus and s functions, with the numbers as quantum-chemistry programs write them.
void write_wfn(const std::string& path, int orbital_count, int primitive_count) {
  std::FILE* stream = std::fopen(path.c_str(), "w");
  const auto block = [&](const char* label, int per_line, auto write_number) {
    for (int i = 0; i < primitive_count; ++i) {
      std::fputs(i % per_line == 0 ? label : "", stream);
      write_number(i);
      std::fputs(i % per_line == per_line - 1 || i == primitive_count - 1 ? "\n" : "", stream);
    }
  };
  std::fprintf(stream, "generated\nGAUSSIAN     %5d MOL ORBITALS      %5d PRIMITIVES   %5d NUCLEI\n",
               orbital_count, primitive_count, 1);
  std::fprintf(stream, "  %-22s%12.8f%12.8f%12.8f\n", "H", 0.0, 0.0, 0.0);
  block("CENTRE ASSIGNMENTS  ", 20, [&](int) { std::fputs("  1", stream); });
  block("TYPE ASSIGNMENTS    ", 20, [&](int) { std::fputs("  1", stream); });
  block("EXPONENTS ", 5, [&](int i) { std::fprintf(stream, " %.7fD+01", 0.1 + 0.0001 * i); });
  for (int orbital = 0; orbital < orbital_count; ++orbital) {
    std::fprintf(stream, "%-62s%12.6f\n", "MO", -20.0 + 0.1 * orbital);
    block("", 5, [&](int i) { std::fprintf(stream, "  %.8fD-01", 0.1 + 0.00001 * i); });
  }
  std::fputs("END DATA\n", stream);
  std::fclose(stream);
}

void read_wfn(benchmark::State& state) {
  const std::string path = std::filesystem::temp_directory_path() / "orva-bench.wfn";
  write_wfn(path, 30, static_cast<int>(state.range(0)));
  read_file(state, wfn_read, path);
  std::filesystem::remove(path);
}
BENCHMARK(read_wfn)->Arg(500)->Arg(5000);

}  // namespace
