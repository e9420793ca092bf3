#include "acquisition/Transfer.h"

#include <strings.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "acquisition/Address.h"
#include "acquisition/WorkFolder.h"
#include "answer/Console.h"
#include "answer/Output.h"
#include "machine/Interruption.h"

namespace tool {
namespace {

constexpr std::uintmax_t kLeastBytesPerSecond = 100;
constexpr std::size_t kMarks = 20;  // over the time limit
constexpr long kMostRedirections = 10;
constexpr std::uintmax_t kMostOfAnErrorPage = 1U << 18U;  // read, so that the connection is kept
constexpr long kOk = 200;
constexpr long kNotFound = 404;
constexpr long kGone = 410;
constexpr long kRequestTimeout = 408;
constexpr long kTooManyRequests = 429;
constexpr long kServerError = 500;

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string_view::npos) return "";
  return text.substr(begin, text.find_last_not_of(" \t\r\n") + 1 - begin);
}

bool isHeader(std::string_view line, std::string_view name) {
  return line.size() > name.size() && line[name.size()] == ':' &&
         strncasecmp(line.data(), name.data(), name.size()) == 0;
}

bool isAlike(std::string_view text, std::string_view word) {
  return text.size() == word.size() && strncasecmp(text.data(), word.data(), word.size()) == 0;
}

FetchFault diskFault(int reason) {
  return isDiskFull(reason) ? FetchFault::NoSpace : FetchFault::NoDisk;
}

void allowWebOnly(CURL* handle) {
#if LIBCURL_VERSION_NUM >= 0x075500
  curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
#else
  curl_easy_setopt(handle, CURLOPT_PROTOCOLS, CURLPROTO_HTTP | CURLPROTO_HTTPS);
  curl_easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS, CURLPROTO_HTTP | CURLPROTO_HTTPS);
#endif
}

}  // namespace

Transfer::Transfer(const FetchRequest& request, const FetchLimits& limits)
    : request_(request), limits_(limits), handle_(curl_easy_init()) {
  if (handle_ == nullptr) throw Failure(ExitCode::CouldNot, "no memory for a transfer; try again");
  setUp();
  marks_.emplace_back(Clock::now(), 0);
}

// Removing a handle may wait for a name that is being looked up; on a signal the process ends.
Transfer::~Transfer() {
  if (!isInterrupted()) curl_easy_cleanup(handle_);
}

