// Files from web servers.
#ifndef KALVISTA_TOOL_FETCHER_H
#define KALVISTA_TOOL_FETCHER_H

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

namespace tool {

constexpr unsigned kDefaultTimeoutSeconds = 60;
constexpr std::uintmax_t kDefaultMaxBytes = 256000000;

struct FetchLimits {
  unsigned timeoutSeconds = kDefaultTimeoutSeconds;  // less than 100 bytes a second for so long
  std::uintmax_t maxBytes = kDefaultMaxBytes;        // of one file
  unsigned tries = 3;                                // where another one may help
};

struct FetchRequest {
  std::string address;
  // Of the file to make, which must not exist; empty to ask for size, time and tag only.
  std::string path;
};

enum class FetchFault {
  None,
  Absent,   // the server has no such file
  Refused,  // what came is not to be used, or the server refuses: another try gives the same
  Passing,  // the server is out of order, or the line broke
  // The same for all files:
  NoServer,  // not found, or does not answer as one
  NoSpace,   // on the disk
  NoDisk     // that takes the file
};

struct FetchResult {
  FetchFault fault = FetchFault::None;
  std::string cause;          // of a fault, as the library below gave it
  std::uintmax_t size = 0;    // of the file; 0 when it is not known
  std::time_t modified = -1;  // when the server's file was; -1 when it is not known
  std::string tag;            // the server's ETag; empty for none
};

// The extended attribute that keeps the tag with a file.
constexpr const char* kTagAttribute = "user.kalvista.etag";

// Keeps its connections from one call to the next. A call throws an Interruption on a signal, and a
// Failure when the disk does not take a file.
class Fetcher {
 public:
  explicit Fetcher(const FetchLimits& limits);
  ~Fetcher();
  Fetcher(const Fetcher&) = delete;
  Fetcher& operator=(const Fetcher&) = delete;

  // Results in the order of the requests. Of a request that failed no file is left. After
  // a fault that would be the same for all, the rest is not tried and shares it.
  std::vector<FetchResult> fetch(const std::vector<FetchRequest>& requests);
  FetchResult fetch(const FetchRequest& request);

 private:
  class Session;

  FetchLimits limits_;
  void* multi_;  // a CURLM
};

}  // namespace tool

#endif  // KALVISTA_TOOL_FETCHER_H
