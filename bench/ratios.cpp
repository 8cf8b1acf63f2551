// The ratios that the sweep is judged by, all of one run: prints a table for each kernel of the program.
//
//   orva_ratios ORVA PLAIN FILE.fchk...
//
// ORVA is the program, PLAIN another one that makes the density and the potential of the automatic grid
// (PLAIN FILE PREFIX), or "-" for none. Times are CPU times, the least of a few runs; whole runs are timed in
// alternation and their median ratio taken.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "app/cube/comp.hpp"
#include "app/cube/cube_text.hpp"
#include "app/field/exact/sweep.hpp"
#include "app/field/instruction_sets.hpp"
#include "app/field/point/eval.hpp"
#include "app/field/rows/rows.hpp"
#include "app/input/fcheck.hpp"
#include "app/model/memory.hpp"
#include "app/model/occupation.hpp"
#include "app/model/setup.hpp"
#include "lib/vec_base.hpp"
#include "limit.hpp"

namespace {

constexpr int repetitions = 5;

struct Cost {
  double seconds;
  long peak_kib;
};

template <class Work>
double seconds_of(int times, Work work) {
  double least = 1e300;
  for (int i = 0; i < times; ++i) {
    const std::clock_t start = std::clock();
    work();
    least = std::min(least, static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
  }
  return least;
}

Cost run_program(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) {
    arguments.push_back(word.data());
  }
  arguments.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    execv(arguments[0], arguments.data());
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  if (status != 0) {
    std::fprintf(stderr, "%s failed\n", words[0].c_str());
    std::exit(1);
  }
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
  };
  return {seconds(usage.ru_utime) + seconds(usage.ru_stime), usage.ru_maxrss};
}

double median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

// The exact sweep over all points of the grid; `take` gets the number of points of each block.
template <class Take>
void sweep_all(const CubeDefinition& cube, Sweep& sweep, Take take) {
  const unsigned room = sweep.block_points();
  std::vector<double> points(3 * room);
  const std::size_t total = std::size_t{cube.npoints[0]} * cube.npoints[1] * cube.npoints[2];
  for (std::size_t done = 0; done < total; done += room) {
    const auto count = static_cast<unsigned>(std::min<std::size_t>(room, total - done));
    for (unsigned n = 0; n < room; ++n) {
      const auto at = static_cast<unsigned>(done + std::min(n, count - 1));
      const unsigned k = at % cube.npoints[2], j = at / cube.npoints[2] % cube.npoints[1];
      for (unsigned c = 0; c < 3; ++c) {
        points[c * room + n] = cube_coordinate(&cube, at / cube.npoints[2] / cube.npoints[1], j, k, c);
      }
    }
    sweep.run(count, points.data());
    take(count);
  }
}

// The exact sweep without text.
double sweep_seconds(const Molecule& molecule, const CubeDefinition& cube, const InstructionSet& set,
                     const std::vector<WeightedOrbital>& orbitals) {
  Sweep sweep(&molecule, set.exact, FieldKind::density_and_potential, orbitals, 1e3);
  return seconds_of(repetitions, [&] { sweep_all(cube, sweep, [](unsigned) {}); });
}

// The sweep by rows without text, its tables included; 0 if it leaves the grid to the exact one.
double rows_seconds(const Molecule& molecule, const CubeDefinition& cube, const InstructionSet& set,
                    const std::vector<WeightedOrbital>& orbitals) {
  bool is_made = true;
  const double seconds = seconds_of(repetitions, [&] {
    const auto rows = RowSweep::make(&molecule, &cube, set.rows, FieldKind::density_and_potential, orbitals);
    is_made = rows != nullptr;
    for (unsigned i = 0; is_made && i < cube.npoints[0]; ++i) {
      for (unsigned j = 0; j < cube.npoints[1]; ++j) {
        rows->run(i, j);
      }
    }
  });
  return is_made ? seconds : 0.0;
}

std::vector<double> orbital_values(const Molecule& molecule, const CubeDefinition& cube,
                                   const InstructionSet& set, const Orbital* orbital) {
  const WeightedOrbital orbitals[] = {orbital};
  Sweep sweep(&molecule, set.exact, FieldKind::orbital, orbitals, 1e3);
  std::vector<double> values;
  sweep_all(cube, sweep,
            [&](unsigned count) { values.insert(values.end(), sweep.field(0), sweep.field(0) + count); });
  return values;
}

// The named functions at some of the points, for all.
double named_seconds(const Molecule& molecule, const CubeDefinition& cube) {
  constexpr unsigned every = 8;  // along each axis
  std::vector<double> values(molecule.basis_count);
  unsigned count = 0;
  const std::clock_t start = std::clock();
  for (unsigned i = 0; i < cube.npoints[0]; i += every) {
    for (unsigned j = 0; j < cube.npoints[1]; j += every) {
      for (unsigned k = 0; k < cube.npoints[2]; k += every, ++count) {
        double point[3], density, potential;
        for (unsigned c = 0; c < 3; ++c) {
          point[c] = cube_coordinate(&cube, i, j, k, c);
        }
        eval_bfce_vec(&molecule, point, values.data());
        eval_orva(&molecule, values.data(), &density, &potential);
      }
    }
  }
  const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  return seconds / count * cube.npoints[0] * cube.npoints[1] * cube.npoints[2];
}

double limit_of(unsigned lanes) {
  switch (lanes) {
#if defined(__x86_64__)
    case 8:
      return limit_pairs_per_second<8>();
    case 4:
      return limit_pairs_per_second<4>();
#endif
    default:
      return limit_pairs_per_second<2>();
  }
}

