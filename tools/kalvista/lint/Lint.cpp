#include "lint/Lint.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "answer/Nearest.h"
#include "lint/LintTree.h"
#include "lint/LintValues.h"

namespace tool {
namespace {

class ElementCheck : public ElementVisitor {
 public:
  ElementCheck(const std::string& document, const LintText& text, Findings& findings)
      : document_(document),
        view_(text.view),
        format_(*text.format),
        findings_(findings),
        lines_(document) {
    for (const ElementRule& rule : format_.elements) names_.push_back(rule.name);
    for (const std::string_view name : format_.levels) {
      if (view_.find("<" + std::string(name) + ">") == kNowhere) absentLevels_.insert(name);
    }
  }

  void onOpened(const Elements& open) override {
    const Element& element = open.back();
    Place place;
    place.rule = format_.find(element.name);
    if (places_.empty()) {
      place.meant = format_.root;
      place.isRoot = true;
    } else {
      placeInParent(element, place);
    }
    std::string step = element.name;
    if (place.rule != nullptr && place.rule->repeated) {
      step += "[" + std::to_string(place.number) + "]";
    }
    places_.push_back(std::move(place));
    steps_.push_back(std::move(step));
  }

  bool onClosed(const Elements& open) override {
    const Element& element = open.back();
    if (places_.back().isRoot) {
      checkOwnText(element, format_.root);
    } else {
      checkElement(element);
    }
    checkOrders();
    places_.pop_back();
    steps_.pop_back();
    return findings_.size() <= kMostFindings;
  }

 private:
  // The first of a name within its parent.
  struct First {
    std::size_t begin = 0;
    std::size_t line = 0;
    std::size_t count = 0;
    std::optional<double> value;
  };
  // What is known of an element that is open.
  struct Place {
    const ElementRule* rule = nullptr;
    std::string_view meant;  // a misspelt name is reported by itself; empty when none is near
    bool isRoot = false;
    bool isIgnored = false;        // stands in one that is not known
    std::size_t container = 0;     // in which the reader looks for it
    std::size_t number = 0;        // among its like
    std::string_view takenInside;  // what the reader takes from inside an unknown element
    std::map<std::string_view, First> first;
  };

  void placeInParent(const Element& element, Place& place) {
    Place& parent = places_.back();
    place.isIgnored = parent.isIgnored || parent.meant.empty();
    place.container = places_.size() - 1;
    if (place.rule == nullptr) {
      if (!place.isIgnored) place.meant = nearestOf(element.name, names_);
      return;
    }
    place.meant = place.rule->name;
    const bool isVisible = element.contentBegin - element.begin == element.name.size() + 2;
    const std::size_t taker = isVisible ? takerOf(*place.rule) : kNowhere;
    if (taker != kNowhere) {
      for (std::size_t i = places_.size(); --i > taker;) {
        if (places_[i].rule == nullptr) places_[i].takenInside = place.rule->name;
      }
      if (place.isIgnored) place.container = taker;
      place.isIgnored = false;
    }
    First& first = places_[place.container].first[place.rule->name];
    if (first.count++ == 0) {
      first.begin = element.begin;
      lines_.goTo(element.begin);
      first.line = lines_.line();
    }
    place.number = first.count;
  }

  // The open element in whose text the reader finds this one, however deep it stands there.
  std::size_t takerOf(const ElementRule& rule) const {
    for (std::size_t i = places_.size(); i-- > 0;) {
      const Place& place = places_[i];
      if (!place.isRoot && place.rule == nullptr) continue;
      if (isReadFrom(rule, place.meant)) return i;
    }
    return kNowhere;
  }
  // Where a level is missing, the reader looks for its children where the level should have been.
  bool isReadFrom(const ElementRule& rule, std::string_view place) const {
    if (rule.parent == place) return true;
    const ElementRule* level =
        absentLevels_.count(rule.parent) != 0 ? format_.find(rule.parent) : nullptr;
    return level != nullptr && isReadFrom(*level, place);
  }

  void report(const Element& element, const std::string& message) {
    reportAt(element.begin, message);
  }
  void reportAt(std::size_t offset, const std::string& message) {
    findings_.push_back({offset, pathOf(steps_), message});
  }

  void checkElement(const Element& element) {
    const Place& place = places_.back();
    if (place.isIgnored) return;  // with what it stands in
    if (place.rule == nullptr) {
      reportUnknown(element, place);
      return;
    }
    checkPlace(element, place);
    checkTags(element);
    checkRepetition(element, place);
    if (!place.rule->newName.empty()) {
      report(element, "the former name, expected " + std::string(place.rule->newName));
    }
    if (place.rule->kind == ValueKind::Elements) {
      checkOwnText(element, place.rule->name);
    } else {
      checkContent(element, place);
    }
  }

  void reportUnknown(const Element& element, const Place& place) {
    const std::string taken(place.takenInside);
    report(element,
           (taken.empty() ? "unknown element, which the reader ignores, expected "
                          : "unknown element, whose tags the reader ignores, taking <" + taken +
                                "> from inside it, expected ") +
               (place.meant.empty() ? "one that the format describes" : std::string(place.meant)));
  }

  void checkPlace(const Element& element, const Place& place) {
    const Place& container = places_[place.container];
    if (container.meant == place.rule->parent) return;
    report(element, "in the wrong place, expected inside " + std::string(place.rule->parent));
  }

