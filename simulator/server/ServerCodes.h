#ifndef TAVSIM_SERVER_SERVERCODES_H
#define TAVSIM_SERVER_SERVERCODES_H

// Codes the simulated controller sends for problems with the messages themselves rather than
// with the commands in them. Same family as the model's state codes (2xxxxxx).
namespace tavsim::ServerCodes {
// In an Error message: a framed text that is not one of the client's message shapes, or a
// command whose name or time stamp cannot be echoed in a reply the client would recognise.
constexpr int kUnreadableMessage = 2002011;
// As the "state" of a command reply or the "result" of a connection result: the message's
// checksum does not match its body; the command was not run.
constexpr int kChecksumMismatch = 2002021;
// The default code of an Error message sent by fault injection.
constexpr int kInjectedError = 2002091;
}  // namespace tavsim::ServerCodes

#endif
