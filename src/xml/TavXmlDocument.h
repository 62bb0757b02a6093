#ifndef TAVCLIENT_XML_TAVXMLDOCUMENT_H
#define TAVCLIENT_XML_TAVXMLDOCUMENT_H

#include <cstddef>
#include <string>
#include <vector>

#include "TavXmlElement.h"

// Reads one inbound message into a tree of elements. Not a general XML reader: it finds
// elements by searching for whole tags built from their names, which is exactly enough for
// the compact shapes both sides write (no attributes, no white space between tags, one blank
// before "/>"). Malformed text is never reported; it yields missing or wrong elements, and a
// few shapes make a substring start past the end, which throws std::out_of_range.
//
// parse and _recursionParse return 0, or kTreeTooLarge when the text would build a tree far
// larger than itself: repeated names are all read from their first element, so a short
// malformed text can describe exponentially many copies. The bound is well above anything
// a message of the controller's shape builds.
class TavXmlDocument {
public:
  static constexpr int kTreeTooLarge = 1;

  TavXmlDocument();

  int parse(std::string& text);
  TavXmlElement getRoot();
  // The root without a copy; valid until the next parse or the document's end.
  const TavXmlElement& rootView() const;
  int generate(TavXmlElement& element);
  std::string getString();

  TavXmlElement _getElement(std::string& text, std::string name);
  int _getElementNameVector(std::string& text, std::vector<std::string>& names);
  int _recursionParse(TavXmlElement& element);

private:
  // `text` is the element's text, read once by the caller.
  int _recursionParse(TavXmlElement& element, std::string& text, std::size_t& budget);

  std::string documentText;
  TavXmlElement root;
};

#endif
