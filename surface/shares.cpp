#include "surface/shares.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "surface/vectors.hpp"

namespace {

// A corner of a part of a facet: its barycentric coordinates.
using Corner = std::array<double, 3>;

double at(const Corner& corner, const Corner& values) {
  return corner[0] * values[0] + corner[1] * values[1] + corner[2] * values[2];
}

// A part of a facet: convex, and cut by no more lines than a facet has other owners.
struct Polygon {
  std::array<Corner, 6> corners;
  unsigned count;
};

constexpr Polygon whole_facet = {{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, 3};

bool is_vertex(const Corner& corner) { return std::ranges::find(corner, 1.0) != corner.end(); }

// The part in which a linear function, given at the vertices, is not negative.
Polygon clipped(const Polygon& polygon, const Corner& function) {
  Polygon result = {{}, 0};
  for (unsigned n = 0; n < polygon.count; ++n) {
    const Corner &a = polygon.corners[n], &b = polygon.corners[(n + 1) % polygon.count];
    const double at_a = at(a, function), at_b = at(b, function);
    if (at_a >= 0.0) {
      result.corners[result.count++] = a;
    }
    if ((at_a > 0.0 && at_b < 0.0) || (at_a < 0.0 && at_b > 0.0)) {
      const double t = at_a / (at_a - at_b);
      Corner& cut = result.corners[result.count++];
      for (unsigned c = 0; c < 3; ++c) {
        cut[c] = (1.0 - t) * a[c] + t * b[c];
      }
    }
  }
  return result;
}

void add(const Integrals& part, Integrals* sum) {
  sum->area += part.area;
  sum->first += part.first;
  sum->second += part.second;
}

// Over a triangle with linear values at its corners.
Integrals over_triangle(double area, double a, double b, double c) {
  return {area, area * (a + b + c) / 3.0, area * (a * a + b * b + c * c + a * b + b * c + c * a) / 6.0};
}

Integrals over_polygon(const Polygon& polygon, double facet_area, const Corner& values) {
  Integrals sum;
  for (unsigned n = 2; n < polygon.count; ++n) {
    const Corner &a = polygon.corners[0], &b = polygon.corners[n - 1], &c = polygon.corners[n];
    const double part = (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]);
    add(over_triangle(facet_area * std::fabs(part), at(a, values), at(b, values), at(c, values)), &sum);
  }
  return sum;
}

// The connected pieces, numbered in the order of their first vertices.
std::vector<unsigned> pieces_of(const Mesh& mesh, unsigned* count) {
  std::vector<unsigned> parent(mesh.points.size());
  std::iota(parent.begin(), parent.end(), 0U);
  const auto root = [&](unsigned n) {
    while (parent[n] != n) {
      n = parent[n] = parent[parent[n]];
    }
    return n;
  };
  for (const Facet& facet : mesh.facets) {
    for (unsigned c = 1; c < 3; ++c) {
      const unsigned a = root(facet[0]), b = root(facet[c]);
      parent[std::max(a, b)] = std::min(a, b);
    }
  }
  std::vector<unsigned> piece(mesh.points.size());
  *count = 0;
  for (unsigned n = 0; n < piece.size(); ++n) {
    const unsigned first = root(n);  // never behind n
    piece[n] = first == n ? (*count)++ : piece[first];
  }
  return piece;
}

struct Sums {
  Integrals whole;
  std::vector<Integrals> atoms;
  std::vector<double> areas, volumes;  // of the pieces
};

class Adder {
 public:
  Adder(const Meshes& meshes, const Owners& owners, unsigned atom_count)
      : owners_(owners), reference_(meshes.coarse.potential[0]), origin_(meshes.coarse.points[0]) {
    shares_.atoms.resize(atom_count);
    find_owners(meshes);
    piece_of_ = pieces_of(meshes.coarse, &piece_count_);
    for (std::size_t n = 0; n < meshes.fine.points.size(); ++n) {
      shares_.range.take(meshes.fine.potential[n]);
      shares_.atoms[owner_of_[n]].within.take(meshes.fine.potential[n]);
    }
    const Sums coarse = sums_of(meshes.coarse, meshes.coarse.facets, 1, false);
    const Sums fine = sums_of(meshes.fine, meshes.coarse.facets, 4, true);
    shares_.whole = statistics(coarse.whole, fine.whole);
    for (unsigned atom = 0; atom < atom_count; ++atom) {
      shares_.atoms[atom].is_empty = fine.atoms[atom].area <= 0.0;
      shares_.atoms[atom].statistics = statistics(coarse.atoms[atom], fine.atoms[atom]);
    }
    set_pieces(meshes.coarse, coarse, fine);
  }

  Shares take() { return std::move(shares_); }

 private:
  // The middle of an edge is nearly always with the ends if these are together.
  void find_owners(const Meshes& meshes) {
    owner_of_ = owners_.of(meshes.coarse.points);
    std::vector<std::size_t> between;
    std::vector<Point> places;
    owner_of_.reserve(meshes.fine.points.size());
    for (const auto& [a, b] : meshes.middles) {
      if (owner_of_[a] != owner_of_[b]) {
        between.push_back(owner_of_.size());
        places.push_back(meshes.fine.points[owner_of_.size()]);
      }
      owner_of_.push_back(owner_of_[a]);
    }
    const std::vector<unsigned> owners = owners_.of(places);
    for (std::size_t n = 0; n < between.size(); ++n) {
      owner_of_[between[n]] = owners[n];
    }
  }

