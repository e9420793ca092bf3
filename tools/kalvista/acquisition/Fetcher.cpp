#include "acquisition/Fetcher.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <deque>

#include "acquisition/Address.h"
#include "acquisition/Progress.h"
#include "acquisition/Transfer.h"
#include "answer/Console.h"
#include "answer/Failure.h"
#include "answer/Output.h"
#include "machine/Interruption.h"

namespace tool {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kAtOnce = 8;
constexpr long kConnectionsKept = 16;
constexpr int kLookMilliseconds = 100;
constexpr std::chrono::milliseconds kFirstPause(500);
constexpr int kPauseGrowth = 4;
constexpr unsigned int kFirstGoodWithProxies = 0x080000;

// Before 8.0, requests that share a connection through a proxy pile connections up.
bool mayShareConnections() {
  if (curl_version_info(CURLVERSION_NOW)->version_num >= kFirstGoodWithProxies) return true;
  const auto isUnset = [](const char* name) { return std::getenv(name) == nullptr; };
  return isUnset("https_proxy") && isUnset("HTTPS_PROXY") && isUnset("all_proxy") &&
         isUnset("ALL_PROXY");
}

[[noreturn]] void failForDisk(const FetchResult& result, const std::string& address) {
  if (result.fault == FetchFault::NoDisk) {
    throw Failure(ExitCode::CouldNot, "the files cannot be written: " + result.cause +
                                          "; check the disk, and try again");
  }
  throw Failure(ExitCode::CouldNot, "no space is left for the files: " + result.cause + "; " +
                                        shownAddress(address) + " alone needs " +
                                        bytesText(result.size) + ", make room and try again");
}

struct Job {
  const FetchRequest* request;
  FetchResult* result;
  unsigned triesLeft;
  std::chrono::milliseconds pause = kFirstPause;
  Clock::time_point due = Clock::now();
  std::unique_ptr<Transfer> transfer;
};

}  // namespace

// The requests of one call, and where they are.
class Fetcher::Session {
 public:
  Session(CURLM* multi, const FetchLimits& limits, const std::vector<FetchRequest>& requests);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  std::vector<FetchResult> run();

 private:
  void startWhatIsDue();
  void takeFinished();
  void giveUpSlowOnes();
  void end(CURL* handle, CURLcode code, const std::string& cause);
  void giveUpTheRest(const FetchResult& result);
  void showProgress();

  CURLM* multi_;
  const FetchLimits& limits_;
  std::vector<FetchResult> results_;
  std::deque<Job> waiting_;
  std::vector<Job> running_;
  Progress progress_;
  std::uintmax_t bytesDone_ = 0;
};

Fetcher::Session::Session(CURLM* multi, const FetchLimits& limits,
                          const std::vector<FetchRequest>& requests)
    : multi_(multi), limits_(limits), results_(requests.size()), progress_(requests.size()) {
  for (std::size_t i = 0; i < requests.size(); ++i) {
    waiting_.push_back(
        {&requests[i], &results_[i], limits.tries, kFirstPause, Clock::now(), nullptr});
  }
}

Fetcher::Session::~Session() {
  if (isInterrupted()) return;
  for (const Job& job : running_) curl_multi_remove_handle(multi_, job.transfer->handle());
}

std::vector<FetchResult> Fetcher::Session::run() {
  while (!waiting_.empty() || !running_.empty()) {
    throwIfInterrupted();
    startWhatIsDue();
    // Returns at once when something was started.
    curl_multi_poll(multi_, nullptr, 0, kLookMilliseconds, nullptr);
    int count = 0;
    curl_multi_perform(multi_, &count);
    takeFinished();
    giveUpSlowOnes();
    showProgress();
  }
  return std::move(results_);
}

void Fetcher::Session::startWhatIsDue() {
  while (!waiting_.empty() && running_.size() < kAtOnce && waiting_.front().due <= Clock::now()) {
    running_.push_back(std::move(waiting_.front()));
    waiting_.pop_front();
    Job& job = running_.back();
    --job.triesLeft;
    job.transfer = std::make_unique<Transfer>(*job.request, limits_);
    curl_multi_add_handle(multi_, job.transfer->handle());
  }
}

void Fetcher::Session::takeFinished() {
  int count = 0;
  // There is one kind of message, CURLMSG_DONE.
  while (const CURLMsg* message = curl_multi_info_read(multi_, &count)) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-union-access): the interface of the library below
    end(message->easy_handle, message->data.result, "");
  }
}

void Fetcher::Session::giveUpSlowOnes() {
  std::vector<CURL*> slow;
  for (const Job& job : running_) {
    if (job.transfer->isTooSlow()) slow.push_back(job.transfer->handle());
  }
  for (CURL* handle : slow) {
    end(handle, CURLE_OPERATION_TIMEDOUT,
        "less than 100 bytes a second arrived for " + countText(limits_.timeoutSeconds, "second") +
            ", the limit of --timeout");
  }
}

void Fetcher::Session::end(CURL* handle, CURLcode code, const std::string& cause) {
  const auto at = std::find_if(running_.begin(), running_.end(), [handle](const Job& job) {
    return job.transfer->handle() == handle;
  });
  Job job = std::move(*at);
  running_.erase(at);
  curl_multi_remove_handle(multi_, handle);
  *job.result = job.transfer->finish(code);
  if (!cause.empty()) job.result->cause = cause;
  if (job.result->fault >= FetchFault::NoSpace) failForDisk(*job.result, job.request->address);
  bytesDone_ += job.transfer->received();
  if (job.result->fault == FetchFault::Passing && job.triesLeft > 0) {
    job.due = Clock::now() + job.pause;
    job.pause *= kPauseGrowth;
    waiting_.push_back(std::move(job));
    return;
  }
  // A line that broke again and again does so for all; a server's status is about one file.
  const bool isLineBroken = job.result->fault == FetchFault::Passing && code != CURLE_OK;
  if (isLineBroken || job.result->fault >= FetchFault::NoServer) {
    giveUpTheRest(*job.result);
  }
}

void Fetcher::Session::giveUpTheRest(const FetchResult& result) {
  for (const Job& job : waiting_) *job.result = result;
  waiting_.clear();
}

void Fetcher::Session::showProgress() {
  std::uintmax_t bytes = bytesDone_;
  for (const Job& job : running_) bytes += job.transfer->received();
  progress_.show(results_.size() - waiting_.size() - running_.size(), bytes);
}

Fetcher::Fetcher(const FetchLimits& limits) : limits_(limits) {
  static const CURLcode ready = curl_global_init(CURL_GLOBAL_DEFAULT);
  multi_ = ready == CURLE_OK ? curl_multi_init() : nullptr;
  if (multi_ == nullptr) {
    throw Failure(ExitCode::CouldNot, "the network library does not start; try again");
  }
  curl_multi_setopt(multi_, CURLMOPT_MAX_HOST_CONNECTIONS, static_cast<long>(kAtOnce));
  curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, kConnectionsKept);
  curl_multi_setopt(multi_, CURLMOPT_PIPELINING,
                    mayShareConnections() ? CURLPIPE_MULTIPLEX : CURLPIPE_NOTHING);
}

Fetcher::~Fetcher() {
  if (!isInterrupted()) curl_multi_cleanup(multi_);
}

std::vector<FetchResult> Fetcher::fetch(const std::vector<FetchRequest>& requests) {
  return Session(multi_, limits_, requests).run();
}

FetchResult Fetcher::fetch(const FetchRequest& request) {
  return fetch(std::vector{request}).front();
}

}  // namespace tool
