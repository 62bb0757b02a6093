#ifndef TAVSIM_MODEL_CARTESIANPATH_H
#define TAVSIM_MODEL_CARTESIANPATH_H

#include <vector>

#include "model/Geometry.h"
#include "model/PathPiece.h"

namespace tavsim {

struct Waypoint {
  Transform pose;
  // Corner rounding at this waypoint in metres; 0 makes the tool stop here. Clamped to half
  // of either neighbouring leg so that blends never overlap. Unused at the last waypoint.
  double blendRadius = 0.0;
};

// Tool path from a start pose through waypoints: straight legs, corners rounded by their
// blend radius. The path falls into runs separated by the waypoints where the tool stops;
// each run is timed as one rest-to-rest motion along its length.
class CartesianPath {
public:
  CartesianPath(const Transform& start, const std::vector<Waypoint>& waypoints);

  std::size_t RunCount() const { return runs.size(); }
  double RunLength(std::size_t run) const { return runs[run].length; }
  // Pose after travelling s (metres, clamped to the run) along a run.
  Transform PoseAt(std::size_t run, double s) const;

private:
  struct Run {
    std::vector<PathPiece> pieces;
    std::vector<double> starts;
    double length = 0.0;
  };

  void _append(Run& run, const PathPiece& piece);
  void _closeRun(Run& run);

  std::vector<Run> runs;
};

}  // namespace tavsim

#endif
