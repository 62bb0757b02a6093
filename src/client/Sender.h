#ifndef TAVCLIENT_CLIENT_SENDER_H
#define TAVCLIENT_CLIENT_SENDER_H

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>

#include "../protocol/Parser.h"
#include "SocketWorker.h"
#include "Tasks.h"

// Owns the outbound direction: takes queued tasks in arrival order, turns each into one
// message text and writes all of it. A call alone on its session writes its own message
// instead (SendNow), between two of the queue's. A failed write ends the connection for the
// Sender: it reports 1001011 and unloads, and what is still queued is never sent.
//
// A task belongs to the connection loaded when it was queued and is dropped if that one has
// gone by the time it would be written. While waiting for a task the Sender does not look at
// its flags; destruction wakes and joins it without sending anything more.
class Sender : public SocketWorker {
public:
  Sender();
  ~Sender() override;

  void AddTask(Tasks task);
  // Drops what is still queued: after a logout it belongs to no connection.
  void ClearQueue();
  // Writes `task` on the calling thread; false when `connection` is no longer loaded or the
  // write failed (which is reported).
  bool SendNow(Tasks& task, std::uint64_t connection);
  // Returns once no write is in progress; after Unload none starts until the next Load.
  void WaitSocketReleased();
  void Stop();

protected:
  bool _work() override;

private:
  struct Queued {
    std::uint64_t connection;
    Tasks task;
  };

  // The wire text of a task; empty for a type or session identifier without a message.
  std::string _buildMessage(Tasks& task);
  bool _write(std::uint64_t connection, const std::string& text);

  Parser parser;
  std::deque<Queued> queue;
  std::mutex queueMutex;
  std::condition_variable taskQueued;
  bool closing = false;  // guarded by queueMutex
  // Held across every write, so that messages never interleave and the socket is not closed
  // under one.
  std::mutex writing;
};

#endif
