#include "xml/TavXmlDocument.h"

#include <cstring>
#include <stdexcept>
#include <utility>

TavXmlDocument::TavXmlDocument() = default;

int TavXmlDocument::parse(std::string& text) {
  root = _getElement(text, "root");
  return _recursionParse(root);
}

TavXmlElement TavXmlDocument::getRoot() { return root; }

const TavXmlElement& TavXmlDocument::rootView() const { return root; }

// Serialisation belongs to TavXmlElement::getElement; the document only reads.
int TavXmlDocument::generate(TavXmlElement& /*element*/) { return 0; }

std::string TavXmlDocument::getString() { return std::string(); }

namespace {

// Whether `head`, `name` and `tail` are written one after the other at `at` in `text`.
template <std::size_t HeadSize, std::size_t TailSize>
bool TagAt(const std::string& text, std::size_t at, const char (&head)[HeadSize],
           const std::string& name, const char (&tail)[TailSize]) {
  constexpr std::size_t headLength = HeadSize - 1;
  constexpr std::size_t tailLength = TailSize - 1;
  const char* const written = text.data() + at;
  return text.size() - at >= headLength + name.size() + tailLength &&
         std::memcmp(written, head, headLength) == 0 &&
         std::memcmp(written + headLength, name.data(), name.size()) == 0 &&
         std::memcmp(written + headLength + name.size(), tail, tailLength) == 0;
}

}  // namespace

// Takes the characters between the first open tag and the first close tag of that name. The
// arithmetic is unsigned on purpose: a missing open tag wraps the start to (open tag length
// - 1), a missing close tag runs the content to the end, and a start past the end throws.
//
// The three tags all begin with "<", so one walk over the "<"s finds the first of each: a
// self-closing tag anywhere wins, otherwise the first open and close tags give the content.
TavXmlElement TavXmlDocument::_getElement(std::string& text, std::string name) {
  constexpr std::size_t npos = std::string::npos;
  TavXmlElement found;
  found.setName(name);
  std::size_t openAt = npos;
  std::size_t closeAt = npos;
  for (std::size_t at = text.find('<'); at != npos; at = text.find('<', at + 1)) {
    if (TagAt(text, at, "<", name, " />")) {
      return found;
    }
    if (openAt == npos && TagAt(text, at, "<", name, ">")) {
      openAt = at;
    }
    if (closeAt == npos && TagAt(text, at, "</", name, ">")) {
      closeAt = at;
    }
  }
  const std::size_t openTagLength = name.size() + 2;
  const std::size_t closeTagLength = name.size() + 3;
  const std::size_t start = openAt + openTagLength;
  const std::size_t count = closeAt - closeTagLength + 1 - openAt;
  found.setText(text.substr(start, count));
  return found;
}

// Name lengths are counted from the start of the remaining text, not from the "<", so the
// names come out right only for siblings written back to back from position 0 ("<a />" with
// its one blank, or "<a>...</a>"). Each step cuts the remaining text behind the tag it read;
// a cut past the end throws std::out_of_range as a substring would.
//
// The remaining text is text[from, end): positions are taken relative to it, as the steps
// read them, but searched in place. The first "/>" ahead and the last "<" before it stay put
// until a cut passes them, so each is searched for once rather than on every step.
int TavXmlDocument::_getElementNameVector(std::string& text, std::vector<std::string>& names) {
  constexpr std::size_t npos = std::string::npos;
  names.clear();
  if (text.find('<') == npos) {
    return 1;
  }
  std::size_t from = 0;
  const auto relative = [&from](std::size_t position) {
    return position == npos ? npos : position - from;
  };
  const auto cut = [&](std::size_t count) {
    if (count > text.size() - from) {
      throw std::out_of_range("basic_string::assign");
    }
    from += count;
  };
  std::size_t selfClose = text.find("/>");
  std::size_t lastStart = text.rfind('<', selfClose);
  for (;;) {
    const std::size_t tagStart = relative(text.find('<', from));
    if (selfClose != npos && selfClose < from) {
      selfClose = text.find("/>", from);
      lastStart = text.rfind('<', selfClose);
    }
    const std::size_t selfCloseAt = relative(selfClose);
    const std::size_t lastStartBefore =
        lastStart == npos || lastStart < from ? npos : lastStart - from;
    if (lastStartBefore != npos && lastStartBefore == tagStart && tagStart != npos) {
      std::string name = text.substr(from + tagStart + 1, selfCloseAt - 2);
      const std::string tag = "<" + name + " " + "/>";
      names.push_back(std::move(name));
      cut(relative(text.find(tag, from)) + tag.length());
    }
    const std::size_t tagEnd = relative(text.find('>', from));
    if (tagEnd == npos || tagStart == npos) {
      break;
    }
    std::string name = text.substr(from + tagStart + 1, tagEnd - 1);
    const std::string closeTag = "</" + name + ">";
    names.push_back(std::move(name));
    cut(relative(text.find(closeTag, from)) + closeTag.length());
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
int TavXmlDocument::_recursionParse(TavXmlElement& element, std::string& text,
                                    std::size_t& budget) {
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
