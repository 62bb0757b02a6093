#include "support/TemporaryHome.h"

// Linked into every test program that starts the library, which creates its directories and log
// files under HOME: keep them out of the real one.
const auto* const kTemporaryHome = ::testing::AddGlobalTestEnvironment(new tavtest::TemporaryHome);
