#ifndef TAVCLIENT_PYTHON_PYTHONGATE_H
#define TAVCLIENT_PYTHON_PYTHONGATE_H

#include <condition_variable>
#include <mutex>

namespace tavpy {

// Lets the library's threads into Python until the interpreter begins to exit. A thread that
// takes the GIL during finalization is ended on the spot, through frames that must not be
// unwound, so Close waits for every thread inside and lets none in again.
class PythonGate {
public:
  // The process's gate; never destroyed, as threads may outlive the static objects.
  static PythonGate& Instance();

  bool Enter();
  void Leave();
  // Without the GIL.
  void Close();

private:
  std::mutex mutex;
  std::condition_variable left;
  int inside = 0;
  bool closed = false;
};

}  // namespace tavpy

#endif
