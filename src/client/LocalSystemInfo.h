#ifndef TAVCLIENT_CLIENT_LOCALSYSTEMINFO_H
#define TAVCLIENT_CLIENT_LOCALSYSTEMINFO_H

// What the client tells the controller about itself in the client-info message.
struct LocalSystemInfo {
  const char* version = nullptr;
  const char* system = nullptr;
  const char* language = nullptr;
};

#endif
