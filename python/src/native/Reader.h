// The small XML reader, for Python: elements are told by where they begin and end.
#ifndef KALVISTA_PYTHON_READER_H
#define KALVISTA_PYTHON_READER_H

#include <kalvista/SimpleXML.h>
#include <pybind11/pybind11.h>

#include <optional>
#include <string>
#include <utility>

namespace binding {

class Reader {
 public:
  using Element = std::pair<int, int>;

  // Whether a child is there, and its value when its text is a number.
  template <typename Number>
  using Found = std::pair<bool, std::optional<Number>>;

  Reader(const std::string& path, const std::string& root);

  // False when the file cannot be read, or its comments do not balance.
  bool opened() const { return opened_; }
  bool hasRoot() const { return document_->hasRoot(); }
  int length() const { return document_->length; }

  std::optional<Element> firstChild(Element parent, const std::string& name);
  int count(Element parent, const std::string& name);
  pybind11::str text(Element element);
  Found<int> integer(Element parent, const std::string& name);
  Found<float> real(Element parent, const std::string& name);

 private:
  void goTo(Element element);
  template <typename Number>
  Found<Number> number(Element parent, const std::string& name,
                       bool (ardo::SimpleXML::*get)(const char*, Number*));

  std::unique_ptr<ardo::SimpleXML> document_;
  bool opened_ = false;
};

}  // namespace binding

#endif  // KALVISTA_PYTHON_READER_H
