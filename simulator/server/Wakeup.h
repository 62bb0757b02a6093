#ifndef TAVSIM_SERVER_WAKEUP_H
#define TAVSIM_SERVER_WAKEUP_H

#include "core/UniqueFd.h"

namespace tavsim {

// A descriptor that becomes readable when any thread calls Notify(), to end a poll() early.
class Wakeup {
public:
  Wakeup();  // throws std::system_error when no eventfd can be made

  int NativeHandle() const { return fd.Get(); }
  void Notify();
  // Makes it unreadable again.
  void Drain();

private:
  UniqueFd fd;
};

}  // namespace tavsim

#endif
