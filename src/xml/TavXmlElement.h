#ifndef TAVCLIENT_XML_TAVXMLELEMENT_H
#define TAVCLIENT_XML_TAVXMLELEMENT_H

#include <cstddef>
#include <string>
#include <vector>

// One node of the message model. The element keeps its own serialised text and edits it in
// place at positions cached by _updateXMLParam; nesting is done by putting a child's text into
// the parent's text. The children list is filled only by the parser and is never serialised.
// The quirks (setText inserting without removing, the asymmetric setName, stale positions
// after getElement) are what the controller's messages and the parser are matched to.
class TavXmlElement {
public:
  TavXmlElement();
  explicit TavXmlElement(std::string name);
  TavXmlElement(const TavXmlElement& other);
  TavXmlElement& operator=(const TavXmlElement& other) = default;
  // Moves let the parser hand built subtrees up and grow child lists without deep copies.
  TavXmlElement(TavXmlElement&& other) noexcept = default;
  TavXmlElement& operator=(TavXmlElement&& other) noexcept = default;
  ~TavXmlElement();

  void setName(std::string newName);
  void setText(std::string newText);
  void linkText(std::string appended);
  void setChildren(TavXmlElement& child);
  void setChildren(TavXmlElement&& child);

  std::string getElement();
  std::string getName() const;
  std::string getText() const;
  std::vector<TavXmlElement> getChildren() const;
  // The same children without a copy, for readers that only look.
  const std::vector<TavXmlElement>& childrenView() const;

  void _updateXMLParam();

private:
  std::string element;
  std::string name;
  std::size_t nameLength = 0;
  std::size_t openPos = 0;
  std::size_t closePos = 0;
  std::string text;
  std::size_t textLength = 0;
  std::size_t openEndPos = 0;
  std::vector<TavXmlElement> children;
};

#endif
