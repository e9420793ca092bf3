#include <rapidxml/rapidxml.hpp>

#include "../Files.h"
#include "Peer.h"
#include "TreeLoader.h"

namespace bench {
namespace {

struct Node {
  const rapidxml::xml_node<>* node;

  std::string_view name() const { return {node->name(), node->name_size()}; }
  std::string_view text() const { return {node->value(), node->value_size()}; }

  template <typename Visit>
  void forEachChild(const Visit& visit) const {
    for (const auto* child = node->first_node(); child != nullptr; child = child->next_sibling()) {
      visit(Node{child});
    }
  }
};

void load(const char* path, ConfigCali& calibration) {
  const FileContent file = readFile(path);
  rapidxml::xml_document<> document;
  document.parse<rapidxml::parse_fastest>(file.bytes.get());
  loadTree(Node{document.first_node("CaliData")}, calibration);
}

}  // namespace

const Peer kRapidxml{"rapidxml", load};

}  // namespace bench
