#include "lint/LintTree.h"

#include <expat.h>

#include <algorithm>
#include <cctype>
#include <memory>
#include <string_view>
#include <utility>

#include "answer/Nearest.h"

namespace tool {
namespace {

constexpr int kMostFaults = 100;
// Each fault costs a run of the parser up to it; all runs together read no more than this, beyond
// the first faults.
constexpr std::size_t kMostRead = std::size_t{16} << 20;
constexpr int kFewestFaults = 4;
// Formats are eight deep.
constexpr std::size_t kDeepest = 100;
// Of a tag; the parser compares the name of each with all others, in a table that outgrows the
// processor's caches.
constexpr int kMostAttributes = 100;

// One run of the XML parser over the document.
class Parse {
 public:
  explicit Parse(const std::string& view, ElementVisitor* visitor = nullptr) : visitor_(visitor) {
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

  Elements open;
  XML_Error error = XML_ERROR_NONE;
  std::size_t errorAt = 0;

 private:
  std::size_t position() const {
    return static_cast<std::size_t>(XML_GetCurrentByteIndex(parser_));
  }
  std::size_t positionBehind() const {
    return position() + static_cast<std::size_t>(XML_GetCurrentByteCount(parser_));
  }
  // An element that closes itself would still be shown as closed.
  void stop() {
    XML_SetEndElementHandler(parser_, nullptr);
    XML_StopParser(parser_, XML_FALSE);
  }

  static void onOpening(void* self, const XML_Char* name, const XML_Char** /*attributes*/) {
    auto& parse = *static_cast<Parse*>(self);
    Element element;
    element.name = name;
    element.begin = parse.position();
    element.contentBegin = element.contentEnd = element.end = parse.positionBehind();
    parse.open.push_back(std::move(element));
    if (parse.visitor_ != nullptr) parse.visitor_->onOpened(parse.open);
    if (parse.open.size() > kDeepest) parse.stop();
  }

  static void onClosing(void* self, const XML_Char* /*name*/) {
    auto& parse = *static_cast<Parse*>(self);
    Element& element = parse.open.back();
    element.contentEnd = parse.position();
    element.end = parse.positionBehind();
    if (parse.visitor_ != nullptr && !parse.visitor_->onClosed(parse.open)) parse.stop();
    parse.open.pop_back();
  }

  static void onText(void* self, const XML_Char* text, int length) {
    auto& parse = *static_cast<Parse*>(self);
    Element& element = parse.open.back();
    const auto size = static_cast<std::size_t>(length);
    const std::size_t ink = findInk({text, size}, 0, size);
    if (element.ownText == kNowhere && ink < size) element.ownText = parse.position() + ink;
  }

  ElementVisitor* visitor_;
  XML_Parser parser_ = nullptr;
};

class Mending {
 public:
  Mending(std::string& view, const Parse& parse, const Format& format, Findings& findings)
      : view_(view), parse_(parse), format_(format), findings_(findings) {}

  // False when there is nothing more to be seen behind the fault.
  bool mend() {
    switch (parse_.error) {
      case XML_ERROR_TAG_MISMATCH:
        return mendMismatch();
      case XML_ERROR_NO_ELEMENTS:
        return !parse_.open.empty() && mendUnclosed("expected its closing tag");
      case XML_ERROR_ABORTED:
        report(parse_.open.back().begin,
               "elements stand deeper than " + std::to_string(kDeepest) +
                   " within each other, and no more is looked at, expected " +
                   std::string(format_.root) + " as its description has it");
        return false;
      case XML_ERROR_JUNK_AFTER_DOC_ELEMENT:
        report(parse_.errorAt, "text behind the root is lost, expected the end of the document");
        return false;
      default:
        return mendToken();
    }
  }

 private:
  void report(std::size_t offset, const std::string& message) {
    std::vector<std::string> steps;
    for (const Element& element : parse_.open) steps.push_back(element.name);
    findings_.push_back({offset, steps.empty() ? "document" : pathOf(steps), message});
  }

  // With its text, which would become its parent's.
  void blankOpening(const Element& element) {
    blankOut(view_, element.begin, view_.find('<', element.contentBegin));
  }

  bool mendUnclosed(const std::string& expected) {
    const Element& innermost = parse_.open.back();
    report(innermost.begin, "not closed, " + expected);
    if (parse_.open.size() == 1) return false;
    blankOpening(innermost);
    return true;
  }

