// Reads a calibration file into the model, in one pass over its tags.
//
// The file's elements are found as ardo::SimpleXML finds them: a child is the first opening tag of
// its name behind the parent's opening tag, up to the first closing tag of its name, both before
// the parent's end, whatever stands between. Looking for each child by itself would read the text
// of every parent once for each of its children. Instead each tag is seen once, and held against
// the set of elements that are looked for at this place and the set of those that are open. Since
// a name belongs to one place only, both sets tell exactly what the single searches would find.
// So the text may come in pieces, of which none is kept.
#include <kalvista/Cali.h>
#include <kalvista/SimpleXML.h>

#include <array>
#include <clocale>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "imgproc/CaliFormat.h"
#include "imgproc/CaliModel.h"
#include "sdk/log/LogMessage.h"
#include "sdk/places/ConfigPath.h"
#include "sdk/text/NoThrow.h"
#include "sdk/xml/DocumentText.h"
#include "sdk/xml/SimpleXMLInternals.h"
#include "sdk/xml/TagScanner.h"

namespace cali {

namespace {

constexpr const char* kCaliSource = "Cali";
constexpr const char* kRoot = "CaliData";
constexpr int kLineAlreadyLoaded = 71;
constexpr int kLineSerialChanged = 76;
constexpr int kLineDirectory = 96;
constexpr int kLineFileName = 97;
constexpr int kLineTec = 107;

constexpr unsigned int kSuccess = 0;
constexpr unsigned int kAccessDenied = 0x80070005U;

constexpr ElementSet kSections = setOf(kMain) | setOf(kTemperature);

std::string_view textBetween(const char* begin, const char* end) {
  return {begin, static_cast<std::size_t>(end - begin)};
}

class ElementScan final : public ardo::LineReceiver {
 public:
  explicit ElementScan(Records& records) : records_(records) {}

  // Looks for some elements, and for all that their rules name inside them.
  void lookFor(ElementSet wanted) {
    wanted_ = wanted;
    open_ = 0;
    found_ = 0;
    known_ = {};
  }

  void run(std::string_view text, ElementSet wanted) {
    lookFor(wanted);
    scan(text);
  }

  // Goes on with the next lines, until joining them might show something else.
  bool take(std::string_view lines) override {
    scan(lines);
    return !needsJoining();
  }

  bool found(Element element) const { return (found_ & setOf(element)) != 0; }

  std::string_view contentOf(std::size_t element) const {
    return textBetween(contents_[element].begin, contents_[element].end);
  }

 private:
  void scan(std::string_view text) {
    ardo::TagScanner tags(text);
    KnownTag known = known_;
    while ((wanted_ | open_) != 0 && takeKnown(tags, known)) {
      while (!known.closing() && isWanted(known.element())) {
        if (takeValue(tags, known)) continue;
        open(known.element(), tags.tagEnd());
        break;
      }
      if (known.closing()) close(known.element(), tags.tagBegin());
    }
    known_ = known;
    tagCut_ |= tags.tagCut();
  }

  // True when a line end, or the end of a piece, stands within a tag or a value.
  bool needsJoining() const {
    return tagCut_ || records_.lineEndInValue || (open_ & valueElements()) != 0;
  }

  // One byte, since a processor waits for a pair that is read as one right after it was written.
  class KnownTag {
   public:
    static constexpr std::size_t kCount = 2 * (kNoElement + 1);

    constexpr KnownTag() = default;
    constexpr KnownTag(std::size_t element, bool closing)
        : code_(static_cast<std::uint8_t>(closing ? element + kNoElement + 1 : element)) {}
    constexpr std::size_t element() const { return code_ % (kNoElement + 1); }
    constexpr bool closing() const { return code_ > kNoElement; }
    constexpr std::size_t code() const { return code_; }

   private:
    std::uint8_t code_ = kNoElement;
  };

  // The two tags that were last found behind a tag.
  struct Followers {
    KnownTag latest;
    KnownTag former;
  };
  using FollowerTable = std::array<Followers, KnownTag::kCount>;

