// SimpleXML: from a file to the text.
#include <kalvista/SimpleXML.h>

#include <clocale>
#include <cstring>

#include "sdk/log/LogMessage.h"
#include "sdk/places/ConfigPath.h"
#include "sdk/text/NoThrow.h"
#include "sdk/xml/Comments.h"
#include "sdk/xml/DocumentText.h"
#include "sdk/xml/SimpleXMLInternals.h"

namespace ardo {

namespace {

constexpr const char* kReaderSource = "SimpleXML";
constexpr int kLineOpenFailed = 72;
constexpr int kLineBrokenText = 134;
constexpr int kLineBrokenComments = 135;

}  // namespace

SimpleXML::SimpleXML() { std::setlocale(LC_NUMERIC, "C"); }

SimpleXML::~SimpleXML() { delete[] buffer; }

bool SimpleXML::open(const char* file, const char* root) {
  std::optional<DocumentText> document;
  if (file != nullptr && root != nullptr) {
    document = withoutThrowing(std::optional<DocumentText>(),
                               [&] { return readDocumentText(file, root); });
  }
  if (!document) {
    logMessage(kLogDebug, kReaderSource, kLineOpenFailed, "Failed to open file ", file);
    return false;
  }

  delete[] buffer;
  buffer = document->characters.release();
  length = document->length;
  rootFound_ = document->rootFound;
  depth = 0;
  SimpleXMLInternals::forgetSibling(*this, 1);

  // The length keeps counting what is cut; the terminator bounds the text.
  const std::optional<std::int32_t> cutLength = cutComments(buffer, length);
  textLength_ = cutLength.value_or(length);
  if (!cutLength) {
    logMessage(kLogError, kReaderSource, kLineBrokenText, static_cast<const char*>(buffer));
    logMessage(kLogError, kReaderSource, kLineBrokenComments, "Format of file ", file,
               " is wrong. Verify, that the XML document is well-formed!");
  }
  return cutLength.has_value();
}

bool SimpleXML::open(const char* dir, char* name, const char* root) {
  ConfigPath path;
  if (!path.form(dir, name, ".xml")) return false;
  const bool opened = open(path.text(), root);
  // A file that opens has its directory.
  if (!opened) path.makeDirectory();
  return opened;
}

bool SimpleXML::hasRoot() const { return rootFound_; }

}  // namespace ardo
