#ifndef TAVCLIENT_CLIENT_SOCKETCALLS_H
#define TAVCLIENT_CLIENT_SOCKETCALLS_H

#include <sys/types.h>

#include <chrono>
#include <cstddef>

// The socket calls of a session, each retried when a signal interrupts it, so that a signal
// handler in the application never fails a session.
namespace SocketCalls {

// Writes all `size` bytes, however many calls that takes; false on a real error (errno set).
bool WriteAll(int socket, const char* bytes, std::size_t size);
// One recv without waiting: bytes read, 0 for a closed peer, -1 with errno (EAGAIN when
// nothing is there).
ssize_t ReadAvailable(int socket, char* buffer, std::size_t size);
// Waits until `socket` is readable (or hung up), `wake` is readable, or `timeout` passes; a
// negative timeout waits without end. Returns whether `socket` is readable.
bool WaitReadable(int socket, int wake, std::chrono::milliseconds timeout);
// connect, retried on EINTR by waiting for the connection the kernel goes on making.
int Connect(int socket, const void* address, unsigned length);

}  // namespace SocketCalls

#endif
