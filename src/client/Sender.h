#ifndef TAVCLIENT_CLIENT_SENDER_H
#define TAVCLIENT_CLIENT_SENDER_H

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>

#include "../protocol/Parser.h"
#include "SocketWorker.h"
#include "Tasks.h"

// Owns the outbound direction: takes queued tasks in arrival order, turns each into one
// message text and writes it with one send. A failed send ends the connection for the Sender:
// it reports 1001011 and unloads, and what is still queued is never sent.
//
// While waiting for a task it does not look at its flags: after Unload or Stop it notices
// them only when the next task arrives (which is then dropped if unloaded). Destruction wakes
// and joins it without sending anything more.
class Sender : public SocketWorker {
public:
  Sender();
  ~Sender() override;

  void AddTask(Tasks task);
  // Drops what is still queued: after a logout it belongs to no connection.
  void ClearQueue();
  void Stop();

protected:
  bool _work() override;

private:
  // The wire text of a task; empty for a type or session identifier without a message.
  std::string _buildMessage(Tasks& task);

  Parser parser;
  std::deque<Tasks> queue;
  std::mutex queueMutex;
  std::condition_variable taskQueued;
  bool closing = false;  // guarded by queueMutex
};

#endif
