#include "surface/facets.hpp"

#include <algorithm>
#include <cmath>

#include "surface/vectors.hpp"

namespace {

// A corner of a part of a facet: its barycentric coordinates.
using Corner = std::array<double, 3>;

constexpr std::array<Corner, 3> vertices = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

double at(const Corner& corner, const Corner& values) {
  return corner[0] * values[0] + corner[1] * values[1] + corner[2] * values[2];
}

Corner between(const Corner& a, const Corner& b, double t) {
  return {(1.0 - t) * a[0] + t * b[0], (1.0 - t) * a[1] + t * b[1], (1.0 - t) * a[2] + t * b[2]};
}

// A part of a facet, counter-clockwise, and which of its corners lie on a border.
struct Polygon {
  std::array<Corner, 6> corners;
  std::array<bool, 6> is_border;
  unsigned count = 0;
  void add(const Corner& corner, bool is_at_border) {
    corners[count] = corner;
    is_border[count++] = is_at_border;
  }
};

FacetPart part_of(const Polygon& polygon, unsigned owner, double facet_area, const Corner& values) {
  FacetPart part = {owner, {}, 0, {}};
  for (unsigned n = 2; n < polygon.count; ++n) {
    const Corner &a = polygon.corners[0], &b = polygon.corners[n - 1], &c = polygon.corners[n];
    const double fraction = (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]);
    add(integrals_of(facet_area * fraction, at(a, values), at(b, values), at(c, values)), &part.integrals);
  }
  for (unsigned n = 0; n < polygon.count; ++n) {
    if (polygon.is_border[n] && part.border_count < part.border_values.size()) {
      part.border_values[part.border_count++] = at(polygon.corners[n], values);
    }
  }
  return part;
}

// Where a parabola is 0, from its values at 0, at 1, and where a straight line between these would be 0.
double zero_of_bent(double at_0, double at_1, double straight, double value) {
  const double bend = value / (straight * (straight - 1.0));
  const double next = straight - value / (at_1 - at_0 + bend * (2.0 * straight - 1.0));
  return next > 0.0 && next < 1.0 ? next : straight;
}

// Where a corner of a quarter lies on the patch. The quarters are those that mesh_make makes.
Point place_on(const Patch& patch, unsigned quarter, const Corner& corner) {
  // Of each quarter's vertices twice the coordinates in the patch.
  constexpr std::array<std::array<Corner, 3>, 4> quarters = {{{{{2, 0, 0}, {1, 1, 0}, {1, 0, 1}}},
                                                              {{{0, 2, 0}, {0, 1, 1}, {1, 1, 0}}},
                                                              {{{0, 0, 2}, {1, 0, 1}, {0, 1, 1}}},
                                                              {{{1, 1, 0}, {0, 1, 1}, {1, 0, 1}}}}};
  Corner b;
  for (unsigned c = 0; c < 3; ++c) {
    const auto& [first, second, third] = quarters[quarter];
    b[c] = 0.5 * (corner[0] * first[c] + corner[1] * second[c] + corner[2] * third[c]);
  }
  Point place = {};
  for (unsigned c = 0; c < 3; ++c) {
    place = place + b[c] * (2.0 * b[c] - 1.0) * patch.points[c] +
            4.0 * b[(c + 1) % 3] * b[(c + 2) % 3] * patch.points[3 + c];
  }
  return place;
}

// The part of a polygon in which a linear function, given at the vertices, is not negative.
Polygon clipped(const Polygon& polygon, const Corner& function) {
  Polygon result;
  for (unsigned n = 0; n < polygon.count; ++n) {
    const Corner &a = polygon.corners[n], &b = polygon.corners[(n + 1) % polygon.count];
    const double at_a = at(a, function), at_b = at(b, function);
    if (at_a >= 0.0) {
      result.add(a, polygon.is_border[n]);
    }
    if ((at_a > 0.0 && at_b < 0.0) || (at_a < 0.0 && at_b > 0.0)) {
      result.add(between(a, b, at_a / (at_a - at_b)), true);
    }
  }
  return result;
}

double area_of(const FacetPlace& facet) { return 0.5 * length(facet_twice_area(facet.vertices)); }

// A part of a facet whose corners have owners.
struct Triangle {
  std::array<Corner, 3> corners;
  std::array<unsigned, 3> owners;
};

// Borders are bent, and narrow shares can lie between two vertices of others.
class Sharing {
 public:
  Sharing(const FacetPlace& facet, const Patch& patch, unsigned quarter, const Owners& owners,
          std::vector<FacetPart>* parts)
      : facet_(facet),
        patch_(patch),
        quarter_(quarter),
        owners_(owners),
        parts_(parts),
        area_(area_of(facet)) {}

  void share(const Triangle& triangle, unsigned depth) const {
    const auto& [a, b, c] = triangle.owners;
    if (a == b && a == c) {
      Polygon whole;
      for (const Corner& corner : triangle.corners) {
        whole.add(corner, false);
      }
      put(whole, a);
    } else if ((a == b || a == c || b == c) ? !share_two(triangle, depth == depth_max) : depth < depth_max) {
      split(triangle, depth);
    } else if (a != b && a != c && b != c) {
      share_three(triangle);
    }
  }

