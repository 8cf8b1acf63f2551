#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "app/cube/comp.hpp"
#include "lib/vec_base.hpp"

// Text in memory, and the data of cube files as text: what tests and fuzz harnesses compare.

/// What `call` writes to the stream that it is given.
template <class Call>
std::string written(Call call) {
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* stream = open_memstream(&text, &size);
  call(stream);
  std::fclose(stream);
  std::string result(text, size);
  std::free(text);
  return result;
}

/// printf's format with one argument.
template <class Argument>
std::string formatted(const char* format, Argument argument) {
  char text[128];
  std::snprintf(text, sizeof text, format, argument);
  return text;
}

using CubeTexts = std::array<std::string, 2>;  // of the first and the second file; empty if there is none

/// By the sweep.
inline CubeTexts text_of_sweep(const Molecule& molecule, const CubeDefinition& cube, std::int16_t code,
                               std::int16_t orbital) {
  CubeTexts texts;
  texts[0] = written([&](std::FILE* first) {
    texts[1] = written([&](std::FILE* second) {
      comp_data(&molecule, &cube, code, orbital, first,
                code == field_density_and_potential ? second : nullptr);
    });
  });
  return texts;
}

/// Calls use(point, k) for all points, the third axis fastest; k is the point's number along it.
template <class Use>
void for_each_point(const CubeDefinition& cube, Use use) {
  const auto& [a, b, d] = cube.vectors;
  for (unsigned i = 0; i < cube.npoints[0]; ++i) {
    for (unsigned j = 0; j < cube.npoints[1]; ++j) {
      for (unsigned k = 0; k < cube.npoints[2]; ++k) {
        double point[3];
        for (unsigned c = 0; c < 3; ++c) {
          point[c] = cube.points[0][c] + i * a[c] + j * b[c] + k * d[c];
        }
        use(point, k);
      }
    }
  }
}

/// By the functions for one point.
inline CubeTexts text_of_points(const Molecule& molecule, const CubeDefinition& cube, std::int16_t code,
                                std::int16_t orbital) {
  CubeTexts texts;
  comp_bfce_vec = vec_falloc(molecule.basis_count);
  for_each_point(cube, [&](const double* point, unsigned k) {
    double value[2];
    comp_point_value(&molecule, point, code, orbital, &value[0], &value[1]);
    const char* end = k % 6 == 5 || k + 1 == cube.npoints[2] ? "\n" : "";
    texts[0] += formatted("%13.5e", value[code == field_potential]) + end;
    texts[1] += code == field_density_and_potential ? formatted("%13.5e", value[1]) + end : "";
  });
  vec_ffree(comp_bfce_vec);
  return texts;
}
