#ifndef TAVCLIENT_PROTOCOL_CHECKSUM_H
#define TAVCLIENT_PROTOCOL_CHECKSUM_H

#include <string>
#include <vector>

// Byte sum over the element texts of a message body, each byte counted as a signed 8-bit
// value and the total wrapping modulo 2^32. Both directions use it with the same rules.
class CheckSum {
public:
  CheckSum();
  ~CheckSum();

  void AddElement(std::string elementText);
  // Returns the sum of the texts added so far and forgets them, ready for the next sum.
  int CalcSum();

private:
  int state;
  std::vector<std::string> elements;
};

#endif
