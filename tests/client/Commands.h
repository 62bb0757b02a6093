#ifndef TAVTEST_CLIENT_COMMANDS_H
#define TAVTEST_CLIENT_COMMANDS_H

#include <map>
#include <string>
#include <utility>

#include "client/Tasks.h"
#include "core/ControllerReplies.h"

using Message = std::map<std::string, std::string>;

// A command task as the robot layer queues it, from client 7.
inline Tasks CommandTask(const std::string& functionName, int timestamp, Message parameters = {}) {
  Tasks task;
  task.type = Tasks::kCommand;
  task.params = std::move(parameters);
  task.params["timestamp"] = std::to_string(timestamp);
  task.params["ClientID"] = "7";
  task.params["function_name"] = functionName;
  return task;
}

inline Tasks HeartbeatTask() {
  Tasks task;
  task.type = Tasks::kHeartbeat;
  return task;
}

// The controller's reply to command `functionName` sent with `timestamp`.
inline std::string CommandReply(const std::string& functionName, const std::string& timestamp,
                                const std::string& state = "0",
                                const std::vector<std::pair<std::string, std::string>>& results = {}) {
  tavsim::CommandReply reply;
  reply.functionName = functionName;
  reply.timestamp = timestamp;
  reply.state = state;
  reply.results = results;
  return tavsim::CommandReplyMessage(reply);
}

#endif
