// The one source that knows the address of the online repository.
#include "acquisition/LinksDocument.h"

namespace tool {

const char* const kLinksAddress = KALVISTA_DOWNLOAD_LINKS_URL;

}  // namespace tool