  // From the closing tag of a value to the end of the next opening tag. It is kept when the piece
  // that held it is gone; a long one is not worth it. Nothing is read of it before it is set.
  class Step {  // NOLINT(cppcoreguidelines-pro-type-member-init)
   public:
    void set(std::string_view text, KnownTag next) {
      size_ = text.size() <= text_.size() ? text.copy(text_.data(), text.size()) : 0;
      next_ = next;
    }
    std::string_view text() const { return {text_.data(), size_}; }
    KnownTag next() const { return next_; }

   private:
    std::size_t size_ = 0;
    KnownTag next_;
    std::array<char, 119> text_;
  };

  struct Content {
    const char* begin = nullptr;
    const char* end = nullptr;
  };

  // Until it is known better, an element holds a value, and elements come in the rules' order.
  static const FollowerTable& firstGuesses() {
    static constexpr FollowerTable kGuesses = [] {
      FollowerTable guesses{};
      for (std::size_t element = 0; element + 1 < kElementCount; ++element) {
        guesses[KnownTag(element, false).code()].latest = {element, true};
        guesses[KnownTag(element, true).code()].latest = {element + 1, false};
      }
      return guesses;
    }();
    return kGuesses;
  }

  // What followed a tag before most often does so again, and is told by one comparison.
  bool takeKnown(ardo::TagScanner& tags, KnownTag& known) {
    const KnownTag before = known;
    const char* beforeBegin = tags.tagBegin();
    Followers& followers = followers_[before.code()];
    if (takeIfNext(tags, followers.latest)) {
      known = followers.latest;
    } else if (takeIfNext(tags, followers.former)) {
      known = followers.former;
    } else {
      if (!findKnown(tags, known)) return false;
      followers.former = std::exchange(followers.latest, known);
    }
    if (before.closing() && !known.closing() && beforeBegin != nullptr &&
        kElementRules[before.element()].holdsValue()) {
      steps_[before.element()].set(textBetween(beforeBegin, tags.tagEnd()), known);
    }
    return true;
  }

  static bool takeIfNext(ardo::TagScanner& tags, KnownTag expected) {
    return expected.element() != kNoElement &&
           tags.takeExpected(kElementRules[expected.element()].name, expected.closing());
  }

  static bool findKnown(ardo::TagScanner& tags, KnownTag& known) {
    ardo::Tag tag;
    while (tags.takeNext(tag)) {
      const std::size_t element = elementNamed(tag.name);
      if (element == kNoElement) continue;
      known = {element, tag.closing};
      return true;
    }
    return false;
  }

  // Opens and closes an element in one go when it holds a value only, as most do. Goes on to the
  // opening tag that follows when the text between is that of the last time.
  bool takeValue(ardo::TagScanner& tags, KnownTag& known) {
    const std::size_t element = known.element();
    const ElementRule& rule = kElementRules[element];
    if (!rule.holdsValue()) return false;
    const char* content = tags.tagEnd();
    const Step& step = steps_[element];
    if (!step.text().empty() && tags.takeRepeated(step.text())) {
      known = step.next();
    } else if (tags.takeExpected(rule.name, true)) {
      known = {element, true};
    } else {
      return false;
    }
    wanted_ &= ~setOf(element);
    rule.close(records_, textBetween(content, tags.tagBegin()));
    return true;
  }

  static ElementSet valueElements() {
    static const ElementSet elements = [] {
      ElementSet values = 0;
      for (std::size_t element = 0; element < kElementCount; ++element) {
        if (kElementRules[element].holdsValue()) values |= setOf(element);
      }
      return values;
    }();
    return elements;
  }

  bool isWanted(std::size_t element) const { return (wanted_ & setOf(element)) != 0; }

  bool isOpen(std::size_t element) const { return (open_ & setOf(element)) != 0; }

  void open(std::size_t element, const char* contentBegin) {
    const ElementRule& rule = kElementRules[element];
    wanted_ &= ~setOf(element);
    wanted_ |= rule.children;
    open_ |= setOf(element);
    contents_[element].begin = contentBegin;
    if (rule.open != nullptr) rule.open(records_);
  }

