#include "surface/shares.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "surface/vectors.hpp"

namespace {

void add(const Integrals& part, Integrals* sum) {
  sum->area += part.area;
  sum->first += part.first;
  sum->second += part.second;
}

Integrals times(double factor, const Integrals& part) {
  return {factor * part.area, factor * part.first, factor * part.second};
}

// What extrapolation to facets without size adds to the fine integrals, as errors go with the size squared.
Integrals beyond(const Integrals& coarse, const Integrals& fine) {
  return {(fine.area - coarse.area) / 3.0, (fine.first - coarse.first) / 3.0,
          (fine.second - coarse.second) / 3.0};
}

double extrapolated(double coarse, double fine) { return fine + (fine - coarse) / 3.0; }

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

struct PieceSums {
  double coarse_area = 0.0, fine_area = 0.0, coarse_volume = 0.0, fine_volume = 0.0;
  long vertices = 0, facets = 0;
};

class Adder {
 public:
  Adder(const Meshes& meshes, const Owners& owners, unsigned atom_count)
      : owners_(owners), reference_(meshes.coarse.potential[0]), origin_(meshes.coarse.points[0]) {
    shares_.atoms.resize(atom_count);
    find_owners(meshes);
    unsigned piece_count;
    piece_of_ = pieces_of(meshes.coarse, &piece_count);
    take_values(meshes.fine);
    atoms_.resize(atom_count);
    pieces_.resize(piece_count);
    for (std::size_t n = 0; n < meshes.coarse.facets.size(); ++n) {
      add_facet(meshes, n);
    }
    for (unsigned atom = 0; atom < atom_count; ++atom) {
      shares_.atoms[atom].is_empty = !(atoms_[atom].area > 0.0);
      shares_.atoms[atom].statistics = statistics(atoms_[atom]);
    }
    shares_.whole = statistics(whole_);
    set_pieces();
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

  // A vertex of a facet that has several owners is as good as at the border.
  void take_values(const Mesh& mesh) {
    std::vector<unsigned char> is_at_border(mesh.points.size());
    for (const auto& [a, b, c] : mesh.facets) {
      if (owner_of_[a] != owner_of_[b] || owner_of_[a] != owner_of_[c]) {
        is_at_border[a] = is_at_border[b] = is_at_border[c] = 1;
      }
    }
    for (std::size_t n = 0; n < mesh.points.size(); ++n) {
      Share& share = shares_.atoms[owner_of_[n]];
      shares_.range.take(mesh.potential[n]);
      (is_at_border[n] != 0 ? share.at_border : share.within).take(mesh.potential[n]);
    }
  }

  Statistics statistics(const Integrals& sum) const {
    if (!(sum.area > 0.0)) {
      return {};
    }
    const double mean = sum.first / sum.area, variance = sum.second / sum.area - mean * mean;
    return {sum.area, reference_ + mean, std::sqrt(std::max(variance, 0.0))};
  }

  FacetPlace place_of(const Mesh& mesh, const Facet& facet) const {
    FacetPlace place = {};
    for (unsigned c = 0; c < 3; ++c) {
      place.vertices[c] = mesh.points[facet[c]];
      place.values[c] = mesh.potential[facet[c]] - reference_;
      place.owners[c] = owner_of_[facet[c]];
    }
    return place;
  }

  // A facet of the coarse mesh, and its quarters.
  void add_facet(const Meshes& meshes, std::size_t number) {
    const FacetPlace place = place_of(meshes.coarse, meshes.coarse.facets[number]);
    PieceSums& piece = pieces_[piece_of_[meshes.coarse.facets[number][0]]];
    const Integrals coarse = facet_integrals(place);
    piece.coarse_area += coarse.area;
    piece.coarse_volume += facet_volume(place, origin_);
    ++piece.facets;
    Integrals fine;
    parts_.clear();
    const std::span quarters = std::span(meshes.fine.facets).subspan(4 * number, 4);
    const auto& [middle_ab, middle_bc, middle_ca] = quarters[3];
    const auto& points = meshes.fine.points;
    const Patch patch = {{place.vertices[0], place.vertices[1], place.vertices[2], points[middle_bc],
                          points[middle_ca], points[middle_ab]}};
    for (unsigned quarter = 0; quarter < 4; ++quarter) {
      const FacetPlace part = place_of(meshes.fine, quarters[quarter]);
      piece.fine_volume += facet_volume(part, origin_);
      add(facet_integrals(part), &fine);
      facet_share(part, patch, quarter, owners_, &parts_);
    }
    piece.fine_area += fine.area;
    const Integrals rest = beyond(coarse, fine);
    add(fine, &whole_);
    add(rest, &whole_);
    for (const FacetPart& part : parts_) {
      add(part.integrals, &atoms_[part.owner]);
      if (fine.area > 0.0) {
        add(times(part.integrals.area / fine.area, rest), &atoms_[part.owner]);
      }
      for (unsigned n = 0; n < part.border_count; ++n) {
        shares_.atoms[part.owner].at_border.take(reference_ + part.border_values[n]);
      }
    }
  }

  void set_pieces() {
    for (const unsigned piece : piece_of_) {
      ++pieces_[piece].vertices;
    }
    shares_.volume = 0.0;
    for (const PieceSums& piece : pieces_) {
      // Two facets share each edge.
      shares_.pieces.push_back({extrapolated(piece.coarse_area, piece.fine_area),
                                extrapolated(piece.coarse_volume, piece.fine_volume),
                                piece.vertices - piece.facets / 2,
                                1.0 - piece.coarse_area / piece.fine_area});
      shares_.volume += shares_.pieces.back().volume;
    }
    std::ranges::stable_sort(shares_.pieces, std::ranges::greater{}, &Piece::volume);
  }

  const Owners& owners_;
  double reference_;  // potential, hartree: sums of squares keep their digits
  Point origin_;      // for volumes
  std::vector<unsigned> owner_of_, piece_of_;
  Integrals whole_;
  std::vector<Integrals> atoms_;
  std::vector<PieceSums> pieces_;
  std::vector<FacetPart> parts_;
  Shares shares_;
};

}  // namespace

Shares shares_of(const Meshes& meshes, const Owners& owners, unsigned atom_count) {
  return Adder(meshes, owners, atom_count).take();
}