  static double extrapolated(double coarse, double fine) { return (4.0 * fine - coarse) / 3.0; }

  Statistics statistics(const Integrals& coarse, const Integrals& fine) const {
    Integrals best = {extrapolated(coarse.area, fine.area), extrapolated(coarse.first, fine.first),
                      extrapolated(coarse.second, fine.second)};
    if (!(best.area > 0.0) || !(best.second >= 0.0)) {
      best = fine;  // of a share that the coarse mesh hardly has
    }
    if (!(best.area > 0.0)) {
      return {};
    }
    const double mean = best.first / best.area, variance = best.second / best.area - mean * mean;
    return {best.area, reference_ + mean, std::sqrt(std::max(variance, 0.0))};
  }

  // `quarters` facets of the mesh belong to each of the coarse ones.
  Sums sums_of(const Mesh& mesh, std::span<const Facet> coarse, std::size_t quarters, bool has_ranges) {
    Sums sums = {{},
                 std::vector<Integrals>(shares_.atoms.size()),
                 std::vector<double>(piece_count_),
                 std::vector<double>(piece_count_)};
    for (std::size_t n = 0; n < mesh.facets.size(); ++n) {
      const Facet& f = mesh.facets[n];
      const Point &a = mesh.points[f[0]], &b = mesh.points[f[1]], &c = mesh.points[f[2]];
      const Point twice_area = cross(b - a, c - a);
      const double area = 0.5 * length(twice_area);
      const Corner values = {mesh.potential[f[0]] - reference_, mesh.potential[f[1]] - reference_,
                             mesh.potential[f[2]] - reference_};
      const Integrals whole = over_triangle(area, values[0], values[1], values[2]);
      add(whole, &sums.whole);
      const unsigned piece = piece_of_[coarse[n / quarters][0]];
      sums.areas[piece] += area;
      sums.volumes[piece] += dot(a - origin_, twice_area) / 6.0;
      const std::array owners = {owner_of_[f[0]], owner_of_[f[1]], owner_of_[f[2]]};
      if (owners[0] == owners[1] && owners[0] == owners[2]) {
        add(whole, &sums.atoms[owners[0]]);
      } else {
        share_facet({a, b, c}, owners, area, values, has_ranges, &sums.atoms);
      }
    }
    return sums;
  }

  void share_facet(const std::array<Point, 3>& vertices, std::array<unsigned, 3> owners, double area,
                   const Corner& values, bool has_ranges, std::vector<Integrals>* atoms) {
    std::ranges::sort(owners);
    const auto end = std::unique(owners.begin(), owners.end());
    std::array<Corner, 3> weights{};  // of the owners
    for (auto owner = owners.begin(); owner != end; ++owner) {
      for (unsigned c = 0; c < 3; ++c) {
        weights[static_cast<std::size_t>(owner - owners.begin())][c] = owners_.weight(vertices[c], *owner);
      }
    }
    const auto count = static_cast<std::size_t>(end - owners.begin());
    for (std::size_t own = 0; own < count; ++own) {
      Polygon part = whole_facet;
      for (std::size_t other = 0; other < count; ++other) {
        if (other != own) {
          part = clipped(part, {weights[own][0] - weights[other][0], weights[own][1] - weights[other][1],
                                weights[own][2] - weights[other][2]});
        }
      }
      add(over_polygon(part, area, values), &(*atoms)[owners[own]]);
      for (unsigned n = 0; n < part.count && has_ranges; ++n) {
        if (!is_vertex(part.corners[n])) {
          shares_.atoms[owners[own]].at_border.take(reference_ + at(part.corners[n], values));
        }
      }
    }
  }

  void set_pieces(const Mesh& mesh, const Sums& coarse, const Sums& fine) {
    std::vector<long> vertices(piece_count_), facets(piece_count_);
    for (const unsigned piece : piece_of_) {
      ++vertices[piece];
    }
    for (const Facet& facet : mesh.facets) {
      ++facets[piece_of_[facet[0]]];
    }
    shares_.volume = 0.0;
    for (unsigned n = 0; n < piece_count_; ++n) {
      // Two facets share each edge.
      shares_.pieces.push_back({extrapolated(coarse.areas[n], fine.areas[n]),
                                extrapolated(coarse.volumes[n], fine.volumes[n]),
                                vertices[n] - facets[n] / 2});
      shares_.volume += shares_.pieces.back().volume;
    }
    std::ranges::stable_sort(shares_.pieces, std::ranges::greater{}, &Piece::volume);
  }

  const Owners& owners_;
  double reference_;  // potential, hartree: sums of squares keep their digits
  Point origin_;      // for volumes
  unsigned piece_count_ = 0;
  std::vector<unsigned> owner_of_, piece_of_;
  Shares shares_;
};

}  // namespace

Shares shares_of(const Meshes& meshes, const Owners& owners, unsigned atom_count) {
  return Adder(meshes, owners, atom_count).take();
}
