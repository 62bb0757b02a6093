#ifndef TAVCLIENT_COMMON_TAVPROPERTIES_H
#define TAVCLIENT_COMMON_TAVPROPERTIES_H

#include <map>
#include <string>
#include <vector>

// Reader of small key=value files: open keeps the content lines, load splits them at the
// first '=' and read returns the value of a key's last occurrence.
//
// The format accepted is fixed by trim (see there): open throws std::out_of_range at the first
// line with any content outside a block comment, so only files of empty lines and "/* ... */"
// comments open successfully.
class TavProperties {
public:
  TavProperties();
  virtual ~TavProperties();

  // 0, or 1005011 for a null name or a file that cannot be read.
  int open(const char* fileName);
  int load();
  // 0 with the value written, or 1005011 for an empty table or an unknown key.
  int read(const char* key, std::string* value);
  void close();
  // Erases the blanks of a non-empty text one by one and then throws std::out_of_range
  // ("basic_string::erase"); an empty text stays as it is.
  void trim(std::string& text);

private:
  // The part of a line outside block comments; updates inBlockComment.
  std::string _uncommented(const std::string& line);
  static bool _isKept(const std::string& content);

  std::string path;
  std::vector<std::string> lines;
  std::multimap<std::string, std::string> entries;
  bool inBlockComment;
};

#endif
