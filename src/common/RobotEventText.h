#ifndef TAVCLIENT_COMMON_ROBOTEVENTTEXT_H
#define TAVCLIENT_COMMON_ROBOTEVENTTEXT_H

#include "RobotEvent.h"

// A short English text for a code: every library code, and every code the controller is known
// to send; "unknown event N" for any other. The text of a known code is a literal that stays
// valid for the whole program. The text of an unknown code is kept per thread: it stays valid
// until the same thread asks for another unknown code, and other threads never touch it.
const char* RobotEventText(Robot_Event code);

#endif
