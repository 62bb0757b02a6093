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
  explicit Reader(const std::string& text) : text_(text) {}

  std::optional<WireElement> Document() {
    WireElement root;
    if (!Element(root) || pos_ != text_.size()) {
      return std::nullopt;
    }
    return root;
  }

private:
  bool Consume(const std::string& token) {
    if (text_.compare(pos_, token.size(), token) != 0) {
      return false;
    }
    pos_ += token.size();
    return true;
  }

  bool Name(std::string& name) {
    const std::size_t end = text_.find_first_of(" />", pos_);
    if (end == std::string::npos || end == pos_ || text_.find('<', pos_) < end) {
      return false;
    }
    name = text_.substr(pos_, end - pos_);
    pos_ = end;
    return true;
  }

  bool Element(WireElement& element) {
    if (!Consume("<") || !Name(element.name)) {
      return false;
    }
    while (pos_ < text_.size() && text_[pos_] == ' ') {
      ++pos_;
    }
    if (Consume("/>")) {
      return true;
    }
    if (!Consume(">") || !Content(element)) {
      return false;
    }
    return Consume("</" + element.name + ">");
  }

  bool Content(WireElement& element) {
    if (text_.compare(pos_, 2, "</") == 0) {
      return true;
    }
    if (pos_ < text_.size() && text_[pos_] == '<') {
      while (pos_ < text_.size() && text_[pos_] == '<' && text_.compare(pos_, 2, "</") != 0) {
        element.children.emplace_back();
        if (!Element(element.children.back())) {
          return false;
        }
      }
      return true;
    }
    const std::size_t end = text_.find('<', pos_);
    if (end == std::string::npos) {
      return false;
    }
    element.text = text_.substr(pos_, end - pos_);
    pos_ = end;
    return true;
  }

  const std::string& text_;
  std::size_t pos_ = 0;
};

}  // namespace

std::optional<WireElement> ParseWireXml(const std::string& text) {
  return Reader(text).Document();
}

}  // namespace tavsim
