#include "xml/TavXmlElement.h"

#include <utility>

TavXmlElement::TavXmlElement() : element("<></>") { _updateXMLParam(); }

TavXmlElement::TavXmlElement(std::string elementName)
    : element("<" + elementName + "></" + elementName + ">"), name(std::move(elementName)) {
  _updateXMLParam();
}

TavXmlElement::TavXmlElement(const TavXmlElement& other) = default;

TavXmlElement::~TavXmlElement() { element.clear(); }

// Positions past the end of `element` make std::string throw std::out_of_range; a "not
// found" position plus one wraps to 0 by unsigned arithmetic.
void TavXmlElement::setName(std::string newName) {
  if (!name.empty()) {
    name = newName;
    element.replace(openPos + 1, nameLength, newName);
    _updateXMLParam();
    // closePos + 1 is the "/" of the first closing tag, so the closing tag loses its slash.
    element.replace(closePos + 1, nameLength, newName);
  } else {
    name = newName;
    element.insert(openPos + 1, newName);
    _updateXMLParam();
    element.insert(closePos + 1, newName);
  }
  _updateXMLParam();
}

void TavXmlElement::setText(std::string newText) {
  element.insert(openEndPos + 1, newText);
  text = std::move(newText);
  _updateXMLParam();
}

void TavXmlElement::linkText(std::string appended) {
  text += appended;
  element.replace(openEndPos + 1, textLength, text);
  _updateXMLParam();
}

void TavXmlElement::setChildren(TavXmlElement& child) { children.push_back(child); }

void TavXmlElement::setChildren(TavXmlElement&& child) { children.push_back(std::move(child)); }

std::string TavXmlElement::getElement() {
  if (text.empty()) {
    element = "<" + name + " " + "/>";
  }
  return element;
}

std::string TavXmlElement::getName() const { return name; }

std::string TavXmlElement::getText() const { return text; }

std::vector<TavXmlElement> TavXmlElement::getChildren() const { return children; }

const std::vector<TavXmlElement>& TavXmlElement::childrenView() const { return children; }

void TavXmlElement::_updateXMLParam() {
  nameLength = name.length();
  openPos = element.find('<');
  closePos = element.find("</");
  textLength = text.length();
  openEndPos = element.find('>');
}