 private:
  static constexpr unsigned depth_max = 3;

  Point place(const Corner& corner) const { return place_on(patch_, quarter_, corner); }
  unsigned owner(const Corner& corner) const { return owners_.of(place(corner)); }
  double weight(const Corner& corner, unsigned atom) const { return owners_.weight(place(corner), atom); }

  void put(const Polygon& polygon, unsigned owner) const {
    parts_->push_back(part_of(polygon, owner, area_, facet_.values));
  }

  void split(const Triangle& triangle, unsigned depth) const {
    const auto& [a, b, c] = triangle.corners;
    const auto& [of_a, of_b, of_c] = triangle.owners;
    const Corner ab = between(a, b, 0.5), bc = between(b, c, 0.5), ca = between(c, a, 0.5);
    const unsigned of_ab = owner(ab), of_bc = owner(bc), of_ca = owner(ca);
    share({{a, ab, ca}, {of_a, of_ab, of_ca}}, depth + 1);
    share({{b, bc, ab}, {of_b, of_bc, of_ab}}, depth + 1);
    share({{c, ca, bc}, {of_c, of_ca, of_bc}}, depth + 1);
    share({{ab, bc, ca}, {of_ab, of_bc, of_ca}}, depth + 1);
  }

  // One of two owners has a single corner. The border goes through two edges and a place between them; false
  // if that is somebody else's, unless it must do.
  bool share_two(const Triangle& triangle, bool must_do) const {
    const auto& of = triangle.owners;
    const unsigned number = of[1] == of[2] ? 0 : of[0] == of[2] ? 1 : 2;
    const unsigned own = of[number], other = of[(number + 1) % 3];
    const Corner &lone = triangle.corners[number], &after = triangle.corners[(number + 1) % 3],
                 &last = triangle.corners[(number + 2) % 3];
    const auto difference = [&](const Corner& corner) { return weight(corner, own) - weight(corner, other); };
    const double at_lone = difference(lone);
    const auto cut = [&](const Corner& to) {
      const double at_end = difference(to), straight = at_lone / (at_lone - at_end);
      if (!(straight > 0.0 && straight < 1.0)) {
        return at_lone > 0.0 ? to : lone;  // through a vertex
      }
      const double there = difference(between(lone, to, straight));
      return between(lone, to, zero_of_bent(at_lone, at_end, straight, there));
    };
    const Corner first = cut(after), second = cut(last), chord = between(first, second, 0.5);
    const double off = difference(chord), way = off / (off - at_lone);
    const Corner middle = std::fabs(way) < 0.5 ? between(chord, lone, way) : chord;
    const unsigned owner_there = owner(middle);
    if (owner_there != own && owner_there != other && !must_do) {
      return false;
    }
    Polygon corner, rest;
    corner.add(lone, false);
    corner.add(first, true);
    corner.add(middle, true);
    corner.add(second, true);
    rest.add(middle, true);
    rest.add(first, true);
    rest.add(after, false);
    rest.add(last, false);
    rest.add(second, true);
    put(corner, own);
    put(rest, other);
    return true;
  }

  // Each corner another owner: small by now, and cut by straight borders.
  void share_three(const Triangle& triangle) const {
    std::array<Corner, 3> weights;  // of the owners, at the corners
    for (unsigned own = 0; own < 3; ++own) {
      for (unsigned c = 0; c < 3; ++c) {
        weights[own][c] = weight(triangle.corners[c], triangle.owners[own]);
      }
    }
    for (unsigned own = 0; own < 3; ++own) {
      Polygon part;  // in coordinates of the triangle
      for (const Corner& vertex : vertices) {
        part.add(vertex, false);
      }
      for (const unsigned other : {(own + 1) % 3, (own + 2) % 3}) {
        part = clipped(part, {weights[own][0] - weights[other][0], weights[own][1] - weights[other][1],
                              weights[own][2] - weights[other][2]});
      }
      for (unsigned n = 0; n < part.count; ++n) {
        const Corner in_triangle = part.corners[n];
        for (unsigned c = 0; c < 3; ++c) {
          part.corners[n][c] = in_triangle[0] * triangle.corners[0][c] +
                               in_triangle[1] * triangle.corners[1][c] +
                               in_triangle[2] * triangle.corners[2][c];
        }
      }
      put(part, triangle.owners[own]);
    }
  }

  const FacetPlace& facet_;
  const Patch& patch_;
  unsigned quarter_;
  const Owners& owners_;
  std::vector<FacetPart>* parts_;
  double area_;
};

}  // namespace

void facet_share(const FacetPlace& facet, const Patch& patch, unsigned quarter, const Owners& owners,
                 std::vector<FacetPart>* parts) {
  Sharing(facet, patch, quarter, owners, parts).share({vertices, facet.owners}, 0);
}
