#include "Robot.h"

#include <optional>

#include "robot/Arguments.h"
#include "robot/ParameterText.h"

using ParameterText::IdList;
using ParameterText::Integer;
using ParameterText::Pose;
using ParameterText::PoseList;
using ParameterText::Real;
using ParameterText::RealList;

namespace {

int ModeValue(Relative_Mode mode) { return static_cast<int>(mode); }
int ModeValue(Traj_Close_Mode mode) { return static_cast<int>(mode); }

// A closed path blends at n - 2 corners, an open one takes a radius per point. A closed path of
// fewer than two points has no count at all (it would wrap around): nothing, as moveL refuses it.
std::optional<unsigned long> RadiusCount(unsigned long n, Traj_Close_Mode closed) {
  if (ModeValue(closed) != 1) {
    return n;
  }
  if (n < 2) {
    return std::nullopt;
  }
  return n - 2;
}

}  // namespace

// Single-motor moves are the one-motor case of the group move.
int Robot::move_to_angles(int motor_id, double position, float velocity, float acceleration,
                          Relative_Mode mode) {
  return move_to_angles(1, &motor_id, &position, velocity, acceleration, mode);
}

// "block" 0: the controller answers once it has accepted the move, not when the move ends.
int Robot::move_to_angles(unsigned long count, const int* motor_ids, const double* positions,
                          float velocity, float acceleration, Relative_Mode mode) {
  if (!Arguments::Holds(count, motor_ids) || !Arguments::Holds(count, positions)) {
    return RobotEvents::kInvalidArgument;
  }
  return _command("move_to_angles", {{"motor_ids", IdList(count, motor_ids)},
                                     {"position", RealList(count, positions)},
                                     {"velocity", Real(velocity)},
                                     {"acceleration", Real(acceleration)},
                                     {"relative", Integer(ModeValue(mode))},
                                     {"block", "0"}});
}

// The controller knows this command as "move_to_position".
int Robot::move_to_pose(_Pose pose, float velocity, float acceleration, Relative_Mode mode) {
  return _command("move_to_position", {{"position", Pose(pose)},
                                       {"velocity", Real(velocity)},
                                       {"acceleration", Real(acceleration)},
                                       {"relative", Integer(ModeValue(mode))},
                                       {"block", "0"}});
}

// Path commands carry no "block" key.
Robot::Parameters Robot::_pathParameters(unsigned long n, const _Pose* points, float velocity,
                                         float acceleration, float interval,
                                         Traj_Close_Mode closed) {
  return {{"points", PoseList(n, points)},
          {"velocity", Real(velocity)},
          {"acceleration", Real(acceleration)},
          {"interval", Real(interval)},
          {"closed", Integer(ModeValue(closed))}};
}

int Robot::moveJ(unsigned long n, _Pose* points, float velocity, float acceleration, float interval,
                 Traj_Close_Mode closed) {
  if (!Arguments::Holds(n, points)) {
    return RobotEvents::kInvalidArgument;
  }
  return _command("moveJ", _pathParameters(n, points, velocity, acceleration, interval, closed));
}

int Robot::moveP(unsigned long n, _Pose* points, float velocity, float acceleration, float interval,
                 Traj_Close_Mode closed) {
  if (!Arguments::Holds(n, points)) {
    return RobotEvents::kInvalidArgument;
  }
  return _command("moveP", _pathParameters(n, points, velocity, acceleration, interval, closed));
}

// As moveJ, with the blend radii right after the points.
int Robot::moveL(unsigned long n, _Pose* points, const double* radius, float velocity,
                 float acceleration, float interval, Traj_Close_Mode closed) {
  const std::optional<unsigned long> radii = RadiusCount(n, closed);
  if (!radii || !Arguments::Holds(n, points) || !Arguments::Holds(*radii, radius)) {
    return RobotEvents::kInvalidArgument;
  }
  Parameters parameters = _pathParameters(n, points, velocity, acceleration, interval, closed);
  parameters.insert(parameters.begin() + 1, {"radius", RealList(*radii, radius)});
  return _command("moveL", parameters);
}
