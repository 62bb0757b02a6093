#ifndef TAVTEST_SUPPORT_REPLYTIMEOUT_H
#define TAVTEST_SUPPORT_REPLYTIMEOUT_H

namespace tavtest {

// The reply time-out the tests give their Robots. Replies come within milliseconds and the moves
// a test waits for end within seconds, so a fault that loses every reply fails each test in
// seconds instead of after the library's default hour.
constexpr double kReplyTimeoutSeconds = 5.0;

}  // namespace tavtest

#endif