  bool mendMismatch() {
    const std::size_t end = view_.find('>', parse_.errorAt);
    const std::string name = view_.substr(
        parse_.errorAt, view_.find_first_of("> \t\r\n", parse_.errorAt) - parse_.errorAt);
    const bool closesOuter =
        std::any_of(parse_.open.begin(), parse_.open.end(),
                    [&](const Element& element) { return element.name == name; });
    const std::string& innermost = parse_.open.back().name;
    if (closesOuter) return mendUnclosed("expected </" + innermost + "> ahead of </" + name + ">");
    if (format_.find(innermost) == nullptr && format_.find(name) != nullptr) {
      report(parse_.open.back().begin,
             "<" + innermost + "> is closed by </" + name + ">, expected <" + name + ">");
      return mendMisspeltClosing(end);
    }
    report(parse_.errorAt - 2,
           "</" + name + "> closes no element here, expected </" + innermost + ">");
    // The closing tag of the innermost element, misspelt, or one too many.
    if (!nearestOf(name, {innermost}).empty()) return mendMisspeltClosing(end);
    blankOut(view_, parse_.errorAt - 2, end + 1);
    return true;
  }

  // The root stays, behind which nothing more comes.
  bool mendMisspeltClosing(std::size_t end) {
    if (parse_.open.size() == 1) return false;
    blankOpening(parse_.open.back());
    blankOut(view_, parse_.errorAt - 2, end + 1);
    return true;
  }

  bool mendToken() {
    report(parse_.errorAt, std::string(XML_ErrorString(parse_.error)) + ", expected XML");
    const std::size_t last = std::min(parse_.errorAt, view_.size() - 1);
    const std::size_t bracket = view_.rfind('<', last);
    if (bracket == kNowhere || view_.find('>', bracket) < last) return blankByte(last);
    // Attributes are not the reader's: without them the tag may do.
    const std::size_t nameEnd = view_.find_first_of(" \t\r\n/>", bracket + 2);
    const std::size_t tagEnd = view_.find_first_of("<>", nameEnd);
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
  const Format& format_;
  Findings& findings_;
};

bool isOfName(char character) {
  return std::isalnum(static_cast<unsigned char>(character)) != 0 ||
         std::string_view("_:-.").find(character) != std::string_view::npos;
}

// Behind the attribute that stands at `at` with the white space ahead of it; kNowhere where there
// is none without a fault.
std::size_t behindAttribute(std::string_view view, std::size_t at) {
  const std::size_t name = findInk(view, at, view.size());
  std::size_t nameEnd = name;
  while (nameEnd < view.size() && isOfName(view[nameEnd])) ++nameEnd;
  if (name == at || name == nameEnd || std::isdigit(static_cast<unsigned char>(view[name])) != 0) {
    return kNowhere;
  }
  const std::size_t equals = findInk(view, nameEnd, view.size());
  if (equals == view.size() || view[equals] != '=') return kNowhere;
  const std::size_t quote = findInk(view, equals + 1, view.size());
  if (quote == view.size() || (view[quote] != '"' && view[quote] != '\'')) return kNowhere;
  const char ends[] = {view[quote], '<'};
  const std::size_t end = view.find_first_of(ends, quote + 1, sizeof(ends));
  return end == kNowhere || view[end] == '<' ? kNowhere : end + 1;
}

// The reader knows no attributes: those beyond the first hundred of a tag are not looked at.
void leaveOutAttributes(std::string& view) {
  for (std::size_t tag = view.find('<'); tag != kNowhere; tag = view.find('<', tag + 1)) {
    std::size_t at = view.find_first_of("<> \t\r\n/", tag + 1);
    std::size_t from = kNowhere;
    for (int count = 1; at != kNowhere; ++count) {
      const std::size_t behind = behindAttribute(view, at);
      if (behind == kNowhere) break;
      if (count == kMostAttributes) from = behind;
      at = behind;
    }
    if (from != kNowhere) blankOut(view, from, at);
  }
}

}  // namespace

void visitElements(std::string view, const Format& format, Findings& findings,
                   ElementVisitor& visitor) {
  leaveOutAttributes(view);
  std::size_t read = 0;
  for (int faults = 0;; ++faults) {
    const Parse parse(view);
    if (parse.error == XML_ERROR_NONE) break;
    read += parse.errorAt;
    if (faults == kMostFaults || (faults >= kFewestFaults && read > kMostRead)) {
      findings.push_back(
          {parse.errorAt, "document", "more faults than can be told at once follow, expected XML"});
      return;
    }
    if (!Mending(view, parse, format, findings).mend()) break;
  }
  const Parse last(view, &visitor);
  // The root, behind which the document ends or is lost.
  if (last.open.size() == 1) visitor.onClosed(last.open);
}

}  // namespace tool
