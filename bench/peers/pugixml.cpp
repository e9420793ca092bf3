#include <pugixml.hpp>
#include <stdexcept>

#include "Peer.h"
#include "TreeLoader.h"

namespace bench {
namespace {

struct Node {
  pugi::xml_node node;

  std::string_view name() const { return node.name(); }
  std::string_view text() const { return node.child_value(); }

  template <typename Visit>
  void forEachChild(const Visit& visit) const {
    for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling()) {
      visit(Node{child});
    }
  }
};

void load(const char* path, ConfigCali& calibration) {
  pugi::xml_document document;
  const pugi::xml_parse_result result = document.load_file(path);
  if (!result) throw std::runtime_error(std::string("pugixml: ") + result.description());
  loadTree(Node{document.child("CaliData")}, calibration);
}

}  // namespace

const Peer kPugixml{"pugixml", load};

}  // namespace bench