void Transfer::setUp() {
  allowWebOnly(handle_);
  curl_easy_setopt(handle_, CURLOPT_URL, request_.address.c_str());
  curl_easy_setopt(handle_, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(handle_, CURLOPT_MAXREDIRS, kMostRedirections);
  curl_easy_setopt(handle_, CURLOPT_NOBODY, request_.path.empty() ? 1L : 0L);
  curl_easy_setopt(handle_, CURLOPT_FILETIME, 1L);
  curl_easy_setopt(handle_, CURLOPT_PIPEWAIT, 1L);
  curl_easy_setopt(handle_, CURLOPT_CONNECTTIMEOUT, static_cast<long>(limits_.timeoutSeconds));
  curl_easy_setopt(handle_, CURLOPT_USERAGENT, "kalvista");
  curl_easy_setopt(handle_, CURLOPT_ERRORBUFFER, error_.data());
  curl_easy_setopt(handle_, CURLOPT_HEADERFUNCTION, takeHeader);
  curl_easy_setopt(handle_, CURLOPT_HEADERDATA, this);
  curl_easy_setopt(handle_, CURLOPT_WRITEFUNCTION, takeBody);
  curl_easy_setopt(handle_, CURLOPT_WRITEDATA, this);
#if LIBCURL_VERSION_NUM >= 0x075700
  curl_easy_setopt(handle_, CURLOPT_QUICK_EXIT, 1L);
#endif
}

long Transfer::status() const {
  long status = 0;
  curl_easy_getinfo(handle_, CURLINFO_RESPONSE_CODE, &status);
  return status;
}

std::size_t Transfer::takeHeader(char* data, std::size_t one, std::size_t size, void* self) {
  static_cast<Transfer*>(self)->readHeader({data, one * size});
  return one * size;
}

// What stands in the last answer counts; those before it led there.
void Transfer::readHeader(std::string_view line) {
  const std::size_t colon = line.find(':');
  const std::string_view value =
      colon == std::string_view::npos ? "" : trimmed(line.substr(colon + 1));
  if (line.substr(0, 5) == "HTTP/") {
    isChunked_ = isEncoded_ = false;
    tag_.clear();
  } else if (isHeader(line, "Transfer-Encoding")) {
    isChunked_ = isAlike(value, "chunked");
  } else if (isHeader(line, "Content-Encoding")) {
    isEncoded_ = !value.empty() && !isAlike(value, "identity");
  } else if (isHeader(line, "ETag")) {
    tag_ = value;
  }
}

std::size_t Transfer::takeBody(char* data, std::size_t one, std::size_t size, void* self) {
  const std::string_view piece(data, one * size);
  return static_cast<Transfer*>(self)->accept(piece) ? piece.size() : 0;
}

// What came may be more than was announced, or nothing was.
std::uintmax_t Transfer::largerOf(curl_off_t length) const {
  return static_cast<std::uintmax_t>(std::max(length, static_cast<curl_off_t>(received_)));
}

std::string Transfer::whyUnusable() const {
  curl_off_t length = -1;
  long version = 0;
  curl_easy_getinfo(handle_, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
  curl_easy_getinfo(handle_, CURLINFO_HTTP_VERSION, &version);
  const bool isHttp1 = version == CURL_HTTP_VERSION_1_0 || version == CURL_HTTP_VERSION_1_1;
  if (isEncoded_) return "the answer is compressed, though that was not asked for";
  if (length < 0 && isHttp1 && !isChunked_) {
    return "the answer does not tell its length, so that a broken line could not be noticed";
  }
  if (largerOf(length) > limits_.maxBytes) {
    return "the file is larger than " + bytesText(limits_.maxBytes) + ", the limit of --max-size";
  }
  return "";
}

bool Transfer::accept(std::string_view piece) {
  received_ += piece.size();
  if (status() != kOk) return received_ <= kMostOfAnErrorPage;
  ownCause_ = whyUnusable();
  if (!ownCause_.empty()) {
    ownFault_ = FetchFault::Refused;
    return false;
  }
  if (!file_.isOpen()) file_ = createFile(request_.path);
  if (file_.isOpen() && writeAll(file_.number(), piece)) return true;
  noteDiskFault();
  return false;
}

void Transfer::noteDiskFault() {
  ownFault_ = diskFault(errno);
  ownCause_ = std::strerror(errno);
}

bool Transfer::isTooSlow() {
  const auto now = Clock::now();
  const std::chrono::seconds limit(limits_.timeoutSeconds);
  if (now - marks_.back().first >= limit / kMarks) marks_.emplace_back(now, received_);
  while (marks_.size() > 1 && now - marks_[1].first >= limit) marks_.pop_front();
  return now - marks_.front().first >= limit &&
         received_ - marks_.front().second < kLeastBytesPerSecond * limits_.timeoutSeconds;
}

FetchFault Transfer::faultOf(CURLcode code) const {
  if (ownFault_ != FetchFault::None) return ownFault_;
  const long answer = status();
  switch (code) {
    case CURLE_OK:
      if (answer == kOk) return FetchFault::None;
      if (answer == kNotFound || answer == kGone) return FetchFault::Absent;
      return answer >= kServerError || answer == kRequestTimeout || answer == kTooManyRequests
                 ? FetchFault::Passing
                 : FetchFault::Refused;
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_OPERATION_TIMEDOUT:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
      return FetchFault::Passing;
    case CURLE_URL_MALFORMAT:
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_TOO_MANY_REDIRECTS:
    case CURLE_WRITE_ERROR:
    case CURLE_WEIRD_SERVER_REPLY:
      return FetchFault::Refused;
    default:
      return FetchFault::NoServer;
  }
}

std::string Transfer::causeOf(CURLcode code) const {
  if (!ownCause_.empty()) return ownCause_;
  if (code == CURLE_OK) return "the server answered with status " + std::to_string(status());
  return shownCause(error_[0] != '\0' ? error_.data() : curl_easy_strerror(code));
}

// Keeps time and tag with it, for the next comparison with the server.
void Transfer::closeFile(std::time_t modified) {
  if (!file_.isOpen()) file_ = createFile(request_.path);  // an empty one
  // Where the file system keeps no attributes, size and time have to do.
  if (!tag_.empty()) fsetxattr(file_.number(), kTagAttribute, tag_.data(), tag_.size(), 0);
  const timespec times[] = {{0, UTIME_OMIT}, {modified, modified < 0 ? UTIME_OMIT : 0}};
  futimens(file_.number(), times);
  if (!file_.close()) noteDiskFault();  // a network file system may tell only now
}

FetchResult Transfer::finish(CURLcode code) {
  FetchResult result;
  curl_off_t length = -1;
  curl_easy_getinfo(handle_, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
  result.size = largerOf(length);
  curl_off_t modified = -1;
  curl_easy_getinfo(handle_, CURLINFO_FILETIME_T, &modified);
  result.modified = static_cast<std::time_t>(modified);
  result.tag = tag_;
  if (faultOf(code) == FetchFault::None && !request_.path.empty()) closeFile(result.modified);
  result.fault = faultOf(code);
  if (result.fault == FetchFault::None) return result;
  result.cause = causeOf(code);
  unlink(request_.path.c_str());
  return result;
}

}  // namespace tool
