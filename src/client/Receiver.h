#ifndef TAVCLIENT_CLIENT_RECEIVER_H
#define TAVCLIENT_CLIENT_RECEIVER_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>

#include "SocketWorker.h"
#include "../protocol/Parser.h"

// Owns the inbound direction: reads the socket, cuts "<root>" ... "</root>" messages out of
// the stream, decodes them and files each under its name ("identifier") in the result store,
// where waiting callers collect it. Server Error messages become events instead.
//
// Kept on purpose: one message is cut per read (a second one that came in the same read waits
// for the next read); a reply whose name is already waiting in the store is dropped; a message
// that cannot be decoded stops the Receiver for good.
//
// A closed peer is reported once as 1002011; the Receiver then unloads itself and stays idle
// until it is loaded again.
class Receiver : public SocketWorker {
public:
  using Message = std::map<std::string, std::string>;
  using Clock = std::chrono::steady_clock;

  Receiver();
  ~Receiver() override;

  int _GenerateMsg(std::string& message);
  // Takes the reply filed under `name` out of the store; 1002021 when there is none. Never waits.
  int GetRecv(std::string name, Message& result);
  // Waits until a reply of that name is filed (0, taken out as by GetRecv), `abandon` turns
  // true (1002021) or the deadline passes (1003031). `abandon` is checked under the store's
  // lock whenever a waiter is woken; whoever makes it true must call WakeWaiters afterwards.
  int WaitRecv(const std::string& name, Message& result, const std::function<bool()>& abandon,
               Clock::time_point deadline);
  void WakeWaiters();
  void Stop();

protected:
  bool _work() override;

private:
  // Cuts, decodes and files or reports the next message of the stream buffer.
  void _handleStream();
  int _decode(Message& result, std::string& message);
  void _file(const std::string& name, const Message& result);
  int _takeLocked(const std::string& name, Message& result);

  static constexpr std::size_t kReadSize = 1024;
  char receiveBuffer[kReadSize] = {};
  std::string streamBuffer;
  Parser parser;
  std::map<std::string, Message> store;
  std::mutex storeMutex;
  std::condition_variable replyFiled;
};

#endif
