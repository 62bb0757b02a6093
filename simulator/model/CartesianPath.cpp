#include "model/CartesianPath.h"

#include <algorithm>
#include <utility>

namespace tavsim {

namespace {

struct Corner {
  Vec3 position;
  Quaternion turn;
  double radius = 0.0;
};

// Position and orientation a fraction of the way along the leg from a to b.
Corner Along(const Corner& a, const Corner& b, double fraction) {
  return {a.position + fraction * (b.position - a.position), Slerp(a.turn, b.turn, fraction), 0.0};
}

}  // namespace

CartesianPath::CartesianPath(const Transform& start, const std::vector<Waypoint>& waypoints) {
  std::vector<Corner> corners{{start.translation, Quaternion::FromMatrix(start.rotation), 0.0}};
  for (const Waypoint& waypoint : waypoints) {
    corners.push_back({waypoint.pose.translation, Quaternion::FromMatrix(waypoint.pose.rotation),
                       std::max(0.0, waypoint.blendRadius)});
  }
  std::vector<double> legs;
  for (std::size_t k = 0; k + 1 < corners.size(); ++k) {
    legs.push_back(Norm(corners[k + 1].position - corners[k].position));
  }
  // Only inner corners blend, and never past the middle of a neighbouring leg.
  corners.front().radius = 0.0;
  corners.back().radius = 0.0;
  for (std::size_t i = 1; i + 1 < corners.size(); ++i) {
    corners[i].radius = std::min({corners[i].radius, legs[i - 1] / 2.0, legs[i] / 2.0});
  }

  Run run;
  for (std::size_t k = 0; k < legs.size(); ++k) {
    const Corner& a = corners[k];
    const Corner& b = corners[k + 1];
    Corner legStart = a.radius > 0.0 ? Along(a, b, a.radius / legs[k]) : a;
    Corner legEnd = b.radius > 0.0 ? Along(a, b, 1.0 - b.radius / legs[k]) : b;
    _append(run, PathPiece::Line(legStart.position, legEnd.position, legStart.turn, legEnd.turn));
    if (b.radius > 0.0) {
      Corner next = Along(b, corners[k + 2], b.radius / legs[k + 1]);
      _append(run, PathPiece(legEnd.position, b.position, next.position, legEnd.turn, next.turn));
    } else {
      _closeRun(run);
    }
  }
}

void CartesianPath::_append(Run& run, const PathPiece& piece) {
  if (piece.Length() <= 0.0) {
    return;
  }
  run.starts.push_back(run.length);
  run.pieces.push_back(piece);
  run.length += piece.Length();
}

void CartesianPath::_closeRun(Run& run) {
  if (!run.pieces.empty()) {
    runs.push_back(std::move(run));
  }
  run = Run{};
}

Transform CartesianPath::PoseAt(std::size_t run, double s) const {
  const Run& r = runs[run];
  auto after = std::upper_bound(r.starts.begin(), r.starts.end(), s);
  std::size_t index =
      after == r.starts.begin() ? 0 : static_cast<std::size_t>(after - r.starts.begin()) - 1;
  return r.pieces[index].PoseAt(s - r.starts[index]);
}

}  // namespace tavsim
