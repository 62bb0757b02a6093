#include "robot/ParameterText.h"

namespace ParameterText {
namespace {

// open, the n items separated by "," (no blank), close.
template <typename ItemText>
std::string Joined(const char* open, unsigned long n, ItemText itemText, const char* close) {
  std::string text = open;
  for (unsigned long i = 0; i < n; ++i) {
    if (i > 0) {
      text += ',';
    }
    text += itemText(i);
  }
  return text + close;
}

std::string Quoted(const std::string& text) { return '"' + text + '"'; }

// "key": value, with one blank after the colon.
std::string Field(const std::string& key, const std::string& value) {
  return Quoted(key) + ": " + value;
}

std::string RealText(double value) { return std::to_string(value); }

}  // namespace

std::string IdList(int id) { return IdList(1, &id); }

std::string IdList(unsigned long n, const int* ids) {
  return Joined(
      "[", n, [ids](unsigned long i) { return Quoted(Integer(ids[i])); }, "]");
}

std::string IdList(const std::vector<int>& ids) { return IdList(ids.size(), ids.data()); }

std::string IntList(int value) { return IntList(1, &value); }

std::string IntList(unsigned long n, const int* values) {
  return Joined(
      "[", n, [values](unsigned long i) { return Integer(values[i]); }, "]");
}

std::string SignalMap(int id, int value) { return SignalMap(1, &id, &value); }

std::string SignalMap(unsigned long n, const int* ids, const int* values) {
  return Joined(
      "{", n, [ids, values](unsigned long i) { return Field(Integer(ids[i]), Integer(values[i])); },
      "}");
}

std::string RealList(double value) { return RealList(1, &value); }

std::string RealList(unsigned long n, const double* values) {
  return Joined(
      "[", n, [values](unsigned long i) { return RealText(values[i]); }, "]");
}

std::string Pose(const _Pose& pose) {
  return "[" + RealText(pose.x) + "," + RealText(pose.y) + "," + RealText(pose.z) + ",[" +
         RealText(pose.roll) + "," + RealText(pose.pitch) + "," + RealText(pose.yaw) + "]]";
}

std::string PoseList(unsigned long n, const _Pose* poses) {
  return Joined(
      "[", n, [poses](unsigned long i) { return Pose(poses[i]); }, "]");
}

std::string Real(float value) { return RealText(static_cast<double>(value)); }

std::string Integer(int value) { return std::to_string(value); }

std::string SetupParameters(const Setup_Param& param) {
  return "{" + Field("channel_name", Quoted(param.channel_name)) + "," +
         Field("channel_type", Quoted(param.channel_type)) + "," +
         Field("protocol", Quoted(param.protocol)) + "," +
         Field("host_id", Integer(param.host_id)) + "," +
         Field("baud_rate", Integer(param.baud_rate)) + "}";
}

}  // namespace ParameterText
