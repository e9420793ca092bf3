#include "lint/LintText.h"

#include <algorithm>
#include <cctype>

#include "answer/Nearest.h"

namespace tool {
namespace {

constexpr std::size_t kNone = std::string::npos;
constexpr std::size_t kLongestLine = 4095;
constexpr std::string_view kOpening = "<!--";
constexpr std::string_view kClosing = "-->";

bool isAt(std::string_view text, std::size_t at, std::string_view part) {
  return text.compare(at, part.size(), part) == 0;
}

// Of the line of a place that is no line's end; kNone + 1 is 0, where the first line begins.
std::size_t lineBegin(std::string_view text, std::size_t at) { return text.rfind('\n', at) + 1; }

std::size_t lineEnd(std::string_view text, std::size_t at) {
  return std::min(text.find('\n', at), text.size());
}

// A zero byte stands behind the text.
std::size_t findRoot(const std::string& text) {
  for (std::size_t at = text.find('<'); at != kNone; at = text.find('<', at + 1)) {
    if (isAt(text, at, kOpening)) {
      at = text.find(kClosing, at);
      if (at == kNone) return kNone;
    } else if (std::isalpha(static_cast<unsigned char>(text[at + 1])) != 0) {
      return at;
    }
  }
  return kNone;
}

std::string_view nameAt(std::string_view text, std::size_t begin) {
  return text.substr(begin, text.find_first_of(" \t\r\n/>", begin) - begin);
}

class TextCheck {
 public:
  TextCheck(const std::string& document, LintText& text, Findings& findings)
      : document_(document), view_(text.view), findings_(findings), root_(findRoot(document)) {
    // Neither a byte-order mark nor a declaration means anything to the reader.
    blankOut(view_, 0, root_);
    if (root_ != kNone) text.format = chooseFormat();
    if (text.format != nullptr) checkAround(std::string(text.format->root));
  }

 private:
  void report(std::size_t offset, const std::string& message) {
    if (findings_.size() > kMostFindings) return;
    findings_.push_back({offset, pathOf({std::string(nameAt(document_, root_ + 1))}), message});
  }

  const Format* chooseFormat() {
    const std::string name(nameAt(document_, root_ + 1));
    const std::string expected = "expected imager or CaliData";
    const std::string_view nearest = nearestOf(name, {"imager", "CaliData"});
    if (nearest != name) {
      report(root_, "unknown root element, " +
                        (nearest.empty() ? expected : "expected " + std::string(nearest)));
    }
    if (nearest.empty()) return nullptr;
    return nearest == "imager" ? &deviceConfigurationFormat() : &calibrationFormat();
  }

  void checkAround(const std::string& root) {
    const std::size_t rootLineEnd = lineEnd(document_, root_);
    const std::size_t closing = document_.find("</" + root + ">", rootLineEnd);
    const std::size_t contentEnd =
        closing == kNone ? document_.size() : lineBegin(document_, closing);
    checkFalseRoot("<" + root);
    cutPlainComments(root_, rootLineEnd);
    cutNestedComments(rootLineEnd, contentEnd);
    cutPlainComments(contentEnd, document_.size());
    checkRootLine(rootLineEnd,
                  closing == kNone && document_.find("</" + root, root_) < rootLineEnd);
    if (closing != kNone) {
      reportLost(contentEnd, closing, "the line of the closing tag, which the reader drops whole");
    }
    checkLineLengths(lineEnd(document_, closing));
    checkPlainText(rootLineEnd, contentEnd);
  }

  void checkFalseRoot(const std::string& opening) {
    const std::size_t found = document_.find(opening);
    if (found >= lineBegin(document_, root_)) return;
    report(found, "the reader takes \"" + opening +
                      "\" in a comment for the root, expected a comment without this text");
  }

  // Outside of the content the reader knows no comments; in XML they end at the first "-->".
  void cutPlainComments(std::size_t from, std::size_t to) {
    const std::string_view text = std::string_view(document_).substr(0, to);
    for (std::size_t at = text.find(kOpening, from); at != kNone; at = text.find(kOpening, at)) {
      const std::size_t end = text.find(kClosing, at + kOpening.size());
      const std::size_t next = end == kNone ? to : end + kClosing.size();
      blankOut(view_, at, next);
      at = next;
    }
  }

