#include "report/ConfigurationText.h"

#include <algorithm>
#include <string_view>

namespace tool {
namespace {

// Of the byte with which that character begins; columns count from 1.
std::size_t offsetOf(std::string_view line, std::size_t column) {
  std::size_t offset = 0;
  for (std::size_t left = column; offset < line.size(); ++offset) {
    const bool begins = (line[offset] & '\xC0') != '\x80';
    if (begins && --left == 0) break;
  }
  return offset;
}

// A value ends before the next tag, a tag behind its bracket.
std::size_t endOfMark(std::string_view line, std::size_t begin) {
  const bool isTag = line.substr(begin, 1) == "<";
  const std::size_t end = line.find(isTag ? '>' : '<', begin);
  if (end == std::string_view::npos) return line.size();
  return isTag ? end + 1 : end;
}

class Line {
 public:
  Line(std::size_t number, std::string_view text) : number_(number), text_(text) {}

  void mark(std::size_t column, const Json& finding) {
    findings_.push_back(finding);
    const std::size_t begin = offsetOf(text_, column);
    addPart(begin, false);
    addPart(endOfMark(text_, begin), true);
  }

  Json document() {
    addPart(text_.size(), false);
    return {{"number", number_}, {"parts", parts_}, {"findings", findings_}};
  }

 private:
  void addPart(std::size_t end, bool isMarked) {
    if (end <= done_) return;
    parts_.push_back(
        {{"text", std::string(text_.substr(done_, end - done_))}, {"marked", isMarked}});
    done_ = end;
  }

  std::size_t number_;
  std::string_view text_;
  std::size_t done_ = 0;
  Json parts_ = Json::array();
  Json findings_ = Json::array();
};

}  // namespace

Json linesOf(const ConfigurationCheck& check) {
  const Json findings = documentOf(check)["findings"];
  Json lines = Json::array();
  std::string_view rest = check.document;
  auto finding = findings.begin();
  for (std::size_t number = 1; !rest.empty(); ++number) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    Line line(number, rest.substr(0, end));
    for (; finding != findings.end() && (*finding)["line"] == number; ++finding) {
      line.mark((*finding)["column"], *finding);
    }
    lines.push_back(line.document());
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return lines;
}

}  // namespace tool
