#ifndef TAVSIM_CORE_WIREXML_H
#define TAVSIM_CORE_WIREXML_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tavsim {

// One element of a compact wire message: a name and either a text or child elements.
struct WireElement {
  std::string name;
  std::string text;
  std::vector<WireElement> children;

  // The child at `index` if it carries `childName`, else null.
  const WireElement* Child(std::size_t index, const std::string& childName) const;
};

// A strict reader for the compact XML both sides write: no declaration, attributes, comments
// or entities; "<a />" or "<a/>" for an empty element; an element holds either plain text or
// a run of child elements with nothing between them. The whole text must be one element.
// Anything else yields nothing; the reader never throws on malformed input.
std::optional<WireElement> ParseWireXml(const std::string& text);

}  // namespace tavsim

#endif
