#include "xml/TavXmlDocument.h"

#include <utility>

TavXmlDocument::TavXmlDocument() = default;

int TavXmlDocument::parse(std::string& text) {
  root = _getElement(text, "root");
  return _recursionParse(root);
}

TavXmlElement TavXmlDocument::getRoot() {
  return root;
}

const TavXmlElement& TavXmlDocument::rootView() const {
  return root;
}

// Serialisation belongs to TavXmlElement::getElement; the document only reads.
int TavXmlDocument::generate(TavXmlElement& /*element*/) {
  return 0;
}

std::string TavXmlDocument::getString() {
  return std::string();
}

// Takes the characters between the first open tag and the first close tag of that name. The
// arithmetic is unsigned on purpose: a missing open tag wraps the start to (open tag length
// - 1), a missing close tag runs the content to the end, and a start past the end throws.
TavXmlElement TavXmlDocument::_getElement(std::string& text, std::string name) {
  TavXmlElement found;
  found.setName(name);
  if (text.find("<" + name + " " + "/>") != std::string::npos) {
    return found;
  }
  const std::string openTag = "<" + name + ">";
  const std::string closeTag = "</" + name + ">";
  const std::size_t openAt = text.find(openTag);
  const std::size_t closeAt = text.find(closeTag);
  const std::size_t start = openAt + openTag.length();
  const std::size_t count = closeAt - closeTag.length() + 1 - openAt;
  found.setText(text.substr(start, count));
  return found;
}

// Name lengths are counted from the start of the remaining text, not from the "<", so the
// names come out right only for siblings written back to back from position 0 ("<a />" with
// its one blank, or "<a>...</a>"). Each step cuts the remaining text behind the tag it read, in
// place; a cut past the end throws std::out_of_range as a substring would.
int TavXmlDocument::_getElementNameVector(std::string& text, std::vector<std::string>& names) {
  names.clear();
  // A leaf's text, the common case, has no tag to read: spare the copy.
  if (text.find('<') == std::string::npos) {
    return 1;
  }
  std::string rest = text;
  for (;;) {
    const std::size_t tagStart = rest.find('<');
    const std::size_t selfCloseAt = rest.find("/>");
    const std::size_t lastStartBefore = rest.rfind('<', selfCloseAt);
    if (lastStartBefore != std::string::npos && lastStartBefore == tagStart &&
        tagStart != std::string::npos) {
      const std::string name = rest.substr(tagStart + 1, selfCloseAt - 2);
      names.push_back(name);
      const std::string tag = "<" + name + " " + "/>";
      rest.assign(rest, rest.find(tag) + tag.length());
    }
    const std::size_t tagEnd = rest.find('>');
    if (tagEnd == std::string::npos || tagStart == std::string::npos) {
      break;
    }
    const std::string name = rest.substr(tagStart + 1, tagEnd - 1);
    names.push_back(name);
    const std::string closeTag = "</" + name + ">";
    rest.assign(rest, rest.find(closeTag) + closeTag.length());
  }
  return names.empty() ? 1 : 0;
}

namespace {

// Characters of element text one parse may build below the root per character of its input.
// Each level of a tree holds at most its parent's text, so the controller's messages, two
// levels deep below the root, spend at most twice their length; every character allowed beyond
// that is work a malformed text can make us do.
constexpr std::size_t kTextPerInputChar = 4;

}  // namespace

int TavXmlDocument::_recursionParse(TavXmlElement& element) {
  std::string text = element.getText();
  std::size_t budget = kTextPerInputChar * (text.length() + 1);
  return _recursionParse(element, text, budget);
}

// Each child is searched by name in the parent's whole text, so repeated names all read the
// first element of that name. Every child built spends its text length from the budget, which
// also bounds the recursion depth, since a parent's text holds all of its descendants' texts.
int TavXmlDocument::_recursionParse(TavXmlElement& element, std::string& text, std::size_t& budget) {
  std::vector<std::string> names;
  if (_getElementNameVector(text, names) != 0) {
    return 0;
  }
  for (const std::string& name : names) {
    TavXmlElement child = _getElement(text, name);
    std::string childText = child.getText();
    const std::size_t cost = childText.length() + 1;
    if (cost > budget) {
      return kTreeTooLarge;
    }
    budget -= cost;
    const int status = _recursionParse(child, childText, budget);
    if (status != 0) {
      return status;
    }
    element.setChildren(std::move(child));
  }
  return 0;
}
