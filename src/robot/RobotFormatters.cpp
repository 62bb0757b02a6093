#include <utility>

#include "Robot.h"
#include "robot/Arguments.h"
#include "robot/ParameterText.h"
#include "robot/ReplyText.h"

namespace {

// The formatters replace their output's whole content; only a null argument fails them.
int Replace(std::string& out, std::string text) {
  out = std::move(text);
  return 0;
}

}  // namespace

int Robot::to_SetupParamString(Setup_Param param, std::string& text) {
  if (!Arguments::Complete(param)) {
    return RobotEvents::kInvalidArgument;
  }
  return Replace(text, ParameterText::SetupParameters(param));
}

int Robot::to_IdString(int id, std::string& out) { return Replace(out, ParameterText::IdList(id)); }

int Robot::to_IdString(unsigned long n, const int* ids, std::string& out) {
  if (!Arguments::Holds(n, ids)) {
    return RobotEvents::kInvalidArgument;
  }
  return Replace(out, ParameterText::IdList(n, ids));
}

int Robot::to_IdString(std::vector<int> ids, std::string& out) {
  return Replace(out, ParameterText::IdList(ids));
}

int Robot::to_IntString(int v, std::string& out) { return Replace(out, ParameterText::IntList(v)); }

int Robot::to_IntString(unsigned long n, const int* v, std::string& out) {
  if (!Arguments::Holds(n, v)) {
    return RobotEvents::kInvalidArgument;
  }
  return Replace(out, ParameterText::IntList(n, v));
}

int Robot::to_SignalString(int id, int value, std::string& out) {
  return Replace(out, ParameterText::SignalMap(id, value));
}

int Robot::to_SignalString(unsigned long n, const int* ids, const int* values, std::string& out) {
  if (!Arguments::Holds(n, ids) || !Arguments::Holds(n, values)) {
    return RobotEvents::kInvalidArgument;
  }
  return Replace(out, ParameterText::SignalMap(n, ids, values));
}

int Robot::to_DoubleString(double v, std::string& out) {
  return Replace(out, ParameterText::RealList(v));
}

int Robot::to_DoubleString(unsigned long n, const double* v, std::string& out) {
  if (!Arguments::Holds(n, v)) {
    return RobotEvents::kInvalidArgument;
  }
  return Replace(out, ParameterText::RealList(n, v));
}

int Robot::to_PoseString(_Pose pose, std::string& out) {
  return Replace(out, ParameterText::Pose(pose));
}

int Robot::to_PointString(unsigned long n, _Pose* poses, std::string& out) {
  if (!Arguments::Holds(n, poses)) {
    return RobotEvents::kInvalidArgument;
  }
  return Replace(out, ParameterText::PoseList(n, poses));
}

int Robot::SplitString(const std::string& s, std::vector<std::string>& out,
                       const std::string& sep) {
  ReplyText::SplitInto(s, out, sep);
  return 0;
}
