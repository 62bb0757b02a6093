#include "RosMaster.h"

// Every test of the driver program talks to the program's own master.
const auto* const kRosMaster = ::testing::AddGlobalTestEnvironment(new tavrostest::RosMaster);
