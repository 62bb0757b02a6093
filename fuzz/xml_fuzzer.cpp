// TavXmlDocument::parse on arbitrary text. Besides the sanitizers' checks and the run's
// memory limits (a text must not build a tree without bound), the tree must be made of the
// text: every element's text is a piece of its parent's, the root's a piece of the input.
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "FuzzCheck.h"
#include "xml/TavXmlDocument.h"
#include "xml/TavXmlElement.h"

namespace {

void CheckSubtree(const TavXmlElement& element) {
  const std::string text = element.getText();
  for (const TavXmlElement& child : element.childrenView()) {
    FUZZ_CHECK(text.find(child.getText()) != std::string::npos);
    CheckSubtree(child);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string original(reinterpret_cast<const char*>(data), size);
  std::string text = original;
  TavXmlDocument document;
  int status = 0;
  try {
    status = document.parse(text);
  } catch (const std::out_of_range&) {
    return 0;
  }
  FUZZ_CHECK(text == original);
  FUZZ_CHECK(status == 0 || status == TavXmlDocument::kTreeTooLarge);
  if (status == 0) {
    const TavXmlElement& root = document.rootView();
    FUZZ_CHECK(root.getName() == "root");
    FUZZ_CHECK(text.find(root.getText()) != std::string::npos);
    CheckSubtree(root);
  }
  return 0;
}
