#include "lint/LintTree.h"

#include <expat.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "answer/Nearest.h"

namespace tool {
namespace {

constexpr int kMostFaults = 100;

// One run of the XML parser over the document.
class Parse {
 public:
  explicit Parse(const std::string& view) {
    // Any byte is a character, and offsets are bytes: the reader does not care for encodings.
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
        XML_ParserCreate("ISO-8859-1"), XML_ParserFree);
    parser_ = parser.get();
    XML_SetUserData(parser_, this);
    XML_SetElementHandler(parser_, onOpening, onClosing);
    XML_SetCharacterDataHandler(parser_, onText);
    if (XML_Parse(parser_, view.data(), static_cast<int>(view.size()), XML_TRUE) == XML_STATUS_OK) {
      return;
    }
    error = XML_GetErrorCode(parser_);
    errorAt = position();
  }

  std::vector<Element> elements;
  std::vector<std::size_t> open;
  XML_Error error = XML_ERROR_NONE;
  std::size_t errorAt = 0;

 private:
  std::size_t position() const {
    return static_cast<std::size_t>(XML_GetCurrentByteIndex(parser_));
  }
  std::size_t positionBehind() const {
    return position() + static_cast<std::size_t>(XML_GetCurrentByteCount(parser_));
  }

  static void onOpening(void* self, const XML_Char* name, const XML_Char** /*attributes*/) {
    auto& parse = *static_cast<Parse*>(self);
    Element element;
    element.name = name;
    if (!parse.open.empty()) element.parent = parse.open.back();
    element.begin = parse.position();
    element.contentBegin = element.contentEnd = element.end = parse.positionBehind();
    parse.open.push_back(parse.elements.size());
    parse.elements.push_back(std::move(element));
  }

  static void onClosing(void* self, const XML_Char* /*name*/) {
    auto& parse = *static_cast<Parse*>(self);
    Element& element = parse.elements[parse.open.back()];
    element.contentEnd = parse.position();
    element.end = parse.positionBehind();
    parse.open.pop_back();
  }

  static void onText(void* self, const XML_Char* text, int length) {
    auto& parse = *static_cast<Parse*>(self);
    Element& element = parse.elements[parse.open.back()];
    const auto size = static_cast<std::size_t>(length);
    const std::size_t ink = findInk({text, size}, 0, size);
    if (element.ownText == kNowhere && ink < size) element.ownText = parse.position() + ink;
  }

  XML_Parser parser_ = nullptr;
};

class Mending {
 public:
  Mending(std::string& view, const Parse& parse, Findings& findings)
      : view_(view), parse_(parse), findings_(findings) {}

  // False when there is nothing more to be seen behind the fault.
  bool mend() {
    switch (parse_.error) {
      case XML_ERROR_TAG_MISMATCH:
        return mendMismatch();
      case XML_ERROR_NO_ELEMENTS:
        return !parse_.open.empty() && mendUnclosed("expected its closing tag");
      case XML_ERROR_JUNK_AFTER_DOC_ELEMENT:
        report(parse_.errorAt, "text behind the root is lost, expected the end of the document");
        return false;
      default:
        return mendToken();
    }
  }

 private:
  void report(std::size_t offset, const std::string& message) {
    std::string path;
    for (const std::size_t index : parse_.open) path += "/" + parse_.elements[index].name;
    findings_.push_back({offset, path.empty() ? "document" : path.substr(1), message});
  }

  // With its text, which would become its parent's.
  void blankOpening(const Element& element) {
    blankOut(view_, element.begin, view_.find('<', element.contentBegin));
  }

  bool mendUnclosed(const std::string& expected) {
    const Element& innermost = parse_.elements[parse_.open.back()];
    report(innermost.begin, "not closed, " + expected);
    blankOpening(innermost);
    return parse_.open.size() > 1;
  }

  bool mendMismatch() {
    const std::size_t end = view_.find('>', parse_.errorAt);
    const std::string name = view_.substr(
        parse_.errorAt, view_.find_first_of("> \t\r\n", parse_.errorAt) - parse_.errorAt);
    const bool closesOuter =
        std::any_of(parse_.open.begin(), parse_.open.end(),
                    [&](std::size_t index) { return parse_.elements[index].name == name; });
    const std::string& innermost = parse_.elements[parse_.open.back()].name;
    if (closesOuter) return mendUnclosed("expected </" + innermost + "> ahead of </" + name + ">");
    report(parse_.errorAt - 2,
           "</" + name + "> closes no element here, expected </" + innermost + ">");
    // The closing tag of the innermost element, misspelt, or one too many.
    if (nearestOf(name, {innermost}).empty()) {
      blankOut(view_, parse_.errorAt - 2, end + 1);
    } else {
      return mendMisspeltClosing(innermost, end);
    }
    return true;
  }

  bool mendMisspeltClosing(const std::string& name, std::size_t end) {
    const Element& element = parse_.elements[parse_.open.back()];
    blankOpening(element);
    blankOut(view_, parse_.errorAt - 2, end + 1);
    return name != parse_.elements.front().name;
  }

  bool mendToken() {
    report(parse_.errorAt, std::string(XML_ErrorString(parse_.error)) + ", expected XML");
    const std::size_t last = parse_.errorAt < view_.size() ? parse_.errorAt : view_.size() - 1;
    const std::size_t bracket = view_.rfind('<', last);
    const std::size_t seen = parse_.elements.empty() ? 0 : parse_.elements.back().contentBegin;
    if (bracket == kNowhere || bracket < seen || view_.find('>', bracket) < last) {
      return blankByte(last);
    }
    // Attributes are not the reader's: without them the tag may do.
    const std::size_t nameEnd = view_.find_first_of(" \t\r\n/>", bracket + 2);
    const std::size_t tagEnd = view_.find_first_of("<>", bracket + 1);
    if (nameEnd > last || tagEnd == kNowhere || view_[tagEnd] == '<' ||
        findInk(view_, nameEnd, tagEnd) == tagEnd) {
      return blankByte(bracket);
    }
    blankOut(view_, nameEnd, tagEnd);
    return true;
  }

  bool blankByte(std::size_t at) {
    const bool isInk = !isWhite(view_[at]);
    blankOut(view_, at, at + 1);
    return isInk;
  }

  std::string& view_;
  const Parse& parse_;
  Findings& findings_;
};

}  // namespace

std::vector<Element> parseElements(std::string view, Findings& findings) {
  for (int faults = 0;; ++faults) {
    Parse parse(view);
    if (parse.error == XML_ERROR_NONE) return std::move(parse.elements);
    if (faults == kMostFaults) {
      findings.push_back(
          {parse.errorAt, "document", "more faults than can be told at once follow, expected XML"});
      return {};
    }
    if (!Mending(view, parse, findings).mend()) return std::move(parse.elements);
  }
}

std::string pathOf(const std::vector<Element>& elements, std::size_t index, const Format& format) {
  std::string path;
  for (; index != kNowhere; index = elements[index].parent) {
    const Element& element = elements[index];
    std::string step = element.name;
    const ElementRule* rule = format.find(element.name);
    if (rule != nullptr && rule->repeated) {
      const auto end = elements.begin() + static_cast<std::ptrdiff_t>(index) + 1;
      const auto number = std::count_if(elements.begin(), end, [&](const Element& other) {
        return other.parent == element.parent && other.name == element.name;
      });
      step += "[" + std::to_string(number) + "]";
    }
    path = path.empty() ? step : step + "/" + path;
  }
  return path;
}

}  // namespace tool
