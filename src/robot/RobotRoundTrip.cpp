#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "Robot.h"
#include "common/TavLogger.h"
#include "common/TavUtils.h"
#include "robot/Arguments.h"
#include "robot/ReplyText.h"

// Every command is this one exchange: the next request counter value tells the request apart,
// the controller files its reply under the wire name followed by that counter text, and the
// reply's "state" is the command's result. A reply without "state" reads as state "" (0).
// The parameters arrive already formatted: a formatting failure sends nothing.
int Robot::_roundTrip(const std::string& function_name, const Parameters& parameters,
                      Reply& reply) {
  const std::string timestamp = std::to_string(GetTimeStamp());
  Tasks task;
  task.type = Tasks::kCommand;
  task.params["timestamp"] = timestamp;
  task.params["ClientID"] = clientId;
  task.params["function_name"] = function_name;
  for (const auto& [key, text] : parameters) {
    task.params[key] = text;
  }

  if (const int code = Exchange(std::move(task), function_name + timestamp, reply)) {
    return code;
  }
  return GetRobotEvent(ReplyText::ValueOf(reply, "state"));
}

int Robot::_command(const std::string& function_name, const Parameters& parameters) {
  Reply reply;
  return _roundTrip(function_name, parameters, reply);
}

// A query reply without "result1" reads as an empty list.
int Robot::_queryText(const std::string& function_name, const Parameters& parameters,
                      std::string& cleaned) {
  Reply reply;
  if (const int code = _roundTrip(function_name, parameters, reply)) {
    return code;
  }
  cleaned = ReplyText::Cleaned(ReplyText::ValueOf(reply, "result1"));
  return 0;
}

int Robot::_queryList(const std::string& function_name, const Parameters& parameters,
                      std::vector<std::string>& pieces) {
  std::string text;
  if (const int code = _queryText(function_name, parameters, text)) {
    return code;
  }
  ReplyText::SplitInto(text, pieces, ",");
  return 0;
}

template <typename Number>
int Robot::_queryValue(const std::string& function_name, const Parameters& parameters,
                       Number& value) {
  std::string text;
  if (const int code = _queryText(function_name, parameters, text)) {
    return code;
  }
  ReplyText::ReadNumber(text, value);
  return 0;
}

// All values are read before any is stored, so a value that does not parse leaves the
// output untouched.
template <typename Number>
int Robot::_queryValues(const std::string& function_name, const Parameters& parameters,
                        std::vector<Number>& values) {
  std::vector<std::string> pieces;
  if (const int code = _queryList(function_name, parameters, pieces)) {
    return code;
  }
  std::vector<Number> read(pieces.size());
  for (size_t i = 0; i < pieces.size(); ++i) {
    ReplyText::ReadNumber(pieces[i], read[i]);
  }
  values = std::move(read);
  return 0;
}

// The reply decides how many values there are, the caller how many it can hold: the rest is
// dropped rather than written past the end of its array.
template <typename Number>
int Robot::_queryValues(const std::string& function_name, const Parameters& parameters,
                        Number* values, size_t capacity) {
  if (!Arguments::Holds(capacity, values)) {
    return RobotEvents::kInvalidArgument;
  }
  std::vector<Number> read;
  if (const int code = _queryValues(function_name, parameters, read)) {
    return code;
  }
  if (read.size() > capacity) {
    TavLogger::GetInstance().Warning(
        0, "Robot %s reply holds %d values, room for %d: the rest is ignored.",
        function_name.c_str(), static_cast<int>(read.size()), static_cast<int>(capacity));
    read.resize(capacity);
  }
  std::copy(read.begin(), read.end(), values);
  return 0;
}

template int Robot::_queryValue(const std::string&, const Parameters&, double&);
template int Robot::_queryValue(const std::string&, const Parameters&, int&);
template int Robot::_queryValues(const std::string&, const Parameters&, std::vector<double>&);
template int Robot::_queryValues(const std::string&, const Parameters&, std::vector<int>&);
template int Robot::_queryValues(const std::string&, const Parameters&, double*, size_t);
template int Robot::_queryValues(const std::string&, const Parameters&, int*, size_t);

// Pieces 0 to 5 in the order of _Pose; extra pieces are ignored, missing ones throw
// std::out_of_range and leave the pose untouched.
int Robot::_queryPose(const std::string& function_name, const Parameters& parameters, _Pose& pose) {
  std::vector<std::string> pieces;
  if (const int code = _queryList(function_name, parameters, pieces)) {
    return code;
  }
  double read[6];
  for (size_t i = 0; i < 6; ++i) {
    ReplyText::ReadNumber(pieces.at(i), read[i]);
  }
  pose = _Pose{read[0], read[1], read[2], read[3], read[4], read[5]};
  return 0;
}
