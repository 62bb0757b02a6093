#ifndef TAVCLIENT_ROBOT_REPLYTEXT_H
#define TAVCLIENT_ROBOT_REPLYTEXT_H

#include <map>
#include <string>
#include <vector>

// Reading the texts of command replies.
namespace ReplyText {

// The value under `key`; a missing key reads as the empty text.
std::string ValueOf(const std::map<std::string, std::string>& reply, const std::string& key);

// A result list with every '[', then every ']', then every ' ' removed: "[1.5, 2.25]" gives
// "1.5,2.25".
std::string Cleaned(std::string text);

// Appends the pieces between occurrences of `separator` to `pieces`. Adjacent or leading
// separators yield empty pieces, a trailing one does not; an empty text yields none. An empty
// separator splits nothing: a non-empty text is appended whole.
void SplitInto(const std::string& text, std::vector<std::string>& pieces,
               const std::string& separator);

// A real through single precision, or an integer; throws std::invalid_argument or
// std::out_of_range when the text does not hold one.
void ReadNumber(const std::string& text, double& value);
void ReadNumber(const std::string& text, int& value);

// The controller's motor ids are the consecutive numbers 1..k (k at most 10) whose decimal
// text occurs in `result`, a plain substring test that stops at the first number missing:
// "10" alone yields {1}, "1,2,4" yields {1, 2}.
std::vector<int> MotorIdsIn(const std::string& result);

}  // namespace ReplyText

#endif
