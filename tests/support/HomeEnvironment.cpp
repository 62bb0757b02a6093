#include "support/TemporaryHome.h"

// The library creates its directories and log files under HOME: keep them out of the real one.
// Built as an object library so that the registration reaches every program that links it.
const auto* const kTemporaryHome = ::testing::AddGlobalTestEnvironment(new tavtest::TemporaryHome);