void print_whole_runs(const std::string& program, const std::string& plain, const std::string& file) {
  std::vector<double> ratios;
  std::vector<std::string> run = {program, "-i", file, "-t", "fchk", "-q"};
  Cost cost{};
  for (int i = 0; i < repetitions; ++i) {
    cost = run_program(run);
    if (plain != "-") {
      ratios.push_back(run_program({plain, file, "plain"}).seconds / cost.seconds);
    }
  }
  std::printf("  whole run %8.1f ms, peak memory %.1f MiB (file %.1f MiB)", 1e3 * cost.seconds,
              static_cast<double>(cost.peak_kib) / 1024,
              static_cast<double>(std::filesystem::file_size(file)) / 1048576);
  if (!ratios.empty()) {
    std::printf(", %.1f times faster than %s", median(ratios),
                std::filesystem::path(plain).filename().c_str());
  }
  std::printf("\n");
}

void print_sweep(const Molecule& molecule, const InstructionSet& set) {
  CubeDefinition cube;
  cube_comp_params(&molecule, &cube);
  const double points = 1.0 * cube.npoints[0] * cube.npoints[1] * cube.npoints[2];
  const std::vector<WeightedOrbital> orbitals = occupation_of(&molecule).orbitals;
  const double sweep = sweep_seconds(molecule, cube, set, orbitals);
  const double basis = sweep_seconds(molecule, cube, set, {});
  const double rows = rows_seconds(molecule, cube, set, orbitals);
  std::FILE* const out = std::fopen("values.cube", "w");
  const std::vector<double> values = orbital_values(molecule, cube, set, orbitals.back().orbital);
  const double text = seconds_of(repetitions, [&] {
    std::rewind(out);
    CubeText(out, cube.npoints[2]).put(values);
  });
  const double pairs = points * static_cast<double>(orbitals.size()) * molecule.basis_count;
  std::printf(
      "  exact sweep %6.1f ms, %.0f times faster than the named functions; per point %.0f ns, per point, "
      "function and orbital %.4f ns\n",
      1e3 * sweep, named_seconds(molecule, cube) / sweep, 1e9 * sweep / points, 1e9 * sweep / pairs);
  if (rows > 0.0) {
    std::printf("  by rows %10.1f ms, %.1f times faster than that\n", 1e3 * rows, sweep / rows);
  } else {
    std::printf("  by rows: left to the exact sweep\n");
  }
  const auto measure_limit = [&] { return limit_of(set.exact.lanes); };
  const double limit = std::max(measure_limit(), measure_limit());
  std::printf("  orbital sums %.1f ms: %.0f %% of the limit of multiplications and additions\n",
              1e3 * (sweep - basis), 100 * pairs / (sweep - basis) / limit);
  std::printf("  text of two files %.1f ms: %.0f %% of sweep and text, %.1f ns a value\n", 2e3 * text,
              200 * text / (sweep + 2 * text), 1e9 * text / points);
  const unsigned orbital_count = molecule.alpha_orbital_count;
  OrbitalTexts room = comp_orbital_alloc(&cube, orbital_count, molecule.basis_count);
  if (room.orbital_count > 0) {
    const double all = seconds_of(repetitions, [&] {
      for (unsigned first = 0; first < orbital_count; first += room.orbital_count) {
        const unsigned count = std::min(room.orbital_count, orbital_count - first);
        comp_orbital_texts(&molecule, &cube, molecule.alpha_orbitals + first, count, &room);
        for (unsigned i = 0; i < count; ++i) {
          std::rewind(out);
          std::fwrite(room.of(i).data(), 1, room.of(i).size(), out);
        }
      }
    });
    std::printf("  all orbitals: values and text take %.2f times the text alone\n",
                all / (text * orbital_count));
  }
  std::fclose(out);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fprintf(stderr, "usage: %s ORVA PLAIN FILE.fchk...\n", argv[0]);
    return 1;
  }
  // The files that the runs write go to a directory that is removed at the end.
  std::vector<std::string> paths(argv + 1, argv + argc);
  for (std::string& path : paths) {
    path = path == "-" ? path : std::filesystem::absolute(path).string();
  }
  char scratch[] = "/tmp/orva-bench-XXXXXX";
  if (mkdtemp(scratch) == nullptr || chdir(scratch) != 0) {
    std::perror(scratch);
    return 1;
  }
  const auto for_each_kernel_and_file = [&](auto use) {
    for (const InstructionSet& set : instruction_sets()) {
      if (set.is_supported()) {
        setenv("ORVA_KERNEL", set.name, 1);
        for (const std::string& file : std::span(paths).subspan(2)) {
          use(set, file);
        }
      }
    }
  };
  // First the runs, while this process is small: the peak memory of a child counts what it had before exec.
  for_each_kernel_and_file([&](const InstructionSet& set, const std::string& file) {
    std::printf("%s %s\n", set.name, file.c_str());
    print_whole_runs(paths[0], paths[1], file);
  });
  for_each_kernel_and_file([&](const InstructionSet& set, const std::string& file) {
    std::snprintf(glob_file_input, sizeof glob_file_input, "%s", file.c_str());
    Molecule molecule;
    mem_init_mol(&molecule);
    fcheck_read(&molecule);
    std::printf("%s %s: %u atoms, %u functions, %zu occupied orbitals\n", set.name, file.c_str(),
                molecule.atom_count, molecule.basis_count, occupation_of(&molecule).orbitals.size());
    print_sweep(molecule, set);
    mem_clean(&molecule, nullptr);
  });
  std::filesystem::remove_all(scratch);
  return 0;
}
