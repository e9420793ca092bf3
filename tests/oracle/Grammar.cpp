#include <algorithm>
#include <cctype>
#include <utility>
#include <vector>

#include "Oracle.h"

namespace oracle {
namespace {

using namespace std::string_view_literals;

// Each rule is its letter and its alternatives; one that is written twice comes twice as often.
// "$x" stands for rule x, "[name:content]" for an element; an element with a capital may be left
// out and is followed by rule s. The first alternative ends on spent bytes.
constexpr std::string_view kRules[] = {
    // A document: what stands ahead, root, content, root's end.
    "A||||||||$a",
    "a\xEF\xBB\xBF|\n\n|junk\nmore junk\n|\0\0\n|\0<root>\n|junk <ro>\n|<?xml version=\"1.0\"?>\n|"
    "<!-- <root> -->\n"sv,
    "O<root>|<root>|<root>|<root>|<root>|$o",
    "o<root a=\"1\">|<rootlonger>|<root|text <root> text|<root\n>|<root>[a:1]</root>|"
    "<root>[a:1]|<ROOT>|< root>",
    "Z</root>|</root>|</root>|</root>|</root>|$z",
    "ztext</root>text|[a:1]</root>||</root|</rootlonger>|</ROOT>",
    "E|\n",
    "l\n|\n|\n|\n|\n|\n|\r\n|\r\n|\r||\n\n|\r\r\n| \n",
    "C|$x$x$x$x$C|$x$x$x$x$C|$x$x$x$x$C|$x$x$x$x$C",
    "c|$x|$x|$x$x$x|$x$x$x$x$x",
    "x$l|$l|$l|$e|$e|$e|$e|$e|$t|$m|$r",
    "e[a:$v]|[a:$v]|[b:$v]|[b:$v]|[ab:$v]|[abc:$v]|[roo:$v]|[rootlonger:$v]|[a1:$v]|[x y:$v]|"
    "[/a:$v]|[:$v]",
    "v$i|$c|$c",
    "m<!--$c -->|<!--$c -->|<!--$c -->|<!--$c-->",
    "r<<a>>|<a|>|</a|<a\n>|<a\r\n>|<b/>|<b x=1>|</a>|<a>|<|</|--|<!-|\r|$w|$w|$w|$w",
    "w<!--|-->|<!-->|<!--->|--><!--|-->-->|<!--<!--|--->|-->-->-->|<!--<!-->-->|$k",
    "k\0|a\0b|[a:\0]\n|</root>x|<root>x"sv,
    "t|text| 5 |T|true|True|TRUE|yes|truer|tr\nue|a\rb|$n",
    // Numbers, and what somebody took for one.
    "d0|1|2|3|4|5|6|7|8|9",
    "i$d|$d$d|$d$d$d|$d$d$d|-$d|-$d$d|1$d$d$d|$n",
    "f$i|$i.$d|$d$d.$d$d$d|-$d.$d$d",
    "n010|0x10| 5|5 |+5|-0|1e3|inf|nan|-nan|12abc||abc|99999999999999999999|-|1.5|65536|-1|08|0x|"
    "0xg|1e|1e+|-99999999999999999999|3.4028236e38|1e-46|2147483648|-2147483649|100ergs|infinity|"
    "9223372036854775808|infin|nan(7)|nan(|.5|5.|.|+-1|--1|- 1|1,5|\t7|\v8|0x1p4|0x1.8|16777217|"
    "4294967297|"
    "1.17549429e-38|0.1|-0.0|1e-45|0b1|1 2|00|-0x1F|0x-1|1.e5|$p$p$p|$p$p$p$p$p|$g|$g|$g|$g|$g",
    "g$d$d$d$d$d$d$d$d$d|$d$d$d$d$d$d$d$d$d$d|$d$d$d$d$d$d.$d$d|1677721$d|0.$d$d$d$d$d$d$d|$d.$d.$"
    "d",
    "p0|1|9|7|23|0x|-|+|.|e|E|p|n|inf|nan|f| |\n|000000000|999999999",
    // A calibration.
    "K<CaliData>$l$M[Temperature:$l[Optics:$l$P]]</CaliData>\n",
    "M[Main:$l[TecA:$i][TecB:$i][TecC:$i][TecD:$i][TempTEC_Step:$f][TempTECOffset:$f]"
    "[TempTECGain:$f][TempFlagOffset:$f][TempChipFactor:$f][TempChipOffset:$f][TempBoxOffset:$f]"
    "[TempOpticsOffset:$f][TempProcOffset:$f][TempHouseOffset:$f][PifInOffset:$f][PifInGain:$f]"
    "[PifOutOffset:$f][PifOutGain:$f][AddedOffset:$i][BindTempChipToTempFlagOffset:$f]"
    "[FlagCycles:$i][FlagCycles_Ignore:$i][AlphaLowTemp:$f][AlphaLowFactor:$f]]",
    "P|$Q$P|$Q$P",
    "Q[OpticsDef:[FOV:$i][SerNo:$i][Text:$t][SamplePointCali:$t][TempRanges:$l$R]]",
    "R|$S$R|$S$R|$S$R",
    "S[TemperatureRange:[Fid:$i][Skim:$i][TempLo:$f][TempHi:$f][TempLoExt:$f][TempHiExt:$f]"
    "[Framerates:$F][Decimal:$i][TableParams:[Normalize:$i][T1:$i][T3:$i][E1:$i][E3:$i]"
    "[Lambda:$f]]]",
    "F|[Framerate:[FR:$i]]$F|[Framerate:[FR:$i]]$F",
    "s\n|\n|\n|\n|\n|\n|\n|\n|\n||\r\n|$l|$l|$l|$l|$m\n|$u",
    "u<Tec>|<a|</|<|<FOV|<FR>|</FR>|</Optics>|<TecB>|>|<!-\n-</Main>-\n->|<!-\n-<FR>-\n->|<\n!-- ",
};

std::string alternativeOf(char letter, ByteSource& source) {
  const auto isRule = [letter](std::string_view rule) { return rule.front() == letter; };
  std::string_view rule = *std::find_if(std::begin(kRules), std::end(kRules), isRule);
  rule.remove_prefix(1);
  const auto bars = static_cast<std::size_t>(std::count(rule.begin(), rule.end(), '|'));
  for (std::size_t skip = source.below(bars + 1); skip > 0; --skip) {
    rule.remove_prefix(rule.find('|') + 1);
  }
  return std::string(rule.substr(0, rule.find('|')));
}

// Only a wild text has comments that may not balance, and lines that end early; a bare one has
// none.
std::string expand(std::string text, ByteSource& source) {
  constexpr std::size_t kLongest = 20000;
  const bool wild = source.oneIn(6);
  const bool bare = source.oneIn(3);
  std::vector<std::pair<std::string, std::size_t>> open;
  for (std::size_t at = 0; (at = text.find_first_of("$[]", at)) != std::string::npos;) {
    if (text[at] == '$') {
      const bool skipped =
          at > kLongest || (text[at + 1] == 'w' && !wild) || (text[at + 1] == 'm' && bare);
      text.replace(at, 2, skipped ? "" : alternativeOf(text[at + 1], source));
    } else if (text[at] == '[') {
      const std::size_t colon = text.find(':', at);
      open.emplace_back(text.substr(at + 1, colon - at - 1), at);
      text[at] = '<';
      text[colon] = '>';
    } else {
      const auto [name, begin] = open.back();
      open.pop_back();
      const bool isOptional = std::isupper(static_cast<unsigned char>(name[0])) != 0;
      text.replace(at, 1, "</" + name + (isOptional ? ">$s" : ">"));
      if (isOptional && source.oneIn(12)) text.erase(begin, std::exchange(at, begin) - begin);
    }
  }
  return text;
}

// Loses, doubles or moves a piece, most often from tag to tag: elements go missing, stay open,
// overlap, change parents, and tags lose their ends.
void breakOnce(std::string& text, ByteSource& source) {
  const auto place = [&](std::size_t from, std::size_t most) {
    const std::size_t at = std::min(from + source.below(most + 1), text.size());
    return source.oneIn(4) ? at : std::min(text.find('<', at), text.size());
  };
  const std::size_t begin = place(0, text.size());
  const std::size_t end = place(begin, source.oneIn(4) ? 400 : 40);
  const std::string piece = text.substr(begin, end - begin);
  if (source.oneIn(2)) text.erase(begin, piece.size());
  if (!source.oneIn(3)) text.insert(place(0, text.size()), piece);
}

void damage(std::string& text, ByteSource& source) {
  for (std::size_t faults = source.oneIn(2) ? source.below(4) : 0; faults > 0; --faults) {
    breakOnce(text, source);
  }
  // About the longest line that a reader takes, and more lines than a block holds.
  const std::size_t line = text.rfind('\n', source.below(text.size() + 1)) + 1;
  const std::size_t length = std::min(text.find('\n', line), text.size()) - line;
  const std::size_t wanted = source.oneIn(12) ? 4093 + source.below(5) : 0;
  if (length < wanted) text.insert(line, wanted - length, source.pick("x -<\r"sv));
  if (source.oneIn(100)) {
    const bool commented = source.oneIn(2);
    std::string lines = commented ? "<!-- \n" : "";
    for (std::size_t left = 750 + source.below(150); left > 0; --left)
      lines += "<ab>1</ab><FOV>1</FOV>\n";
    text.insert(line, lines + (commented ? " -->\n" : ""));
  }
  for (std::size_t breaks = source.oneIn(3) ? source.below(4) : 0; breaks > 0; --breaks) {
    text.insert(source.below(text.size() + 1), 1, source.pick("\n\n\n\r"sv));
  }
}

}  // namespace

std::string randomDocument(ByteSource& source, bool& isCalibration) {
  isCalibration = source.oneIn(4);
  std::string deepNest;  // as deep as a reader goes, and a little deeper
  for (std::size_t level = source.oneIn(50) ? 250 + source.below(9) : 0; level-- > 0;) {
    const std::string name = "n" + std::to_string(level) + ">";
    deepNest.insert(0, "<" + name).append("</" + name);
  }
  std::string text = expand(isCalibration ? "$K" : "$A$O$l" + deepNest + "$C$l$Z$E", source);
  damage(text, source);
  return text;
}

}  // namespace oracle
