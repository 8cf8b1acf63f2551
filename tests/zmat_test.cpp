// The tree of the bonds and the Z-matrix.

#include "app/listing/zmat.hpp"
#include "app/listing/graph.hpp"
#include "app/model/dmat.hpp"
#include "app/model/units.hpp"
#include "lib/mat_base.hpp"
#include "lib/vec_oper.hpp"
#include "support.hpp"

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
  molecule.atoms = atoms.data(), molecule.atom_count = static_cast<unsigned>(atoms.size());
  double** distances = dmat_alloc(&molecule);
  call(&molecule, distances);
  dmat_free(&molecule, distances);
}

// On a lattice of `width` points a side.
Points random_points(unsigned n, unsigned width, double spacing) {
  static std::mt19937 random(1);
  Points points(n);
  for (Point& point : points) {
    std::ranges::generate(point, [&] { return spacing * static_cast<double>(random() % width); });
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
    edges[i][j] = edges[j][i] = joins ? 1 : -1, count += joins;
    graph_merge_comp(labels.data(), n, i, j);
  }
}

}  // namespace

TEST(Graph, TreeIsThatOfRepeatedSearches) {
  std::vector<Points> molecules;
  for (unsigned n = 1; n <= 30; ++n) {  // with many equal distances, many of them zero
    for (unsigned width = 2; width < 6; ++width) {
      molecules.push_back(random_points(n, width, 1.5));
    }
  }
  for (const Points& points : molecules) {
    with_molecule(points, [](const Molecule* molecule, double** distances) {
      const unsigned n = molecule->atom_count;
      int **expected = mat_ialloc(n, n), **edges = mat_ialloc(n, n);
      search_tree(distances, expected, n);
      graph_connect(distances, edges, n);
      Graph *tree = graph_create(distances, n), *filled = graph_create(distances, n);
      std::fill_n(filled->first, n, -1), std::fill_n(filled->child, n, -1);
      graph_fill(filled, expected, n);
      EXPECT_TRUE(std::equal(tree->first, tree->first + n, filled->first)) << n << " atoms";
      EXPECT_TRUE(std::equal(tree->child, tree->child + n - 1, filled->child)) << n << " atoms";
      for (unsigned i = 0; i < n; ++i) {
        std::replace(edges[i], edges[i] + n, +graph_edge_tree, +graph_edge_walked);
        EXPECT_TRUE(std::equal(edges[i], edges[i] + n, expected[i])) << n << " atoms, row " << i;
      }
      graph_free(tree), graph_free(filled), mat_ifree(expected, n), mat_ifree(edges, n);
    });
  }
}

TEST(Distances, OfAnAtomToItselfIsZeroWhereverItLies) {
  with_molecule({{0, 0, 0}, {HUGE_VAL, 0, 0}}, [](const Molecule*, double** distances) {
    EXPECT_EQ(distances[1][1], 0.0);
    EXPECT_EQ(distances[1][0], HUGE_VAL);
  });
}

TEST(Graph, AtomsOutOfReachEndTheRun) {
  for (const double far : {1e6, std::nan("")}) {
    const Points points = {{0, 0, 0}, {1, 0, 0}, {far + 1, 0, 0}};
    expect_error([&] { zmatrix(points); },
                 "cannot connect atom 3 with atom 1: distance is not below 1e+06 bohr");
  }
}

TEST(Zmat, RowsReferToTheTreeAndThenToWhatIsPlaced) {
  const std::string right = "    H  \n    H   1    1.000000\n    H   1    1.000000  2    90.000000\n";
  const std::pair<Points, std::string> rows[] = {
      {{}, ""},
      {{{0, 0, 0}}, "    H  \n"},
      {{{0, 0, 0}, {0, 0, 1}, {0, 2, 0}},
       "    H  \n    H   1    2.000000\n    H   1    1.000000  2    90.000000\n"},
      {{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}},
       right + "    H   3    1.000000  1    90.000000  2      0.000000\n"},
      {{{0, 0, 0}, {1, 0, 0}, {-1, 0, 0}, {0, 0, 1}, {-2, 0, 0.5}, {-1, 1, 0}},
       right + "    H   3    1.000000  1    90.000000  2     90.000000\n" +
           "    H   3    1.118034  1   153.434949  2      0.000000\n" +
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

TEST(Zmat, RowsOfALargeMoleculeReferToEarlierOnes) {
  std::istringstream listing(zmatrix(random_points(200, 1000, 0.05)));
  unsigned row = 0;
  for (std::string line; std::getline(listing, line); ++row) {
    std::istringstream words(line.substr(6));
    std::set<unsigned> partners;
    double value = 0.0;
    for (unsigned partner = 0; words >> partner >> value;) {
      EXPECT_TRUE(partner >= 1 && partner <= row) << line;
      partners.insert(partner);
    }
    EXPECT_EQ(partners.size(), std::min(row, 3U)) << line;
  }
  EXPECT_EQ(row, 200U);
}