  // Whatever is still open or looked for inside the element ends with it and was not there.
  void close(std::size_t element, const char* contentEnd) {
    if (!isOpen(element)) return;
    const ElementRule& rule = kElementRules[element];
    wanted_ &= ~rule.descendants;
    open_ &= ~(rule.descendants | setOf(element));
    found_ |= setOf(element);
    contents_[element].end = contentEnd;
    if (rule.close != nullptr) {
      rule.close(records_, rule.holdsValue() ? contentOf(element) : std::string_view());
    }
    if (rule.repeated) wanted_ |= setOf(element);
  }

  Records& records_;
  ElementSet wanted_ = 0;
  ElementSet open_ = 0;
  ElementSet found_ = 0;
  bool tagCut_ = false;
  KnownTag known_;
  FollowerTable followers_ = firstGuesses();
  std::array<Step, kElementCount> steps_;
  std::array<Content, kElementCount> contents_{};
};

// A level that is missing is passed over: its children are then looked for where it was.
void readOptics(ElementScan& scan, Records& records, std::string_view text) {
  std::string_view level = text;
  if (scan.found(kTemperature)) {
    level = scan.contentOf(kTemperature);
  } else {
    scan.run(text, setOf(kOptics));
  }
  if (scan.found(kOptics)) return;
  records.opticsList.clear();
  scan.run(level, setOf(kOpticsDef));
}

void readRecords(Records& records, std::string_view text) {
  ElementScan scan(records);
  scan.run(text, kSections);
  const bool mainFound = scan.found(kMain);
  readOptics(scan, records, text);
  if (!mainFound) {
    records.main = records.mainBefore;
    scan.run(text, kElementRules[kMain].children);
  }
}

// Most files have all levels and break lines between elements only, so that they are read line by
// line and no text is kept.
bool readInLines(Records& records, const char* path, const char* name) {
  ardo::ConfigPath file;
  if (!file.form(path, name, ".xml")) return false;
  ElementScan scan(records);
  scan.lookFor(kSections);
  return ardo::readLines(file.text(), kRoot, scan) && scan.found(kMain) &&
         scan.found(kTemperature) && scan.found(kOptics);
}

std::optional<Records> readFile(const MainSection& before, const char* path, char* name) {
  std::setlocale(LC_NUMERIC, "C");
  std::optional<Records> records(before);
  if (readInLines(*records, path, name)) return records;
  ardo::SimpleXML document;
  if (!document.open(path, name, kRoot) || !document.hasRoot()) return std::nullopt;
  records.emplace(before);
  readRecords(*records, ardo::SimpleXMLInternals::textOf(document));
  return records;
}

unsigned int loadFile(ConfigCali& calibration, const char* path, int serial) {
  std::string name = "Cali-" + std::to_string(serial);
  ardo::logMessage(ardo::kLogDebug, kCaliSource, kLineDirectory,
                   "Calibration directory path: ", path);
  ardo::logMessage(ardo::kLogDebug, kCaliSource, kLineFileName,
                   "Calibration file name: ", name.data());

  std::optional<Records> records = readFile(*calibration.mainSection, path, name.data());
  if (!records) return kAccessDenied;
  setOptics(*calibration.opticsList, records->opticsList);
  *calibration.mainSection = records->main;
  ardo::logMessage(ardo::kLogDebug, kCaliSource, kLineTec,
                   "Calibration data A: ", calibration.mainSection->TecA,
                   " B:", calibration.mainSection->TecB, " C:", calibration.mainSection->TecC,
                   " D:", calibration.mainSection->TecD);
  calibration.loaded = true;
  calibration.serial = serial;
  return kSuccess;
}

}  // namespace

}  // namespace cali

unsigned int ConfigCali::load(const char* path, int wanted) {
  if (isLoaded(wanted)) {
    ardo::logMessage(ardo::kLogDebug, cali::kCaliSource, cali::kLineAlreadyLoaded,
                     "Calibration XML file already loaded.");
    return cali::kSuccess;
  }
  if (loaded) {
    ardo::logMessage(ardo::kLogDebug, cali::kCaliSource, cali::kLineSerialChanged,
                     "Serial number has changed (", wanted, "), reload Calibration XML.");
  }
  return ardo::withoutThrowing(cali::kAccessDenied, [&] {
    if (loaded || opticsList == nullptr) cali::resetModel(*this);
    return cali::loadFile(*this, path, wanted);
  });
}
