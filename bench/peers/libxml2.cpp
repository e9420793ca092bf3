#include <libxml/xmlreader.h>

#include <memory>
#include <stdexcept>

#include "EventLoader.h"
#include "Peer.h"

namespace bench {
namespace {

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the library has its own characters
std::string_view view(const xmlChar* text) { return reinterpret_cast<const char*>(text); }

void report(xmlTextReader* reader, EventLoader& loader) {
  switch (xmlTextReaderNodeType(reader)) {
    case XML_READER_TYPE_ELEMENT:
      loader.begin(view(xmlTextReaderConstLocalName(reader)));
      break;
    case XML_READER_TYPE_TEXT:
      loader.text(view(xmlTextReaderConstValue(reader)));
      break;
    case XML_READER_TYPE_END_ELEMENT:
      loader.end(view(xmlTextReaderConstLocalName(reader)));
      break;
    default:
      break;
  }
}

void load(const char* path, ConfigCali& calibration) {
  EventLoader loader(calibration);
  const std::unique_ptr<xmlTextReader, decltype(&xmlFreeTextReader)> reader(
      xmlReaderForFile(path, nullptr, XML_PARSE_NOBLANKS | XML_PARSE_NONET | XML_PARSE_HUGE),
      xmlFreeTextReader);
  int more = reader == nullptr ? -1 : xmlTextReaderRead(reader.get());
  for (; more == 1; more = xmlTextReaderRead(reader.get())) report(reader.get(), loader);
  if (more != 0) throw std::runtime_error(std::string("libxml2 cannot read ") + path);
}

}  // namespace

const Peer kLibxml2{"libxml2", load};

}  // namespace bench
