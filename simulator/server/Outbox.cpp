#include "server/Outbox.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace tavsim {

void Outbox::Schedule(OutboxEntry entry) {
  const auto first = queue.begin() + (started ? 1 : 0);
  const auto at =
      std::upper_bound(first, queue.end(), entry.due,
                       [](SteadyTime due, const OutboxEntry& queued) { return due < queued.due; });
  queue.insert(at, std::move(entry));
}

Outbox::Progress Outbox::Flush(int fd, SteadyTime now) {
  blocked = false;
  while (!queue.empty()) {
    OutboxEntry& entry = queue.front();
    if (!started) {
      if (now < entry.due) {
        return Progress::Waiting;
      }
      started = true;
      nextPiece = 0;
      offset = 0;
    }
    if (nextPiece < entry.pieces.size()) {
      if (offset == 0 && now < notBefore) {
        return Progress::Waiting;
      }
      const Progress written = _writePiece(fd, now);
      if (written != Progress::Waiting) {
        return written;
      }
      continue;
    }
    const bool close = entry.closeAfter;
    queue.pop_front();
    started = false;
    if (close) {
      return Progress::CloseNow;
    }
  }
  return Progress::Waiting;
}

// Waiting here means the piece is out and the next may follow after the entry's gap.
Outbox::Progress Outbox::_writePiece(int fd, SteadyTime now) {
  const OutboxEntry& entry = queue.front();
  const std::string& piece = entry.pieces[nextPiece];
  while (offset < piece.size()) {
    const ssize_t sent =
        ::send(fd, piece.data() + offset, piece.size() - offset, MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) {
      continue;
    }
    if (sent < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
      blocked = true;
      return Progress::Blocked;
    }
    if (sent < 0) {
      return Progress::Broken;
    }
    offset += static_cast<std::size_t>(sent);
  }
  ++nextPiece;
  offset = 0;
  notBefore = now + entry.pieceGap;
  return Progress::Waiting;
}

std::optional<SteadyTime> Outbox::NextDue() const {
  if (queue.empty() || blocked) {
    return std::nullopt;
  }
  if (started) {
    return notBefore;
  }
  return queue.front().due;
}

}  // namespace tavsim
