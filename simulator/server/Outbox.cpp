#include "server/Outbox.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace tavsim {

void Outbox::Schedule(OutboxEntry entry) {
  const auto first = queue_.begin() + (started_ ? 1 : 0);
  const auto at = std::upper_bound(first, queue_.end(), entry.due,
                                   [](SteadyTime due, const OutboxEntry& queued) { return due < queued.due; });
  queue_.insert(at, std::move(entry));
}

Outbox::Progress Outbox::Flush(int fd, SteadyTime now) {
  blocked_ = false;
  while (!queue_.empty()) {
    OutboxEntry& entry = queue_.front();
    if (!started_) {
      if (now < entry.due) {
        return Progress::Waiting;
      }
      started_ = true;
      piece_ = 0;
      offset_ = 0;
    }
    if (piece_ < entry.pieces.size()) {
      if (offset_ == 0 && now < notBefore_) {
        return Progress::Waiting;
      }
      const Progress written = WritePiece(fd, now);
      if (written != Progress::Waiting) {
        return written;
      }
      continue;
    }
    const bool close = entry.closeAfter;
    queue_.pop_front();
    started_ = false;
    if (close) {
      return Progress::CloseNow;
    }
  }
  return Progress::Waiting;
}

// Waiting here means the piece is out and the next may follow after the entry's gap.
Outbox::Progress Outbox::WritePiece(int fd, SteadyTime now) {
  const OutboxEntry& entry = queue_.front();
  const std::string& piece = entry.pieces[piece_];
  while (offset_ < piece.size()) {
    const ssize_t sent = ::send(fd, piece.data() + offset_, piece.size() - offset_, MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) {
      continue;
    }
    if (sent < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
      blocked_ = true;
      return Progress::Blocked;
    }
    if (sent < 0) {
      return Progress::Broken;
    }
    offset_ += static_cast<std::size_t>(sent);
  }
  ++piece_;
  offset_ = 0;
  notBefore_ = now + entry.pieceGap;
  return Progress::Waiting;
}

std::optional<SteadyTime> Outbox::NextDue() const {
  if (queue_.empty() || blocked_) {
    return std::nullopt;
  }
  if (started_) {
    return notBefore_;
  }
  return queue_.front().due;
}

}  // namespace tavsim
