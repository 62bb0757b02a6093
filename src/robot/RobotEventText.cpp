#include "Robot.h"
#include "common/RobotEventText.h"

const char* Robot::EventText(int code) { return RobotEventText(code); }
