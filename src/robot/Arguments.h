#ifndef TAVCLIENT_ROBOT_ARGUMENTS_H
#define TAVCLIENT_ROBOT_ARGUMENTS_H

#include "Robot.h"

// Null pointers are refused (1006011) before anything is formatted or sent: an array may be
// null only when no value is read from or written to it, a text never.
namespace Arguments {

inline bool Holds(unsigned long count, const void* values) {
  return count == 0 || values != nullptr;
}

inline bool Complete(const Setup_Param& param) {
  return param.channel_name != nullptr && param.channel_type != nullptr &&
         param.protocol != nullptr;
}

}  // namespace Arguments

#endif
