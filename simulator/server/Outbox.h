#ifndef TAVSIM_SERVER_OUTBOX_H
#define TAVSIM_SERVER_OUTBOX_H

#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace tavsim {

using SteadyTime = std::chrono::steady_clock::time_point;

// One thing to send on a connection: the pieces of a message, written one after another
// with `pieceGap` between them, from `due` on; or, with `closeAfter`, the end of the
// connection once the pieces (if any) are out.
struct OutboxEntry {
  SteadyTime due;
  std::vector<std::string> pieces;
  std::chrono::milliseconds pieceGap{0};
  bool closeAfter = false;
};

// The writes waiting on one connection, sent in order of their due time without blocking and
// as soon as they are due. An entry that has started is finished before any other, so a split
// message is never interleaved.
class Outbox {
public:
  enum class Progress {
    Waiting,   // nothing more is due now (see NextDue)
    Blocked,   // the socket takes no more bytes: wait until it is writable
    CloseNow,  // a closing entry was reached
    Broken     // a write failed: the connection is gone
  };

  void Schedule(OutboxEntry entry);
  // Writes what is due at `now` on the non-blocking socket `fd`.
  Progress Flush(int fd, SteadyTime now);
  // When Flush next has something to write; nothing when the outbox is empty or blocked.
  std::optional<SteadyTime> NextDue() const;
  bool Blocked() const { return blocked; }
  bool Empty() const { return queue.empty(); }

private:
  // Sends the rest of the current piece; false when the socket is full or broken.
  Progress _writePiece(int fd, SteadyTime now);

  std::deque<OutboxEntry> queue;  // by due time; the front may be in progress
  bool started = false;           // the front entry has begun
  std::size_t nextPiece = 0;      // next piece of the front entry
  std::size_t offset = 0;         // bytes of that piece already written
  SteadyTime notBefore{};         // the next piece of a split entry may not start earlier
  bool blocked = false;
};

}  // namespace tavsim

#endif