  bool closesItself(const Element& element) const {
    return document_[element.contentBegin - 2] == '/';
  }

  void checkTags(const Element& element) {
    const std::string opening = "<" + element.name + ">";
    const std::string closing = "</" + element.name + ">";
    const auto isTag = [this](std::size_t begin, std::size_t end, const std::string& tag) {
      return document_.compare(begin, end - begin, tag) == 0;
    };
    const std::string invisible = ", so that the reader does not see the element, expected ";
    if (closesItself(element)) {
      report(element, "its tag closes itself" + invisible + opening + closing);
    } else if (!isTag(element.begin, element.contentBegin, opening)) {
      report(element, "attributes or blanks stand in its tag" + invisible + opening);
    } else if (!isTag(element.contentEnd, element.end, closing)) {
      reportAt(element.contentEnd, "blanks stand in its closing tag" + invisible + closing);
    }
  }

  void checkRepetition(const Element& element, const Place& place) {
    if (place.number == 1 || place.rule->repeated) return;
    const First& first = places_[place.container].first.at(place.rule->name);
    report(element, "stands here once more, the reader takes the one of line " +
                        std::to_string(first.line) + ", expected it once");
  }

  void checkOwnText(const Element& element, std::string_view parent) {
    if (element.ownText == kNowhere) return;
    std::string children;
    for (const ElementRule& rule : format_.elements) {
      if (rule.parent != parent) continue;
      children += (children.empty() ? "" : ", ") + std::string(rule.name);
    }
    reportAt(element.ownText, "text that the reader ignores, expected the elements " + children);
  }

  // As the reader has it, without comments and line feeds; it makes one of a carriage return.
  std::string contentOf(const Element& element) const {
    std::string content;
    for (std::size_t at = element.contentBegin; at < element.contentEnd; ++at) {
      if (view_[at] == kBlank || view_[at] == '\n') continue;
      content += document_[at] == '\r' ? '\n' : document_[at];
    }
    return content;
  }

  // Between what can be seen of the value.
  bool holdsLineEnd(const Element& element) const {
    const std::string_view content =
        std::string_view(view_).substr(0, element.contentEnd).substr(element.contentBegin);
    const std::size_t lineEnd = content.find('\n', findInk(content, 0, content.size()));
    return lineEnd != kNowhere && findInk(content, lineEnd, content.size()) < content.size();
  }

  void checkContent(const Element& element, const Place& place) {
    if (closesItself(element)) return;
    const std::string content = contentOf(element);
    const ValueCheck check = checkValue(*place.rule, content);
    First& first = places_[place.container].first.at(place.rule->name);
    if (check.number && place.number == 1) first.value = check.number;
    const std::size_t ink = findInk(view_, element.contentBegin, element.contentEnd);
    const std::size_t at = ink < element.contentEnd ? ink : element.contentBegin;
    if (holdsLineEnd(element)) {
      reportAt(at, "a line end stands in the value, which the reader takes as " + quoted(content) +
                       ", expected it on one line");
    }
    if (!check.message.empty()) reportAt(at, check.message);
  }

  // Of the first of this name in the element that closes.
  std::optional<double> numberOf(std::string_view name) const {
    const auto& children = places_.back().first;
    const auto found = children.find(name);
    return found != children.end() ? found->second.value : std::nullopt;
  }

  void checkOrders() {
    for (const OrderRule& rule : format_.orders) {
      const std::optional<double> low = numberOf(rule.lower);
      const std::optional<double> high = numberOf(rule.upper);
      if (!low || !high || low == rule.unset || high == rule.unset) continue;
      if (low < high || (rule.mayBeEqual && low == high)) continue;
      steps_.emplace_back(rule.lower);
      reportAt(places_.back().first.at(rule.lower).begin,
               (low > high ? "above " : "the same as ") + std::string(rule.upper) + ", expected " +
                   (rule.mayBeEqual ? "at most its value" : "a value below it"));
      steps_.pop_back();
    }
  }

  const std::string& document_;
  const std::string& view_;
  const Format& format_;
  Findings& findings_;
  LineCounter lines_;
  std::vector<std::string_view> names_;
  std::set<std::string_view> absentLevels_;
  std::vector<Place> places_;       // of the elements that are open
  std::vector<std::string> steps_;  // their names
};

// In the order of their places, no more than can be told at once.
void arrange(const std::string& document, Findings& findings) {
  std::stable_sort(findings.begin(), findings.end(), [](const Finding& one, const Finding& other) {
    return one.offset < other.offset;
  });
  if (findings.size() > kMostFindings) {
    findings.resize(kMostFindings + 1);
    findings.back().path = "document";
    findings.back().message = "more findings than can be told at once follow, expected fewer";
  }
  LineCounter lines(document);
  for (Finding& finding : findings) {
    lines.goTo(finding.offset);
    finding.line = lines.line();
    finding.column = lines.column();
  }
}

}  // namespace

Findings lint(const std::string& document) {
  Findings findings;
  const LintText text = readAsText(document, findings);
  if (text.format != nullptr) {
    ElementCheck check(document, text, findings);
    visitElements(text.view, *text.format, findings, check);
  }
  arrange(document, findings);
  return findings;
}

}  // namespace tool
