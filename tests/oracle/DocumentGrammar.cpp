#include "DocumentGrammar.h"

#include <algorithm>

namespace oracle {
namespace {

using namespace std::string_view_literals;
using Texts = const std::vector<std::string_view>;

std::vector<std::string_view> split(std::string_view list) {
  std::vector<std::string_view> texts;
  for (std::size_t end = 0; (end = list.find('|')) != std::string_view::npos;
       list.remove_prefix(end + 1)) {
    texts.push_back(list.substr(0, end));
  }
  return texts;
}

Texts kNames = {"a", "b", "ab", "abc", "roo", "rootlonger", "a1", "x y", "/a", ""};
Texts kLineEnds = {"\n", "\r\n", "\r", "", "\n\n", "\r\r\n", " \n"};
Texts kAhead = {"\xEF\xBB\xBF", "\n\n",        "junk\nmore junk\n",         "\0\0\n"sv,
                "\0<root>\n"sv, "junk <ro>\n", "<?xml version=\"1.0\"?>\n", "<!-- <root> -->\n"};
Texts kOpenings = {"<root a=\"1\">",   "<rootlonger>", "<root",
                   "text <root> text", "<root\n>",     "<root><a>1</a></root>",
                   "<root><a>1</a>",   "<ROOT>",       "< root>"};
Texts kClosings = {"text</root>text", "<a>1</a></root>", "", "</root", "</rootlonger>", "</ROOT>"};
Texts kFragments = {"<<a>>", "<a",  ">", "</a", "<a\n>", "<a\r\n>", "<b/>", "<b x=1>",
                    "</a>",  "<a>", "<", "</",  "--",    "<!-",     "\r"};
Texts kCuttingFragments = {"\0"sv, "a\0b"sv, "<a>\0</a>\n"sv, "</root>x", "<root>x"};
Texts kWildFragments = {"<!--",   "-->",      "<!-->", "<!--->",    "--><!--",
                        "-->-->", "<!--<!--", "--->",  "-->-->-->", "<!--<!-->-->"};
Texts kTexts = {"", "text", " 5 ", "T", "true", "True", "TRUE", "yes", "truer"};
Texts kNumbers = split(
    "010|0x10| 5|5 |+5|-0|1e3|inf|nan|-nan|12abc||abc|99999999999999999999|"
    "-99999999999999999999|3.4028236e38|1e-46|1.5|2147483648|-2147483649|9223372036854775808|"
    "65536|-1|08|0x|0xg|1e|1e+|100ergs|infinity|infin|nan(7)|nan(|.5|5.|.|-|+-1|--1|- 1|1,5|"
    "\t7|\v8|0x1p4|0x1.8|1.17549429e-38|16777217|0.1|-0.0|1e-45|0b1|1 2|00|-0x1F|0x-1|1.e5|");
Texts kNumberPieces = split("0|1|9|7|23|0x|-|+|.|e|E|p|n|inf|nan|f| |\n|000000000|999999999|");

// "#" an integer, "%" a number, "$" a text, "*" any number of such elements.
constexpr std::string_view kCalibration =
    "{Main{TecA#TecB#TecC#TecD#TempTEC_Step%TempTECOffset%TempTECGain%TempFlagOffset%"
    "TempChipFactor%TempChipOffset%TempBoxOffset%TempOpticsOffset%TempProcOffset%TempHouseOffset%"
    "PifInOffset%PifInGain%PifOutOffset%PifOutGain%AddedOffset#BindTempChipToTempFlagOffset%"
    "FlagCycles#FlagCycles_Ignore#AlphaLowTemp%AlphaLowFactor%}"
    "Temperature{Optics{OpticsDef*{FOV#SerNo#Text$SamplePointCali$"
    "TempRanges{TemperatureRange*{Fid#Skim#TempLo%TempHi%TempLoExt%TempHiExt%"
    "Framerates{Framerate*{FR#}}Decimal#TableParams{Normalize#T1#T3#E1#E3#Lambda%}}}}}}}";

}  // namespace

std::string DocumentGrammar::document() {
  tokens_.clear();
  lineEnd_ = kLineEnds[source_.below(2)];
  wild_ = source_.oneIn(6);
  if (source_.oneIn(4)) add(source_.pick(kAhead));
  add(source_.oneIn(6) ? source_.pick(kOpenings) : "<root>");
  addLineEnd();
  if (source_.oneIn(50)) addDeepNest();
  addContent(source_.between(0, 30), 0);
  addLineEnd();
  add(source_.oneIn(6) ? source_.pick(kClosings) : "</root>");
  if (source_.oneIn(2)) addLineEnd();
  if (source_.oneIn(4)) breakTokens();
  return joinTokens();
}

std::string DocumentGrammar::calibration() {
  tokens_.clear();
  lineEnd_ = kLineEnds[source_.below(2)];
  wild_ = source_.oneIn(16);
  std::string_view outline = kCalibration;
  add("<CaliData>");
  add(lineEnd_);
  addOutlinedContent(outline);
  add("</CaliData>");
  if (source_.oneIn(2)) breakTokens();
  return joinTokens();
}

std::string DocumentGrammar::numberText() {
  if (source_.oneIn(4)) return std::string(source_.pick(kNumbers));
  if (source_.oneIn(2)) return std::to_string(source_.between(-30, 1000));
  std::string text;
  for (std::uint32_t pieces = source_.below(8); pieces > 0; --pieces) {
    text += source_.pick(kNumberPieces);
  }
  return text;
}

void DocumentGrammar::addLineEnd() { add(source_.oneIn(8) ? source_.pick(kLineEnds) : lineEnd_); }

void DocumentGrammar::addContent(int items, int nesting) {
  for (; items > 0; --items) {
    const std::uint32_t kind = source_.below(12);
    if (kind < 6 && nesting < 6) {
      addElement(nesting + 1);
    } else if (kind < 9) {
      addLineEnd();
    } else if (kind == 9) {
      add(source_.oneIn(2) ? numberText() : source_.pick(kTexts));
    } else if (kind == 10 && nesting < 6) {
      addComment(nesting + 1);
    } else {
      addFragment();
    }
  }
}

void DocumentGrammar::addFragment() {
  if (source_.oneIn(40)) {
    add(source_.pick(kCuttingFragments));
  } else {
    add(source_.pick(wild_ && source_.oneIn(4) ? kWildFragments : kFragments));
  }
}

void DocumentGrammar::addElement(int nesting) {
  const std::string name(source_.oneIn(3) ? source_.pick(kNames) : kNames[source_.below(3)]);
  add("<" + name + ">");
  if (source_.oneIn(3)) {
    add(numberText());
  } else {
    addContent(source_.between(0, 6), nesting);
  }
  add("</" + name + ">");
}

void DocumentGrammar::addComment(int nesting) {
  add("<!--");
  addContent(source_.between(0, 3), nesting);
  add(source_.oneIn(8) ? "-->" : " -->");  // "-->-->" is one closing only
}

// As deep as a reader goes, and a little deeper.
void DocumentGrammar::addDeepNest() {
  const int levels = source_.between(250, 258);
  for (int i = 0; i < levels; ++i) add("<n" + std::to_string(i) + ">");
  addLineEnd();
  for (int i = levels - 1; i >= 0; --i) add("</n" + std::to_string(i) + ">");
}

// Takes one element off the outline. An element that is left out is made and thrown away.
void DocumentGrammar::addOutlined(std::string_view& outline) {
  const std::size_t end = outline.find_first_of("#%$*{");
  const std::string name(outline.substr(0, end));
  outline.remove_prefix(end);
  const bool repeated = outline.front() == '*';
  if (repeated) outline.remove_prefix(1);
  const int count = repeated ? source_.between(0, 4) : (source_.oneIn(8) ? 0 : 1);
  std::string_view rest;
  for (int i = 0; i < std::max(count, 1); ++i) {
    const std::size_t before = tokens_.size();
    rest = outline;
    add("<" + name + ">");
    addOutlinedContent(rest);
    add("</" + name + ">");
    addLineEnd();
    if (source_.oneIn(20)) addComment(5);
    if (count == 0) tokens_.resize(before);
  }
  outline = rest;
}

void DocumentGrammar::addOutlinedContent(std::string_view& outline) {
  const char kind = outline.front();
  outline.remove_prefix(1);
  if (kind == '{') {
    addLineEnd();
    while (outline.front() != '}') addOutlined(outline);
    outline.remove_prefix(1);
  } else if (kind == '$') {
    add(source_.pick(kTexts));
  } else {
    add(source_.oneIn(4) ? numberText() : std::to_string(source_.between(-30, 1000)));
    if (kind == '%' && source_.oneIn(2)) add("." + std::to_string(source_.below(1000)));
  }
}

// Loses, doubles, moves and cuts some tokens: elements go missing, stay open, overlap, change
// parents, and tags lose their ends.
void DocumentGrammar::breakTokens() {
  for (std::uint32_t faults = 1 + source_.below(3); faults > 0 && !tokens_.empty(); --faults) {
    const auto size = static_cast<std::uint32_t>(tokens_.size());
    const auto first = tokens_.begin() + source_.below(size);
    const auto count = std::min<std::ptrdiff_t>(1 + source_.below(source_.oneIn(4) ? 40 : 4),
                                                tokens_.end() - first);
    const std::vector<std::string> taken(first, first + count);
    const std::uint32_t kind = source_.below(4);
    if (kind == 3) {
      first->resize(first->size() / 2);
      continue;
    }
    if (kind != 0) tokens_.erase(first, first + count);
    if (kind != 1) {
      const auto place = source_.below(static_cast<std::uint32_t>(tokens_.size()) + 1);
      tokens_.insert(tokens_.begin() + place, taken.begin(), taken.end());
    }
  }
}

// Stretches a line now and then to about the longest that a reader takes.
std::string DocumentGrammar::joinTokens() {
  std::string text;
  for (const std::string& token : tokens_) text += token;
  if (text.empty() || !source_.oneIn(12)) return text;
  const std::size_t at = source_.below(static_cast<std::uint32_t>(text.size()));
  const std::size_t begin = at == 0 ? 0 : text.rfind('\n', at - 1) + 1;
  const std::size_t length = std::min(text.find('\n', at), text.size()) - begin;
  const auto wanted = static_cast<std::size_t>(source_.between(4093, 4097));
  if (length < wanted) text.insert(at, wanted - length, source_.pick("x -<\r"sv));
  return text;
}

std::vector<std::string> namesIn(const std::string& document) {
  std::vector<std::string> names = {"",   "/a",  "a><b", "!--", "missing",
                                    "\n", "a\n", "<a",   "a>",  "a"};
  for (std::size_t at = 0;
       names.size() < 50 && (at = document.find('<', at)) != std::string::npos;) {
    at += document.compare(at, 2, "</") == 0 ? 2 : 1;
    const std::size_t end = document.find('>', at);
    if (end == std::string::npos || end - at > 30) continue;
    const std::string name = document.substr(at, end - at);
    if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
  }
  return names;
}

}  // namespace oracle
