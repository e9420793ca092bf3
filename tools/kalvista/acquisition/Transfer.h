// One request on its way.
#ifndef KALVISTA_TOOL_TRANSFER_H
#define KALVISTA_TOOL_TRANSFER_H

#include <curl/curl.h>

#include <array>
#include <chrono>
#include <deque>
#include <string>
#include <string_view>
#include <utility>

#include "acquisition/Fetcher.h"
#include "machine/Files.h"

namespace tool {

// One try. Its handle belongs to a multi handle from begin() to end().
class Transfer {
 public:
  Transfer(const FetchRequest& request, const FetchLimits& limits);
  ~Transfer();
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  CURL* handle() const { return handle_; }
  std::uintmax_t received() const { return received_; }
  // Less than 100 bytes a second on average over the time limit.
  bool isTooSlow();
  // Judges what came, by the code of the library below, and removes a file that is not whole.
  FetchResult finish(CURLcode code);

 private:
  using Clock = std::chrono::steady_clock;

  static std::size_t takeHeader(char* data, std::size_t one, std::size_t size, void* self);
  static std::size_t takeBody(char* data, std::size_t one, std::size_t size, void* self);
  void setUp();
  void readHeader(std::string_view line);
  bool accept(std::string_view piece);
  std::string whyUnusable() const;  // the answer whose headers have come
  FetchFault faultOf(CURLcode code) const;
  std::string causeOf(CURLcode code) const;
  std::uintmax_t largerOf(curl_off_t length) const;
  void noteDiskFault();
  void closeFile(std::time_t modified);
  long status() const;

  const FetchRequest& request_;
  const FetchLimits& limits_;
  CURL* handle_;
  std::array<char, CURL_ERROR_SIZE> error_{};
  Descriptor file_{-1};
  std::uintmax_t received_ = 0;
  std::string ownCause_;  // why the body was not accepted
  FetchFault ownFault_ = FetchFault::None;
  bool isChunked_ = false;
  bool isEncoded_ = false;
  std::string tag_;
  std::deque<std::pair<Clock::time_point, std::uintmax_t>> marks_;
};

}  // namespace tool

#endif  // KALVISTA_TOOL_TRANSFER_H
