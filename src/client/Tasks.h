#ifndef TAVCLIENT_CLIENT_TASKS_H
#define TAVCLIENT_CLIENT_TASKS_H

#include <map>
#include <string>

// One outbound message waiting in the Sender's queue; copied by value, never shared.
struct Tasks {
  static constexpr int kSession = 100;  // selected further by params["identifier"]
  static constexpr int kCommand = 101;
  static constexpr int kHeartbeat = 102;

  int type = 0;
  std::map<std::string, std::string> params;
};

#endif
