#include "acquisition/LinksDocument.h"

#include <kalvista/SimpleXML.h>

#include <memory>

#include "acquisition/Address.h"
#include "answer/Failure.h"

namespace tool {
namespace {

constexpr const char* kRoot = "DownloadLinks";
constexpr const char* kLink = "string";

[[noreturn]] void fail(const std::string& address, const std::string& cause) {
  throw Failure(ExitCode::CouldNot,
                "the online repository cannot be used: its links document " +
                    shownAddress(address) + ": " + cause +
                    "; check the network and the proxy, or use \"kalvista copy\"");
}

// As the library reads it: a further link lies inside the element of the one before.
std::vector<std::string> linksIn(ardo::SimpleXML& document) {
  std::vector<std::string> links;
  char* text = nullptr;
  while (document.getString(kLink, &text)) {
    const std::unique_ptr<char[]> owned(text);
    links.emplace_back(text);
    document.setNode(kLink);  // what was found can be entered
  }
  return links;
}

}  // namespace

std::vector<std::string> fetchLinks(Fetcher& fetcher, const std::string& address,
                                    const WorkFolder& work) {
  const FetchRequest request{address, work.pathOf(kRoot)};
  const FetchResult result = fetcher.fetch(request);
  if (result.fault != FetchFault::None) fail(address, result.cause);
  ardo::SimpleXML document;
  if (!document.open(request.path.c_str(), kRoot) || !document.hasRoot()) {
    fail(address, "it is no links document");
  }
  document.setNode();
  for (const char* name : {"Imager", "CaliData", "Links"}) {
    if (!document.setNode(name)) fail(address, std::string("it has no ") + name);
  }
  std::vector<std::string> links = linksIn(document);
  if (links.empty()) fail(address, "it names no repository");
  return links;
}

}  // namespace tool
