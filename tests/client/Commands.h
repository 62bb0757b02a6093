#ifndef TAVTEST_CLIENT_COMMANDS_H
#define TAVTEST_CLIENT_COMMANDS_H

#include <map>
#include <string>
#include <utility>

#include "client/Tasks.h"

using Message = std::map<std::string, std::string>;

// A command task as the robot layer queues it, from client 7.
inline Tasks CommandTask(const std::string& functionName, int timestamp, Message parameters = {}) {
  Tasks task{Tasks::kCommand, std::move(parameters)};
  task.params["timestamp"] = std::to_string(timestamp);
  task.params["ClientID"] = "7";
  task.params["function_name"] = functionName;
  return task;
}

#endif
