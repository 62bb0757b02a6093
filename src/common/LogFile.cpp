#include "common/LogFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <tuple>
#include <vector>

#include "common/LocalTime.h"

namespace {

constexpr std::time_t kSecondsPerHour = 3600;

// The hour of the run that a record at `now` belongs to: 0 up to and including its 3600th
// second, then 1, and so on.
std::time_t HourOfRun(std::time_t start, std::time_t now) {
  const std::time_t elapsed = now - start;
  return elapsed <= kSecondsPerHour ? 0 : (elapsed - 1) / kSecondsPerHour;
}
constexpr std::size_t kStampLength = 14;

bool AllDigits(const std::string& text, std::size_t from, std::size_t to) {
  if (from >= to) {
    return false;
  }
  for (std::size_t i = from; i < to; ++i) {
    if (std::isdigit(static_cast<unsigned char>(text[i])) == 0) {
      return false;
    }
  }
  return true;
}

// Orders a run's files by stamp, then by number, the first file (no number) before "-1".
std::tuple<std::string, std::size_t, std::string> SortKey(const std::string& name) {
  const std::string number = name.substr(kStampLength, name.size() - kStampLength - 4);
  const std::string digits = number.empty() ? "" : number.substr(1);
  return {name.substr(0, kStampLength), digits.size(), digits};
}

}  // namespace

bool IsLogFileName(const std::string& name) {
  const std::string suffix = ".log";
  if (name.size() < kStampLength + suffix.size() ||
      name.compare(name.size() - suffix.size(), suffix.size(), suffix) != 0 ||
      !AllDigits(name, 0, kStampLength)) {
    return false;
  }
  const std::size_t end = name.size() - suffix.size();
  return end == kStampLength ||
         (name[kStampLength] == '-' && AllDigits(name, kStampLength + 1, end));
}

LogFile::LogFile(const std::string& directoryPath, std::time_t startTime, LogLimits fileLimits)
    : directory(directoryPath),
      stamp(LogFileStamp(startTime)),
      start(startTime),
      limits(fileLimits),
      hour(0) {
  _openFrom(0);
}

LogFile::~LogFile() {
  if (fd >= 0) {
    ::close(fd);
  }
}

std::string LogFile::_path(int fileNumber) const {
  return directory + "/" + stamp + (fileNumber == 0 ? "" : "-" + std::to_string(fileNumber)) +
         ".log";
}

void LogFile::_openFrom(int fileNumber) {
  if (fd >= 0) {
    ::close(fd);
  }
  for (number = fileNumber;; ++number) {
    fd = ::open(_path(number).c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0664);
    if (fd < 0 || _size() < limits.fileBytes) {
      break;
    }
    ::close(fd);
  }
  if (fd >= 0) {
    _prune();
  }
}

void LogFile::_prune() const {
  DIR* listing = ::opendir(directory.c_str());
  if (listing == nullptr) {
    return;
  }
  std::vector<std::string> names;
  while (const dirent* entry = ::readdir(listing)) {
    if (IsLogFileName(entry->d_name)) {
      names.emplace_back(entry->d_name);
    }
  }
  ::closedir(listing);
  if (names.size() <= limits.files) {
    return;
  }
  std::sort(names.begin(), names.end(),
            [](const std::string& a, const std::string& b) { return SortKey(a) < SortKey(b); });
  const std::string current = _path(number).substr(directory.size() + 1);
  for (std::size_t i = 0; i + limits.files < names.size(); ++i) {
    if (names[i] != current) {
      ::unlink((directory + "/" + names[i]).c_str());
    }
  }
}

std::size_t LogFile::_size() const {
  struct stat status {};
  return ::fstat(fd, &status) == 0 ? static_cast<std::size_t>(status.st_size) : 0;
}

bool LogFile::_writeAll(const char* text, std::size_t length) {
  while (length > 0) {
    const ssize_t written = ::write(fd, text, length);
    if (written < 0 && errno == EINTR) {
      continue;
    }
    if (written <= 0) {
      return false;
    }
    text += written;
    length -= static_cast<std::size_t>(written);
  }
  return true;
}

// Each piece is as many whole lines as the current file has room for, written at once.
void LogFile::Write(std::time_t now, const std::string& lines) {
  if (HourOfRun(start, now) > hour) {
    hour = HourOfRun(start, now);
    _openFrom(number + 1);
  }
  const std::string text = lines + '\n';
  std::size_t position = 0;
  while (fd >= 0 && position < text.size()) {
    const std::size_t size = _size();
    const std::size_t room = size < limits.fileBytes ? limits.fileBytes - size : 0;
    const std::size_t lineEnd = text.find('\n', position);
    if (lineEnd - position + 1 > room) {
      if (size > 0) {
        _openFrom(number + 1);
        continue;
      }
      // Alone in an empty file and still too long: the line keeps what fits.
      if (!_writeAll(text.data() + position, room - 1) || !_writeAll("\n", 1)) {
        return;
      }
      position = lineEnd + 1;
      continue;
    }
    const std::size_t pieceEnd =
        position + room >= text.size() ? text.size() : text.rfind('\n', position + room - 1) + 1;
    if (!_writeAll(text.data() + position, pieceEnd - position)) {
      return;
    }
    position = pieceEnd;
  }
}
