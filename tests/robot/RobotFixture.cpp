#include "support/TemporaryHome.h"

// The Robot's Client puts its directories and logs under HOME.
const auto* const kTemporaryHome = ::testing::AddGlobalTestEnvironment(new tavtest::TemporaryHome);
