#ifndef TAVCLIENT_CLIENT_REPLYSTORE_H
#define TAVCLIENT_CLIENT_REPLYSTORE_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

// Where decoded replies meet the calls that wait for them, by name. Knows no socket: whoever
// reads the connection files what it read here, and a waiting call is woken alone when its
// reply is filed.
//
// It holds only what someone may still collect: a call announces the name it will wait for
// before sending (Expect), which drops a stale entry of that name; a reply whose call gave up
// is dropped when it arrives; of the replies filed and not yet collected (asked or unasked) and
// the names given up, at most kMaxUnclaimed are kept, the oldest dropped first. A reply whose name
// is already filed is dropped (kept on purpose).
class ReplyStore {
public:
  using Message = std::map<std::string, std::string>;
  using Clock = std::chrono::steady_clock;
  static constexpr std::size_t kMaxUnclaimed = 256;

  // What became of a filed reply.
  enum class Filing { kAsked, kUnasked, kLate, kDuplicate };
  struct Filed {
    Filing filing;
    std::string pushedOut;  // an unclaimed reply dropped to make room, if any
  };

  // Announces a wait for `name`; returns the ticket that Abandon names it by.
  std::uint64_t Expect(const std::string& name);
  // The same for a wait that still takes a reply already filed under `name`.
  std::uint64_t Watch(const std::string& name);
  Filed File(const std::string& name, Message message);
  // Takes the reply filed under `name` out; 1002021 when there is none. Never waits.
  int Take(const std::string& name, Message& result);
  // Takes the reply `name` out (0) once it is filed; 1002021 when the wait ends without it:
  // `released` held, `wakeAt` passed or the waiter was woken otherwise. Whoever makes
  // `released` true calls WakeAll afterwards; a caller that goes on waiting calls again.
  // `wakeAt` is asked under the store's lock, so that a wake-up right after it is not missed.
  int Wait(const std::string& name, Message& result, const std::function<bool()>& released,
           const std::function<Clock::time_point()>& wakeAt);
  // The call that announced `name` with `ticket` has given up: its reply is dropped when it
  // comes. Nothing changes if the name has been announced again since.
  void Abandon(const std::string& name, std::uint64_t ticket);
  void WakeAll();
  // Everything filed or announced belongs to a connection that has gone.
  void Clear();

private:
  enum class State { kExpected, kFiled, kAbandoned };
  struct Entry {
    State state = State::kExpected;
    Message message;
    std::uint64_t order = 0;
    std::vector<std::condition_variable*> waiters;
  };
  using Entries = std::map<std::string, Entry>;

  int _takeLocked(const std::string& name, Message& result);
  // Once more than kMaxUnclaimed replies are filed or abandoned, drops the oldest of them that
  // nobody waits on; its name, if any.
  std::string _boundLocked();

  std::mutex mutex;
  Entries entries;
  std::uint64_t orders = 0;
};

#endif
