#ifndef TAVSIM_CORE_CONNECTION_H
#define TAVSIM_CORE_CONNECTION_H

#include <chrono>
#include <optional>
#include <string>

#include "core/StreamFramer.h"
#include "core/UniqueFd.h"

namespace tavsim {

// The controller's end of one client connection: raw writes and framed reads. Writes never
// raise SIGPIPE. Small writes leave at once (no Nagle delay), so separate writes usually reach
// the client as separate reads.
class Connection {
public:
  explicit Connection(UniqueFd socket);

  int NativeHandle() const { return socket.Get(); }
  bool IsOpen() const { return socket.Valid(); }
  // True once the client closed its side (or the connection broke) and nothing more can come.
  bool PeerClosed() const { return peerClosed; }

  // Writes all of `bytes`; false when the connection is closed or broken.
  bool Write(const std::string& bytes);

  // Reads whatever the socket holds now, without waiting; for poll-driven servers.
  void ReadAvailable();
  // The next message among the bytes read so far.
  std::optional<std::string> NextMessage() { return framer.Next(); }
  // Waits until a whole message is framed; nothing when the timeout passes or the peer closes.
  std::optional<std::string> ReadMessage(std::chrono::milliseconds timeout);

  // Ends sending but keeps reading: the client sees its reads return 0.
  void ShutdownWrite();
  // Closes the socket at once.
  void Close();

  const StreamFramer& Framer() const { return framer; }

private:
  UniqueFd socket;
  StreamFramer framer;
  bool peerClosed = false;
};

}  // namespace tavsim

#endif
