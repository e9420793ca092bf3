#include "sdk/xml/DocumentText.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <utility>

#include "sdk/text/OpenForReading.h"
#include "sdk/xml/Comments.h"

namespace ardo {

namespace {

constexpr std::size_t kLongestLine = 4095;
constexpr std::size_t kFixedCopy = 96;
constexpr std::size_t kBlockSize = std::size_t{16} * 1024;

class InputFile {
 public:
  explicit InputFile(const char* path) : descriptor_(openForReading(path)) {}
  ~InputFile() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  // Nothing for what is no regular file that a document's offsets can count.
  std::optional<std::size_t> size() const {
    struct stat status {};
    if (descriptor_ < 0 || fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size > std::numeric_limits<std::int32_t>::max()) {
      return std::nullopt;
    }
    return static_cast<std::size_t>(status.st_size);
  }

  // 0 at the end of the file; a file that cannot be read further ends there.
  std::size_t read(char* to, std::size_t most) const {
    ssize_t count = 0;
    do {
      count = ::read(descriptor_, to, most);
    } while (count < 0 && errno == EINTR);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
  }

 private:
  int descriptor_;
};

const char* findByte(const char* from, const char* end, char byte) {
  const void* found = std::memchr(from, byte, static_cast<std::size_t>(end - from));
  return found != nullptr ? static_cast<const char*>(found) : end;
}

// Finds a text by the letter of it that is most likely rare: markup is mostly lower case.
class TextFinder {
 public:
  explicit TextFinder(std::string text) : text_(std::move(text)) {
    const auto isUpper = [](char letter) { return letter >= 'A' && letter <= 'Z'; };
    const auto rare = std::find_if(text_.rbegin(), text_.rend(), isUpper);
    if (rare != text_.rend()) rare_ = static_cast<std::size_t>(text_.rend() - rare) - 1;
  }

  // `end` when it does not occur.
  const char* find(const char* from, const char* end) const {
    while (static_cast<std::size_t>(end - from) >= text_.size()) {
      const char* rare = findByte(from + rare_, end, text_[rare_]);
      from = rare - rare_;
      if (static_cast<std::size_t>(end - from) < text_.size()) break;
      if (std::memcmp(from, text_.data(), text_.size()) == 0) return from;
      ++from;
    }
    return end;
  }

  bool isIn(std::string_view line) const {
    return find(line.data(), line.data() + line.size()) != line.data() + line.size();
  }

 private:
  std::string text_;
  std::size_t rare_ = 0;
};

void replaceCarriageReturns(char* from, const char* end) {
  for (const char* at = findByte(from, end, '\r'); at != end; at = findByte(at, end, '\r')) {
    from[at - from] = '\n';
  }
}

// The whole lines at the start of a text, up to one that is too long.
std::string_view wholeLines(std::string_view text) {
  std::size_t size = 0;
  for (;;) {
    const std::size_t last = text.substr(size, kLongestLine + 1).rfind('\n');
    if (last == std::string_view::npos) return text.substr(0, size);
    size += last + 1;
  }
}

// Takes the lines of a file block by block and puts the root's content into a room. With a receiver
// the room is for one block, whose lines keep their ends and lose their comments.
class ContentCollector {
 public:
  ContentCollector(std::string_view root, char* room, LineReceiver* receiver = nullptr)
      : opening_("<" + std::string(root)),
        closing_("</" + std::string(root) + ">"),
        room_(room),
        fill_(room),
        receiver_(receiver) {}

  // Takes the lines that end in [from, end), at the end of the file the unfinished one as well.
  // Returns the start of the line that is left over, null when the reading is over.
  const char* take(const char* from, const char* end, bool endOfFile) {
    if (!started_) {
      from = findByte(from, end, '<');
      started_ = from != end;
    }
    from = rootFound_ ? takeContent(from, end) : skipToRoot(from, end);
    if (from != nullptr && isTooLong(from, end)) from = nullptr;
    if (from != nullptr && endOfFile && from != end) takeUnfinishedLine(from, end);
    if (receiver_ != nullptr && !handOut()) from = nullptr;
    return from;
  }

  bool rootFound() const { return rootFound_; }

  // True when the receiver has all lines. A text with line ends may not show what is comment.
  bool allHandedOut() const { return rootFound_ && !refused_ && !cutter_.inComment(); }

  std::string_view finish() {
    *fill_ = '\0';
    return {room_, static_cast<std::size_t>(fill_ - room_)};
  }

 private:
  bool handOut() {
    *fill_ = '\0';
    const char* end = cutter_.cut(room_, fill_);
    fill_ = room_;
    room_[end - room_] = '\0';
    refused_ = cutter_.failed() ||
               (end != room_ && !receiver_->take({room_, static_cast<std::size_t>(end - room_)}));
    return !refused_;
  }

  static bool isTooLong(const char* from, const char* lineEnd) {
    return static_cast<std::size_t>(lineEnd - from) > kLongestLine;
  }

