#include "support/TemporaryHome.h"

// The library creates its directories and log files under HOME: keep them out of the real one.
const auto* const kTemporaryHome = ::testing::AddGlobalTestEnvironment(new tavtest::TemporaryHome);
