// The tree of the bonds and the Z-matrix.

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "distance.hpp"
#include "dmat.hpp"
#include "graph.hpp"
#include "mat_base.hpp"
#include "support.hpp"
#include "units.hpp"
#include "vec_oper.hpp"
#include "zmat.hpp"

namespace {

using Point = std::array<double, 3>;
using Points = std::vector<Point>;  // bohr

// Calls call(molecule, distances) for a molecule of hydrogen atoms.
template <class Call>
void with_molecule(const Points& points, Call call) {
  std::vector<Atom> atoms;
  for (const auto& [x, y, z] : points) {
    atoms.push_back({1, {x, y, z}, "H"});
  }
  Molecule molecule = {};
  molecule.atom_count = static_cast<unsigned>(atoms.size());
  molecule.atoms = atoms.data();
  double** distances = dmat_alloc(&molecule);
  call(&molecule, distances);
  dmat_free(&molecule, distances);
}

// On a lattice of `width` points a side.
Points random_points(unsigned n, unsigned width, double spacing) {
  static std::mt19937 random(1);
  Points points(n);
  for (Point& point : points) {
    for (double& x : point) {
      x = spacing * static_cast<double>(random() % width);
    }
  }
  return points;
}

std::string zmatrix(const Points& points) {
  return written([&](std::FILE* s) {
    with_molecule(points, [=](const Molecule* m, double** distances) { zmat_print(m, s, distances); });
  });
}

// The edges of the tree, found by searching for every pair anew.
void search_tree(const double* const* distances, int** edges, unsigned n) {
  std::vector<unsigned> labels(n);
  std::iota(labels.begin(), labels.end(), 0U);
  for (unsigned count = 0, i = 0, j = 0; count + 1 < n;) {
    graph_find_nearest(distances, edges, n, &i, &j);
    const bool joins = labels[i] != labels[j];
    edges[i][j] = edges[j][i] = joins ? 1 : -1;
    count += joins ? 1 : 0;
    graph_merge_comp(labels.data(), n, i, j);
  }
}

}  // namespace

TEST(Graph, TreeIsThatOfRepeatedSearches) {
  for (unsigned trial = 0; trial < 300; ++trial) {
    const unsigned n = 1 + trial % 30;
    const Points points = random_points(n, 2 + trial % 4, 1.5);  // many equal distances, many of them zero
    with_molecule(points, [=](const Molecule*, double** distances) {
      int** expected = mat_ialloc(n, n);
      int** edges = mat_ialloc(n, n);
      search_tree(distances, expected, n);
      graph_connect(distances, edges, n);
      for (unsigned i = 0; i < n; ++i) {
        ASSERT_TRUE(std::equal(edges[i], edges[i] + n, expected[i])) << trial;
      }
      EXPECT_EQ(mat_ifree(expected, n) + mat_ifree(edges, n), 0);
    });
  }
}

