#include "Reader.h"

#include <memory>

#include "Library.h"

namespace binding {

Reader::Reader(const std::string& path, const std::string& root) {
  opened_ = withLibrary([&] {
    document_ = std::make_unique<ardo::SimpleXML>();
    return document_->open(path.c_str(), root.c_str());
  });
}

std::optional<Reader::Element> Reader::firstChild(Element parent, const std::string& name) {
  return withLibrary([&]() -> std::optional<Element> {
    goTo(parent);
    if (!document_->setNode(name.c_str())) return std::nullopt;
    return Element(document_->nodeBegin[1], document_->nodeEnd[1]);
  });
}

int Reader::count(Element parent, const std::string& name) {
  return withLibrary([&] {
    goTo(parent);
    return document_->getNodeCount(name.c_str());
  });
}

py::str Reader::text(Element element) {
  const auto content = withLibrary([&] {
    goTo(element);
    char* copy = nullptr;
    document_->getNode(&copy);
    return std::unique_ptr<char[]>(copy);
  });
  return decoded(content ? content.get() : "");
}

Reader::Found<int> Reader::integer(Element parent, const std::string& name) {
  return number(parent, name, &ardo::SimpleXML::getInt);
}

Reader::Found<float> Reader::real(Element parent, const std::string& name) {
  return number(parent, name, &ardo::SimpleXML::getFloat);
}

void Reader::goTo(Element element) {
  document_->setNode();
  std::tie(document_->nodeBegin[0], document_->nodeEnd[0]) = element;
}

// A text that is no number leaves the value as it was: the second reading tells which it is.
template <typename Number>
Reader::Found<Number> Reader::number(Element parent, const std::string& name,
                                     bool (ardo::SimpleXML::*get)(const char*, Number*)) {
  return withLibrary([&]() -> Found<Number> {
    goTo(parent);
    Number value = 0;
    Number again = 1;
    if (!(*document_.*get)(name.c_str(), &value)) return {false, std::nullopt};
    (*document_.*get)(name.c_str(), &again);
    if (value == 0 && again == 1) return {true, std::nullopt};
    return {true, value};
  });
}

}  // namespace binding
