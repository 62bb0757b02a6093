#include "common/RobotEventText.h"
#include "Robot.h"

const char* Robot::EventText(int code) { return RobotEventText(code); }
