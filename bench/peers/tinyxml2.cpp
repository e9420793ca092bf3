#include <tinyxml2.h>

#include <stdexcept>

#include "Peer.h"
#include "TreeLoader.h"

namespace bench {
namespace {

struct Node {
  const tinyxml2::XMLElement* element;

  std::string_view name() const { return element->Name(); }

  std::string_view text() const {
    const char* text = element->GetText();
    return text == nullptr ? std::string_view() : text;
  }

  template <typename Visit>
  void forEachChild(const Visit& visit) const {
    for (const tinyxml2::XMLElement* child = element->FirstChildElement(); child != nullptr;
         child = child->NextSiblingElement()) {
      visit(Node{child});
    }
  }
};

void load(const char* path, ConfigCali& calibration) {
  tinyxml2::XMLDocument document;
  if (document.LoadFile(path) != tinyxml2::XML_SUCCESS) {
    throw std::runtime_error(std::string("tinyxml2: ") + document.ErrorStr());
  }
  loadTree(Node{document.RootElement()}, calibration);
}

}  // namespace

const Peer kTinyxml2{"tinyxml2", load};

}  // namespace bench
