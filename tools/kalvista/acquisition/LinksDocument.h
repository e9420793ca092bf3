// The document that names the online repositories.
#ifndef KALVISTA_TOOL_LINKS_DOCUMENT_H
#define KALVISTA_TOOL_LINKS_DOCUMENT_H

#include <string>
#include <vector>

#include "acquisition/Fetcher.h"
#include "acquisition/WorkFolder.h"

namespace tool {

// As the library was built with it.
extern const char* const kLinksAddress;

// The base addresses that the document at this address names; a Failure when there are none.
std::vector<std::string> fetchLinks(Fetcher& fetcher, const std::string& address,
                                    const WorkFolder& work);

}  // namespace tool

#endif  // KALVISTA_TOOL_LINKS_DOCUMENT_H