  // A line counts up to its first zero byte.
  static std::string_view textOf(const char* from, const char* lineEnd) {
    const char* end = findByte(from, lineEnd, '\0');
    return {from, static_cast<std::size_t>(end - from)};
  }

  const char* skipToRoot(const char* from, const char* end) {
    for (const char* lineEnd = findByte(from, end, '\n'); lineEnd != end;
         lineEnd = findByte(from, end, '\n')) {
      if (isTooLong(from, lineEnd)) return nullptr;
      const std::string_view line = textOf(from, lineEnd);
      from = lineEnd + 1;
      if (opening_.isIn(line)) {
        rootFound_ = true;
        return takeContent(from, end);
      }
    }
    return from;
  }

  // Most blocks hold neither a zero byte nor the closing tag: their lines are copied unseen.
  const char* takeContent(const char* from, const char* end) {
    const char* zero = findByte(from, end, '\0');
    const char* closing = closing_.find(from, end);
    while (from != nullptr) {
      from = copyLines(from, end, std::min(zero, closing));
      const char* lineEnd = findByte(from, end, '\n');
      if (lineEnd == end) break;
      from = takeLine(from, lineEnd);
      if (from != nullptr && zero < from) zero = findByte(from, end, '\0');
      if (from != nullptr && closing < from) closing = closing_.find(from, end);
    }
    return from;
  }

  // Copies the lines that end before `stop`, which needs a closer look, as does one too long.
  const char* copyLines(const char* from, const char* end, const char* stop) {
    char* const copied = fill_;
    if (receiver_ != nullptr) {
      const std::string_view lines = wholeLines({from, static_cast<std::size_t>(stop - from)});
      std::memcpy(fill_, lines.data(), lines.size());
      fill_ += lines.size();
      return from + lines.size();
    }
    for (;;) {
      const char* lineEnd = findByte(from, end, '\n');
      if (lineEnd >= stop || isTooLong(from, lineEnd)) break;
      append(from, static_cast<std::size_t>(lineEnd - from));
      from = lineEnd + 1;
    }
    replaceCarriageReturns(copied, fill_);
    return from;
  }

  const char* takeLine(const char* from, const char* lineEnd) {
    if (isTooLong(from, lineEnd)) return nullptr;
    const std::string_view line = textOf(from, lineEnd);
    if (closing_.isIn(line)) return nullptr;
    char* const copied = fill_;
    append(line.data(), line.size());
    replaceCarriageReturns(copied, fill_);
    return lineEnd + 1;
  }

  void takeUnfinishedLine(const char* from, const char* end) {
    if (rootFound_) {
      takeLine(from, end);
    } else {
      rootFound_ = opening_.isIn(textOf(from, end));
    }
  }

  // Most lines fit into the fixed copy, which takes no call. Behind both ends there is room for it.
  void append(const char* from, std::size_t count) {
    std::memcpy(fill_, from, kFixedCopy);
    if (count > kFixedCopy) std::memcpy(fill_ + kFixedCopy, from + kFixedCopy, count - kFixedCopy);
    fill_ += count;
  }

  TextFinder opening_;
  TextFinder closing_;
  char* room_;
  char* fill_;
  bool started_ = false;  // the first "<" of the file has been seen
  bool rootFound_ = false;
  CommentCutter cutter_;
  LineReceiver* receiver_;
  bool refused_ = false;
};

void collect(ContentCollector& collector, const InputFile& input, std::size_t unread) {
  // Read into, so that it need not be set before.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
  std::array<char, kBlockSize + kFixedCopy> block;
  std::size_t kept = 0;
  for (bool goOn = true; goOn;) {
    const std::size_t count = input.read(block.data() + kept, std::min(unread, kBlockSize - kept));
    unread -= count;
    const bool endOfFile = count == 0 || unread == 0;
    const char* end = block.data() + kept + count;
    const char* rest = collector.take(block.data(), end, endOfFile);
    goOn = rest != nullptr && !endOfFile;
    if (goOn) {
      kept = static_cast<std::size_t>(end - rest);
      std::memmove(block.data(), rest, kept);
    }
  }
}

}  // namespace

std::optional<DocumentText> readDocumentText(const char* file, std::string_view root) {
  const InputFile input(file);
  const std::optional<std::size_t> size = input.size();
  if (!size) return std::nullopt;
  DocumentText document;
  document.characters.reset(new (std::nothrow) char[*size + kFixedCopy]);
  if (document.characters == nullptr) return std::nullopt;

  ContentCollector collector(root, document.characters.get());
  collect(collector, input, *size);
  document.length = static_cast<std::int32_t>(collector.finish().size());
  document.rootFound = collector.rootFound();
  return document;
}

bool readLines(const char* file, std::string_view root, LineReceiver& receiver) {
  const InputFile input(file);
  const std::optional<std::size_t> size = input.size();
  if (!size) return false;
  // Written block by block, so that it need not be set before.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
  std::array<char, kBlockSize + kFixedCopy> room;
  ContentCollector collector(root, room.data(), &receiver);
  collect(collector, input, *size);
  return collector.allHandedOut();
}

}  // namespace ardo
