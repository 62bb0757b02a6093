#include "core/WireXml.h"

namespace tavsim {

const WireElement* WireElement::Child(std::size_t index, const std::string& childName) const {
  if (index >= children.size() || children[index].name != childName) {
    return nullptr;
  }
  return &children[index];
}

namespace {

class Reader {
public:
  explicit Reader(const std::string& source) : text(source) {}

  std::optional<WireElement> Document() {
    WireElement root;
    if (!_element(root) || pos != text.size()) {
      return std::nullopt;
    }
    return root;
  }

private:
  bool _consume(const std::string& token) {
    if (text.compare(pos, token.size(), token) != 0) {
      return false;
    }
    pos += token.size();
    return true;
  }

  bool _name(std::string& name) {
    const std::size_t end = text.find_first_of(" />", pos);
    if (end == std::string::npos || end == pos || text.find('<', pos) < end) {
      return false;
    }
    name = text.substr(pos, end - pos);
    pos = end;
    return true;
  }

  bool _element(WireElement& element) {
    if (!_consume("<") || !_name(element.name)) {
      return false;
    }
    while (pos < text.size() && text[pos] == ' ') {
      ++pos;
    }
    if (_consume("/>")) {
      return true;
    }
    if (!_consume(">") || !_content(element)) {
      return false;
    }
    return _consume("</" + element.name + ">");
  }

  bool _content(WireElement& element) {
    if (text.compare(pos, 2, "</") == 0) {
      return true;
    }
    if (pos < text.size() && text[pos] == '<') {
      while (pos < text.size() && text[pos] == '<' && text.compare(pos, 2, "</") != 0) {
        element.children.emplace_back();
        if (!_element(element.children.back())) {
          return false;
        }
      }
      return true;
    }
    const std::size_t end = text.find('<', pos);
    if (end == std::string::npos) {
      return false;
    }
    element.text = text.substr(pos, end - pos);
    pos = end;
    return true;
  }

  const std::string& text;
  std::size_t pos = 0;
};

}  // namespace

std::optional<WireElement> ParseWireXml(const std::string& text) { return Reader(text).Document(); }

}  // namespace tavsim
