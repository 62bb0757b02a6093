#include "Robot.h"
#include "common/TavLogger.h"

int Robot::SetLogLevel(int level) { return TavLogger::GetInstance().SetLevel(level); }
