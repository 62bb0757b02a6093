#include "server/StateJson.h"

#include <cmath>
#include <cstdio>
#include <optional>
#include <type_traits>

namespace tavsim {

namespace {

const char* ModeName(ControllerMode mode) {
  switch (mode) {
    case ControllerMode::Ready:
      return "Ready";
    case ControllerMode::Stopped:
      return "Stopped";
    case ControllerMode::Unconfigured:
      break;
  }
  return "Unconfigured";
}

// Writes JSON values onto one growing line.
class JsonLine {
public:
  JsonLine& Key(const char* key) {
    _separate();
    text += '"';
    text += key;
    text += "\":";
    fresh = true;
    return *this;
  }
  JsonLine& Open(char bracket) {
    _separate();
    text += bracket;
    fresh = true;
    return *this;
  }
  JsonLine& Close(char bracket) {
    text += bracket;
    fresh = false;
    return *this;
  }
  JsonLine& Number(double value) {
    _separate();
    if (!std::isfinite(value)) {
      text += "null";
      return *this;
    }
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.9g", value);
    text += digits;
    return *this;
  }
  JsonLine& Null() {
    _separate();
    text += "null";
    return *this;
  }
  JsonLine& Bool(bool value) {
    _separate();
    text += value ? "true" : "false";
    return *this;
  }
  JsonLine& String(const std::string& value) {
    _separate();
    text += '"';
    for (char c : value) {
      if (c == '"' || c == '\\') {
        text += '\\';
        text += c;
      } else if (static_cast<unsigned char>(c) < 0x20) {
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
        text += escaped;
      } else {
        text += c;
      }
    }
    text += '"';
    return *this;
  }
  template <typename Values>
  JsonLine& List(const Values& values) {
    Open('[');
    for (auto value : values) {
      if constexpr (std::is_same_v<decltype(value), bool>) {
        Bool(value);
      } else {
        Number(value);
      }
    }
    return Close(']');
  }
  JsonLine& Vector(const Vec3& v) { return List(std::vector<double>{v.x, v.y, v.z}); }

  const std::string& Text() const { return text; }

private:
  void _separate() {
    if (!fresh) {
      text += ',';
    }
    fresh = false;
  }

  std::string text;
  bool fresh = true;
};

void WritePose(JsonLine& json, const std::optional<Pose>& pose) {
  json.Key("pose");
  if (!pose) {
    json.Null();
    return;
  }
  json.Open('{').Key("x").Number(pose->x).Key("y").Number(pose->y).Key("z").Number(pose->z);
  json.Key("roll")
      .Number(pose->roll)
      .Key("pitch")
      .Number(pose->pitch)
      .Key("yaw")
      .Number(pose->yaw)
      .Close('}');
}

void WriteFrames(JsonLine& json, const std::vector<Transform>& frames) {
  json.Key("frames").Open('[');
  for (const Transform& frame : frames) {
    json.Open('{').Key("origin").Vector(frame.translation);
    json.Key("x")
        .Vector(frame.rotation.Column(0))
        .Key("z")
        .Vector(frame.rotation.Column(2))
        .Close('}');
  }
  json.Close(']');
}

void WriteFeed(JsonLine& json, const std::vector<ActivityEntry>& feed) {
  json.Key("feed").Open('[');
  for (const ActivityEntry& entry : feed) {
    json.Open('{').Key("sequence").Number(static_cast<double>(entry.sequence));
    json.Key("kind").String(ActivityKindName(entry.kind)).Key("text").String(entry.text).Close('}');
  }
  json.Close(']');
}

}  // namespace

std::string StateJson(const ControllerSnapshot& snapshot, const std::vector<ActivityEntry>& feed) {
  JsonLine json;
  json.Open('{').Key("time").Number(snapshot.time).Key("mode").String(ModeName(snapshot.mode));
  json.Key("angles").List(snapshot.angles).Key("velocities").List(snapshot.velocities);
  json.Key("currents").List(snapshot.currents).Key("released").List(snapshot.released);
  WritePose(json, snapshot.pose);
  WriteFrames(json, snapshot.frames);
  json.Key("inputs").List(snapshot.inputs).Key("outputs").List(snapshot.outputs);
  json.Key("gripper").Open('{').Key("closed").Bool(snapshot.gripperClosed);
  json.Key("vacuum").Bool(snapshot.vacuumHolding).Close('}');
  WriteFeed(json, feed);
  json.Close('}');
  return json.Text();
}

}  // namespace tavsim