  void cutNestedComments(std::size_t from, std::size_t to) {
    std::vector<std::size_t> open;
    std::size_t closingFrom = from;
    for (std::size_t at = from; at < to; ++at) {
      if (isAt(document_, at, kOpening)) open.push_back(at);
      if (at < closingFrom || !isAt(document_, at, kClosing)) continue;
      closingFrom = at + kClosing.size() + 1;  // right behind one, the reader sees no second
      if (open.empty()) {
        report(at,
               "\"-->\" ends no comment, the reader refuses the document, expected \"<!--\" "
               "ahead of it");
      }
      const std::size_t begin = open.empty() ? at : open.back();
      if (!open.empty()) open.pop_back();
      if (open.empty()) blankOut(view_, begin, at + kClosing.size());
    }
    if (open.empty()) return;
    blankOut(view_, open.front(), to);
    report(open.front(),
           "the comment does not end, the reader refuses the document, expected one "
           "\"-->\" for each \"<!--\"");
  }

  void checkRootLine(std::size_t rootLineEnd, bool onOneLine) {
    if (onOneLine) {
      report(root_,
             "the document stands on one line, which the reader drops whole, expected the "
             "tags of the root on lines of their own");
    } else {
      reportLost(std::min(view_.find('>', root_), rootLineEnd) + 1, rootLineEnd,
                 "the line of the opening tag, which the reader drops whole");
    }
  }

  void reportLost(std::size_t from, std::size_t to, const std::string& where) {
    const std::size_t ink = findInk(view_, from, to);
    if (ink < to) report(ink, "text on " + where + ", expected it on a line of its own");
  }

  void checkLineLengths(std::size_t to) {
    for (std::size_t begin = 0; begin < to;) {
      const std::size_t length = lineEnd(document_, begin) - begin;
      if (length > kLongestLine) {
        report(begin, "a line of " + std::to_string(length) +
                          " characters, at which the reader ends the reading, expected at most " +
                          std::to_string(kLongestLine));
      }
      begin += length + 1;
    }
  }

  void checkPlainText(std::size_t from, std::size_t to) {
    const std::string_view text = std::string_view(view_).substr(0, to);
    for (std::size_t at = text.find('\0', from); at != kNone; at = text.find('\0', at)) {
      report(at, "a zero byte, at which the reader ends the line, expected text");
      blankOut(view_, at, lineEnd(document_, at));
    }
    for (std::size_t at = text.find('&', from); at != kNone; at = text.find('&', at)) {
      const std::size_t end = text.find_first_of(";<& ", at + 1);
      if (end != kNone && text[end] == ';') {
        report(at, "the entity \"" + view_.substr(at, end - at + 1) +
                       "\" is plain text to the reader, expected the character itself");
      }
      view_[at] = '_';  // no entity to an XML parser either
    }
    constexpr std::string_view characterData = "<![CDATA[";
    for (std::size_t at = text.find(characterData, from); at != kNone;
         at = text.find(characterData, at + characterData.size())) {
      report(at, "a CDATA section is plain text to the reader, expected the text itself");
    }
  }

  const std::string& document_;
  std::string& view_;
  Findings& findings_;
  std::size_t root_;
};

}  // namespace

std::size_t findInk(std::string_view text, std::size_t from, std::size_t to) {
  while (from < to && isWhite(text[from])) ++from;
  return from;
}

void blankOut(std::string& text, std::size_t from, std::size_t to) {
  for (std::size_t at = from; at < std::min(to, text.size()); ++at) {
    if (text[at] != '\n') text[at] = kBlank;
  }
}

void LineCounter::goTo(std::size_t offset) {
  for (const std::size_t end = std::min(offset, document_.size()); at_ < end; ++at_) {
    if (document_[at_] == '\n') {
      ++line_;
      column_ = 1;
    } else if ((document_[at_] & '\xC0') != '\x80') {
      ++column_;
    }
  }
}

std::string pathOf(const std::vector<std::string>& steps) {
  constexpr std::size_t kMostSteps = 12;
  constexpr std::size_t kLongestStep = 60;
  std::string path;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const bool leftOut = steps.size() > kMostSteps && i >= kMostSteps / 2 && i + 1 < steps.size();
    if (leftOut && i > kMostSteps / 2) continue;
    const std::string& step = steps[i];
    path += path.empty() ? "" : "/";
    path += leftOut                       ? "..."
            : step.size() <= kLongestStep ? step
                                          : step.substr(0, kLongestStep) + "...";
  }
  return path;
}

LintText readAsText(const std::string& document, Findings& findings) {
  LintText text;
  text.view = document;
  // A line's carriage return is blank to the eye, yet the reader keeps it, unlike what is cut.
  std::replace(text.view.begin(), text.view.end(), kBlank, '\t');
  TextCheck(document, text, findings);
  if (text.format == nullptr && findings.empty()) {
    findings.push_back({0, "document", "no root element, expected imager or CaliData"});
  }
  return text;
}

}  // namespace tool
