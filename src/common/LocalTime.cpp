#include "common/LocalTime.h"

namespace {

std::tm LocalCalendar(std::time_t time) {
  std::tm local{};
  localtime_r(&time, &local);
  return local;
}

}  // namespace

std::string LogFileStamp(std::time_t time) {
  const std::tm local = LocalCalendar(time);
  char text[32];
  return std::string(text, std::strftime(text, sizeof text, "%Y%m%d%H%M%S", &local));
}

std::string LogLineTime(std::time_t time) {
  const std::tm local = LocalCalendar(time);
  char text[32];
  return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local));
}
