#include "lint/Lint.h"

#include <algorithm>
#include <map>

#include "answer/Nearest.h"
#include "lint/LintTree.h"
#include "lint/LintValues.h"

namespace tool {
namespace {

class ElementCheck {
 public:
  ElementCheck(const std::string& document, const LintText& text, Findings& findings)
      : document_(document),
        view_(text.view),
        format_(*text.format),
        findings_(findings),
        elements_(parseElements(text.view, findings)) {
    for (const ElementRule& rule : format_.elements) names_.push_back(rule.name);
  }

  void run() {
    for (std::size_t index = 0; index < elements_.size(); ++index) {
      if (elements_[index].parent == kNowhere) {
        checkOwnText(index, format_.root);
      } else {
        checkElement(index);
      }
    }
    for (const auto& siblings : siblings_) checkOrders(siblings.second);
  }

 private:
  using Siblings = std::map<std::string_view, std::size_t>;  // the first of each name

  void report(std::size_t index, const std::string& message) {
    reportAt(elements_[index].begin, index, message);
  }
  void reportAt(std::size_t offset, std::size_t index, const std::string& message) {
    findings_.push_back({offset, pathOf(elements_, index, format_), message});
  }

  void checkElement(std::size_t index) {
    const Element& element = elements_[index];
    const ElementRule* rule = format_.find(element.name);
    if (rule == nullptr) {
      // What stands in an element that is ignored is ignored with it.
      if (meantName(element.parent).empty()) return;
      const std::string_view nearest = nearestOf(element.name, names_);
      report(index, "unknown element, which the reader ignores" +
                        (nearest.empty() ? ", expected one that the format describes"
                                         : ", expected " + std::string(nearest)));
      return;
    }
    checkPlace(index, *rule);
    checkTags(index);
    checkRepetition(index, *rule);
    if (!rule->newName.empty()) {
      report(index, "the former name, expected " + std::string(rule->newName));
    }
    if (rule->kind == ValueKind::Elements) {
      checkOwnText(index, rule->name);
    } else {
      checkContent(index, *rule);
    }
  }

  // A misspelt parent is reported by itself.
  std::string_view meantName(std::size_t index) const {
    const Element& element = elements_[index];
    return element.parent == kNowhere ? format_.root : nearestOf(element.name, names_);
  }

  void checkPlace(std::size_t index, const ElementRule& rule) {
    const std::size_t parent = elements_[index].parent;
    if (meantName(parent) == rule.parent) return;
    report(index, "in the wrong place, expected inside " + std::string(rule.parent));
  }

  bool closesItself(const Element& element) const {
    return document_[element.contentBegin - 2] == '/';
  }

  void checkTags(std::size_t index) {
    const Element& element = elements_[index];
    const std::string opening = "<" + element.name + ">";
    const std::string closing = "</" + element.name + ">";
    const auto isTag = [this](std::size_t begin, std::size_t end, const std::string& tag) {
      return document_.compare(begin, end - begin, tag) == 0;
    };
    const std::string invisible = ", so that the reader does not see the element, expected ";
    if (closesItself(element)) {
      report(index, "its tag closes itself" + invisible + opening + closing);
    } else if (!isTag(element.begin, element.contentBegin, opening)) {
      report(index, "attributes or blanks stand in its tag" + invisible + opening);
    } else if (!isTag(element.contentEnd, element.end, closing)) {
      reportAt(element.contentEnd, index, "blanks stand in its closing tag" + invisible + closing);
    }
  }

  void checkRepetition(std::size_t index, const ElementRule& rule) {
    const auto [first, isNew] =
        siblings_[elements_[index].parent].try_emplace(elements_[index].name, index);
    if (isNew || rule.repeated) return;
    const auto line =
        std::count(document_.begin(),
                   document_.begin() + static_cast<std::ptrdiff_t>(elements_[first->second].begin),
                   '\n') +
        1;
    report(index, "stands here once more, the reader takes the one of line " +
                      std::to_string(line) + ", expected it once");
  }

  void checkOwnText(std::size_t index, std::string_view parent) {
    if (elements_[index].ownText == kNowhere) return;
    std::string children;
    for (const ElementRule& rule : format_.elements) {
      if (rule.parent != parent) continue;
      children += (children.empty() ? "" : ", ") + std::string(rule.name);
    }
    reportAt(elements_[index].ownText, index,
             "text that the reader ignores, expected the elements " + children);
  }

  // As the reader has it, without comments and line feeds.
  std::string contentOf(const Element& element) const {
    std::string content;
    for (std::size_t at = element.contentBegin; at < element.contentEnd; ++at) {
      if (view_[at] != kBlank && view_[at] != '\n') content += document_[at];
    }
    return content;
  }

  void checkContent(std::size_t index, const ElementRule& rule) {
    const Element& element = elements_[index];
    if (closesItself(element)) return;
    const ValueCheck check = checkValue(rule, contentOf(element));
    if (check.number) numbers_[index] = *check.number;
    if (check.message.empty()) return;
    const std::size_t ink = findInk(view_, element.contentBegin, element.contentEnd);
    reportAt(ink < element.contentEnd ? ink : element.contentBegin, index, check.message);
  }

  void checkOrders(const Siblings& siblings) {
    for (const OrderRule& rule : format_.orders) {
      const auto lower = siblings.find(rule.lower);
      const auto upper = siblings.find(rule.upper);
      if (lower == siblings.end() || upper == siblings.end()) continue;
      const auto low = numbers_.find(lower->second);
      const auto high = numbers_.find(upper->second);
      if (low == numbers_.end() || high == numbers_.end()) continue;
      if (rule.unset && (low->second == *rule.unset || high->second == *rule.unset)) continue;
      if (low->second < high->second || (rule.mayBeEqual && low->second == high->second)) continue;
      report(lower->second, (low->second > high->second ? "above " : "the same as ") +
                                std::string(rule.upper) + ", expected " +
                                (rule.mayBeEqual ? "at most its value" : "a value below it"));
    }
  }

  const std::string& document_;
  const std::string& view_;
  const Format& format_;
  Findings& findings_;
  const std::vector<Element> elements_;
  std::vector<std::string_view> names_;
  std::map<std::size_t, Siblings> siblings_;  // of each parent
  std::map<std::size_t, double> numbers_;     // of each element that holds one
};

}  // namespace

Findings lint(const std::string& document) {
  Findings findings;
  const LintText text = readAsText(document, findings);
  if (text.format != nullptr) ElementCheck(document, text, findings).run();
  std::stable_sort(findings.begin(), findings.end(), [](const Finding& one, const Finding& other) {
    return one.offset < other.offset;
  });
  return findings;
}

}  // namespace tool
