#include <expat.h>
#include <fcntl.h>
#include <unistd.h>

#include <memory>
#include <stdexcept>

#include "EventLoader.h"
#include "Peer.h"

namespace bench {
namespace {

constexpr int kChunk = 1 << 16;

void XMLCALL onBegin(void* loader, const XML_Char* name, const XML_Char** /*attributes*/) {
  static_cast<EventLoader*>(loader)->begin(name);
}

void XMLCALL onText(void* loader, const XML_Char* text, int length) {
  static_cast<EventLoader*>(loader)->text({text, static_cast<std::size_t>(length)});
}

void XMLCALL onEnd(void* loader, const XML_Char* name) {
  static_cast<EventLoader*>(loader)->end(name);
}

// Feeds the parser, which hands out room for each chunk.
bool feed(XML_Parser parser, int file) {
  for (;;) {
    void* room = XML_GetBuffer(parser, kChunk);
    const ssize_t count = room == nullptr ? -1 : read(file, room, kChunk);
    if (count < 0) return false;
    const bool last = count == 0;
    if (XML_ParseBuffer(parser, static_cast<int>(count), last ? 1 : 0) != XML_STATUS_OK) {
      return false;
    }
    if (last) return true;
  }
}

void load(const char* path, ConfigCali& calibration) {
  EventLoader loader(calibration);
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
      XML_ParserCreate(nullptr), XML_ParserFree);
  XML_SetUserData(parser.get(), &loader);
  XML_SetElementHandler(parser.get(), onBegin, onEnd);
  XML_SetCharacterDataHandler(parser.get(), onText);
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  const bool read = file >= 0 && feed(parser.get(), file);
  close(file);
  if (!read) throw std::runtime_error(std::string("expat cannot read ") + path);
}

}  // namespace

const Peer kExpat{"expat", load};

}  // namespace bench
