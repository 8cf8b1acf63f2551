#include "surface/shares.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "surface/vectors.hpp"

namespace {

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
  std::vector<unsigned> parent(mesh.vertex_count);
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
  std::vector<unsigned> piece(mesh.vertex_count);
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
  Adder(const Mesh& mesh, const Owners& owners, unsigned atom_count)
      : owners_(owners), reference_(mesh.potential[0]), origin_(mesh.points[0]) {
    shares_.atoms.resize(atom_count);
    find_owners(mesh);
    unsigned piece_count;
    piece_of_ = pieces_of(mesh, &piece_count);
    take_values(mesh);
    atoms_.resize(atom_count);
    pieces_.resize(piece_count);
    for (std::size_t n = 0; n < mesh.facets.size(); ++n) {
      add_facet(mesh, n);
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
  void find_owners(const Mesh& mesh) {
    owner_of_ = owners_.of(std::span(mesh.points).first(mesh.vertex_count));
    std::vector<std::size_t> between;
    std::vector<Point> places;
    owner_of_.reserve(mesh.points.size());
    for (const auto& [a, b] : mesh.edges) {
      if (owner_of_[a] != owner_of_[b]) {
        between.push_back(owner_of_.size());
        places.push_back(mesh.points[owner_of_.size()]);
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
    for (std::size_t facet = 0; facet < mesh.facets.size(); ++facet) {
      for (const auto& [a, b, c] : mesh.quarters(facet)) {
        if (owner_of_[a] != owner_of_[b] || owner_of_[a] != owner_of_[c]) {
          is_at_border[a] = is_at_border[b] = is_at_border[c] = 1;
        }
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

  // Of a facet, with the pyramid over it whose tip is the origin.
  Integrals integrals(const FacetPlace& place, double* volume) const {
    const Point twice_area = facet_twice_area(place.vertices);
    *volume += dot(place.vertices[0] - origin_, twice_area) / 6.0;
    return integrals_of(0.5 * length(twice_area), place.values[0], place.values[1], place.values[2]);
  }

  // A facet, and its quarters.
  void add_facet(const Mesh& mesh, std::size_t number) {
    const FacetPlace place = place_of(mesh, mesh.facets[number]);
    PieceSums& piece = pieces_[piece_of_[mesh.facets[number][0]]];
    const Integrals coarse = integrals(place, &piece.coarse_volume);
    piece.coarse_area += coarse.area;
    ++piece.facets;
    const std::array quarters = mesh.quarters(number);
    const auto& [ab, bc, ca] = mesh.middles[number];
    const unsigned owner = place.owners[0];
    const bool is_shared = owner != place.owners[1] || owner != place.owners[2] || owner != owner_of_[ab] ||
                           owner != owner_of_[bc] || owner != owner_of_[ca];
    Integrals fine;
    parts_.clear();
    for (unsigned quarter = 0; quarter < 4; ++quarter) {
      const FacetPlace part = place_of(mesh, quarters[quarter]);
      add(integrals(part, &piece.fine_volume), &fine);
      if (is_shared) {
        const Patch patch = {{place.vertices[0], place.vertices[1], place.vertices[2], mesh.points[bc],
                              mesh.points[ca], mesh.points[ab]}};
        facet_share(part, patch, quarter, owners_, &parts_);
      }
    }
    piece.fine_area += fine.area;
    const Integrals rest = beyond(coarse, fine);
    add(fine, &whole_);
    add(rest, &whole_);
    if (!is_shared) {
      add(fine, &atoms_[owner]);
      add(rest, &atoms_[owner]);
    }
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

Shares shares_of(const Mesh& mesh, const Owners& owners, unsigned atom_count) {
  return Adder(mesh, owners, atom_count).take();
}
