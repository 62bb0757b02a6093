#include "Robot.h"

// Controller-wide state changes: no parameters, only the reply's state.
int Robot::recover() { return _command("recover"); }
int Robot::stop() { return _command("stop"); }
int Robot::calibrate() { return _command("calibrate"); }
int Robot::reset() { return _command("reset"); }
// The controller knows this command as "finalize".
int Robot::Shutdown() { return _command("finalize"); }
