#include "acquisition/WebRepository.h"

#include <sys/stat.h>
#include <sys/xattr.h>

#include "acquisition/Address.h"
#include "acquisition/LinksDocument.h"
#include "answer/Console.h"
#include "camera/Seal.h"

namespace tool {
namespace {

constexpr std::size_t kLongestTag = 1024;
constexpr const char* kRemedy = "check the network and the proxy, or use \"kalvista copy\"";
constexpr const char* kRemedyOfAbsence =
    "check the serial number, or get the calibration from elsewhere";

// One file, as long as no server has given it.
struct Open {
  const WantedFile* wanted;
  Delivery* delivery;
};

// By what the server tells; size and time at the least.
bool isTheSame(const FetchResult& told, const std::string& present) {
  struct stat status {};
  stat(present.c_str(), &status);
  char tag[kLongestTag];
  const ssize_t length = getxattr(present.c_str(), kTagAttribute, tag, sizeof tag);
  const bool hasTags = length > 0 && !told.tag.empty();
  if (hasTags && told.tag != std::string(tag, static_cast<std::size_t>(length))) return false;
  return told.fault == FetchFault::None && told.modified == status.st_mtime &&
         told.size == static_cast<std::uintmax_t>(status.st_size);
}

// A server that forbids what it does not have is believed about seals, which need not be there.
bool isAbsentHere(const FetchResult& result, unsigned long serial, const std::string& name) {
  return result.fault == FetchFault::Absent ||
         (result.fault == FetchFault::Refused && name == sealName(serial));
}

void judge(const FetchResult& result, const std::string& address, unsigned long serial,
           Delivery* delivery) {
  if (result.fault == FetchFault::None) {
    delivery->state = Delivery::State::Brought;
    return;
  }
  const bool isAbsent = isAbsentHere(result, serial, delivery->name);
  delivery->state = isAbsent ? Delivery::State::Absent : Delivery::State::Failed;
  delivery->exitCode = isAbsent ? ExitCode::AnswerIsNo : ExitCode::CouldNot;
  delivery->problem = shownAddress(address) + ": " + result.cause;
  delivery->remedy = isAbsent ? kRemedyOfAbsence : kRemedy;
}

// What a server can say of files that are present already costs no body.
void settleTheSame(Fetcher& fetcher, const std::string& base, unsigned long serial,
                   std::vector<Open>* open) {
  std::vector<FetchRequest> requests;
  std::vector<Open> rest;
  std::vector<Open> asked;
  for (const Open& one : *open) {
    (one.wanted->present.empty() ? rest : asked).push_back(one);
    if (!one.wanted->present.empty()) {
      requests.push_back({addressOf(base, serial, one.wanted->name), ""});
    }
  }
  const std::vector<FetchResult> told = fetcher.fetch(requests);
  for (std::size_t i = 0; i < asked.size(); ++i) {
    if (isTheSame(told[i], asked[i].wanted->present)) {
      asked[i].delivery->state = Delivery::State::Same;
    } else if (told[i].fault != FetchFault::None && told[i].fault != FetchFault::Refused) {
      judge(told[i], requests[i].address, serial, asked[i].delivery);
    } else {
      rest.push_back(asked[i]);
    }
  }
  *open = rest;
}

void fetchAll(Fetcher& fetcher, const std::string& base, unsigned long serial,
              const std::vector<Open>& open, const WorkFolder& work) {
  std::vector<FetchRequest> requests;
  requests.reserve(open.size());
  for (const Open& one : open) {
    requests.push_back({addressOf(base, serial, one.wanted->name), work.pathOf(one.wanted->name)});
  }
  const std::vector<FetchResult> results = fetcher.fetch(requests);
  for (std::size_t i = 0; i < open.size(); ++i) {
    judge(results[i], requests[i].address, serial, open[i].delivery);
  }
}

}  // namespace

WebRepository::WebRepository(const FetchLimits& limits, const std::string& mirror)
    : fetcher_(limits) {
  if (!mirror.empty()) bases_.push_back(mirror);
}

std::string WebRepository::shownName() const { return shownAddress(bases_.front()); }

std::vector<std::string> WebRepository::namesOf(unsigned long) { return {}; }

std::vector<Delivery> WebRepository::bring(unsigned long serial,
                                           const std::vector<WantedFile>& wanted,
                                           const WorkFolder& work) {
  if (bases_.empty()) bases_ = fetchLinks(fetcher_, kLinksAddress, work);
  std::vector<Delivery> deliveries(wanted.size());
  std::vector<Open> all;
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    deliveries[i].name = wanted[i].name;
    all.push_back({&wanted[i], &deliveries[i]});
  }
  for (const std::string& base : bases_) {
    std::vector<Open> open;
    for (const Open& one : all) {
      if (one.delivery->state >= Delivery::State::Absent) open.push_back(one);
    }
    if (!isWebAddress(base)) {
      FetchResult refused;
      refused.fault = FetchFault::Refused;
      refused.cause = "it is no http or https address";
      for (const Open& one : open) judge(refused, base, serial, one.delivery);
      continue;
    }
    settleTheSame(fetcher_, base, serial, &open);
    fetchAll(fetcher_, base, serial, open, work);
  }
  return deliveries;
}

}  // namespace tool