TEST(Graph, ChildrenStandInAtomOrder) {
  const std::tuple<Points, std::vector<int>, std::vector<int>> rows[] = {
      {{{0, 0, 0}}, {0}, {}},
      {{{0, 0, 0}, {0, 0, 2}, {0, 2, 0}}, {0, 2, 2}, {1, 2}},                       // water
      {{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {0, 2, 3, 3}, {1, 3, 2}},      // ring, opened at 2-3
      {{{9, 0, 0}, {0, 0, 0}, {3, 0, 0}, {6, 0, 0}}, {0, 1, 1, 2}, {3, 1, 2}},      // order of visits 0 3 2 1
      {{{0, 0, 0}, {9e5, 0, 0}, {9e5, 1, 0}, {1, 0, 0}}, {0, 1, 2, 2}, {3, 2, 1}},  // two fragments
  };
  for (const auto& row : rows) {
    with_molecule(std::get<0>(row), [&](const Molecule* molecule, double** distances) {
      Graph* graph = graph_create(distances, molecule->atom_count);
      EXPECT_EQ(std::vector<int>(graph->first, graph->first + graph->nvert), std::get<1>(row));
      EXPECT_EQ(std::vector<int>(graph->child, graph->child + graph->nedge), std::get<2>(row));
      graph_free(graph);
    });
  }
}

TEST(Graph, AtomsOutOfReachEndTheRun) {
  for (const double far : {1e6, std::numeric_limits<double>::quiet_NaN()}) {
    const Points points = {{0, 0, 0}, {1, 0, 0}, {far + 1, 0, 0}};
    expect_error([&] { zmatrix(points); },
                 "cannot connect atom 3 with atom 1: distance is not below 1e+06 bohr");
  }
}

TEST(Zmat, RowsReferToTheTreeAndThenToWhatIsPlaced) {
  const std::pair<Points, std::string> rows[] = {
      {{}, ""},
      {{{0, 0, 0}}, "    H  \n"},
      {{{0, 0, 0}, {0, 0, 1}, {0, 2, 0}},
       "    H  \n    H   1    2.000000\n    H   1    1.000000  2    90.000000\n"},
      {{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}},  // a ring
       "    H  \n    H   1    1.000000\n    H   1    1.000000  2    90.000000\n"
       "    H   3    1.000000  1    90.000000  2      0.000000\n"},
      {{{0, 0, 0}, {1, 0, 0}, {-1, 0, 0}, {0, 0, 1}, {-2, 0, 0.5}, {-1, 1, 0}},  // branches
       "    H  \n    H   1    1.000000\n    H   1    1.000000  2    90.000000\n"
       "    H   3    1.000000  1    90.000000  2     90.000000\n"
       "    H   3    1.118034  1   153.434949  2      0.000000\n"
       "    H   1    1.000000  2    90.000000  3    180.000000\n"}};
  for (auto [points, listing] : rows) {
    for (Point& point : points) {
      vec_fscale(point.data(), 3, 1.0 / angstrom_per_bohr);
    }
    EXPECT_EQ(zmatrix(points), listing);
  }
  const std::string line = zmatrix({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
  EXPECT_TRUE(line.find("  2   180.000000  1  ") != std::string::npos && line.ends_with("nan\n")) << line;
}

namespace {

// Where a row says that its atom lies, from the points of earlier rows, ångström.
Point place(const Points& placed, const std::string& row) {
  std::istringstream words(row);
  std::string symbol;
  std::array<std::size_t, 3> partner{};
  Point value{};  // bond, ångström, and angles, degrees
  words >> symbol;
  for (std::size_t i = 0; i < std::min<std::size_t>(3, placed.size()); ++i) {
    words >> partner[i] >> value[i];
    EXPECT_LT(--partner[i], placed.size());
  }
  if (placed.size() < 2) {
    return {value[0], 0, 0};
  }
  const double angle = value[1] * std::numbers::pi / 180, turn = value[2] * std::numbers::pi / 180;
  const Point angle_point = placed[partner[1]];
  const Point turn_point = placed.size() == 2 ? Point{0, 1, 0} : placed[partner[2]];
  Point axis, arm, normal, side, result = placed[partner[0]];
  vec_fsub(axis.data(), result.data(), angle_point.data(), 3);
  vec_fsub(arm.data(), angle_point.data(), turn_point.data(), 3);
  vec_funit(axis.data(), 3);
  vec_fprod_vector(arm.data(), axis.data(), normal.data());
  vec_funit(normal.data(), 3);
  vec_fprod_vector(normal.data(), axis.data(), side.data());
  vec_fadd_scaled(result.data(), axis.data(), 3, -value[0] * std::cos(angle));
  vec_fadd_scaled(result.data(), side.data(), 3, value[0] * std::sin(angle) * std::cos(turn));
  vec_fadd_scaled(result.data(), normal.data(), 3, value[0] * std::sin(angle) * std::sin(turn));
  return result;
}

const Points aniline = {{4.410, -0.009, -0.303}, {1.786, -0.003, 0.037}, {0.442, 2.269, -0.017},
                        {-2.197, 2.280, 0.072},  {-3.522, 0.007, 0.134}, {-2.206, -2.272, 0.078},
                        {0.434, -2.271, -0.012}, {5.271, 1.583, 0.333},  {5.265, -1.603, 0.335},
                        {1.443, 4.059, -0.130},  {-3.215, 4.064, 0.059}, {-5.575, 0.011, 0.184},
                        {-3.230, -4.051, 0.071}, {1.428, -4.064, -0.120}};

// The points that the listing of `points` describes, in the order of its rows, ångström.
Points rebuild(const Points& points) {
  std::istringstream listing(zmatrix(points));
  Points placed;
  for (std::string row; std::getline(listing, row);) {
    placed.push_back(place(placed, row));
  }
  EXPECT_EQ(placed.size(), points.size());
  return placed;
}

std::vector<double> sorted_distances(const Points& points, double unit) {
  std::vector<double> distances;
  for (const Point& a : points) {
    for (const Point& b : points) {
      distances.push_back(unit * dist_r(a.data(), b.data(), 3));
    }
  }
  std::sort(distances.begin(), distances.end());
  return distances;
}

}  // namespace

TEST(Zmat, ListingKeepsTheGeometry) {
  const auto expected = sorted_distances(aniline, angstrom_per_bohr);
  const auto found = sorted_distances(rebuild(aniline), 1.0);
  for (unsigned i = 0; i < expected.size(); ++i) {
    EXPECT_NEAR(found[i], expected[i], 1e-4);  // ångström
  }
}

TEST(Zmat, ThousandAtomsAreListedAtOnce) {
  const Points points = random_points(1000, 1000, 0.05);
  const auto start = std::chrono::steady_clock::now();
  rebuild(points);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}
