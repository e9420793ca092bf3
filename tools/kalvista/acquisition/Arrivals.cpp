#include "acquisition/Arrivals.h"

#include <unistd.h>

#include <algorithm>

#include "acquisition/ArrivalCheck.h"
#include "acquisition/FileCopy.h"

namespace tool {
namespace {

using State = Delivery::State;

}  // namespace

Arrivals::Arrivals(const std::string& directory, unsigned long serial, Repository& repository)
    : directory_(directory),
      serial_(serial),
      repository_(repository),
      work_(directory),
      status_(inspectCalibration(directory, serial)) {
  for (const CalibrationFile& file : status_.files) states_[file.name] = file.state;
}

// The XML file comes first, since it names the others, and with it what they are held against.
void Arrivals::bringAll() {
  bring({xmlName(), sealName(serial_)});
  const Delivery xml = deliveries_.front();
  const auto isUnanswered = [](const Delivery& one) { return one.exitCode == ExitCode::CouldNot; };
  if (std::any_of(deliveries_.begin(), deliveries_.end(), isUnanswered)) return;
  std::set<std::string> seen = {xmlName(), sealName(serial_)};
  std::vector<std::string> names;
  const auto add = [&](const std::vector<std::string>& added) {
    for (const std::string& name : added) {
      if (seen.insert(name).second) names.push_back(name);
    }
  };
  add(requiredNames(xml.state == State::Brought ? work_.path() : directory_, serial_));
  add(repository_.namesOf(serial_));
  bring(names);
  holdAgainstSeal();
}

void Arrivals::bring(const std::vector<std::string>& names) {
  std::vector<WantedFile> wanted;
  for (const std::string& name : names) {
    if (name.find('/') != std::string::npos) continue;
    if (isUsable(name)) present_.insert(name);
    wanted.push_back({name, isPresent(name) ? directory_ + "/" + name : ""});
  }
  for (Delivery& delivery : repository_.bring(serial_, wanted, work_)) {
    judge(&delivery);
    deliveries_.push_back(delivery);
  }
}

// A file that the calibration does not ask for may be there as well, such as a seal.
bool Arrivals::isUsable(const std::string& name) const {
  const auto known = states_.find(name);
  return known != states_.end() ? known->second == FileState::Present
                                : access((directory_ + "/" + name).c_str(), R_OK) == 0;
}

void Arrivals::judge(Delivery* delivery) const {
  if (delivery->state != State::Brought) return;
  const std::string& name = delivery->name;
  const std::string fault = whatIsWrongWith(work_.pathOf(name), serial_);
  if (!fault.empty()) {
    // A page in place of a seal says that there is none.
    *delivery = {name, name == sealName(serial_) ? State::Absent : State::Failed,
                 ExitCode::AnswerIsNo, repository_.shownName() + ": the file that came " + fault,
                 "get a whole one from elsewhere"};
  } else if (isPresent(name) && haveSameContent(work_.pathOf(name), directory_ + "/" + name)) {
    delivery->state = State::Same;
  }
}

// What came is held against the seal that came along, or else against the one that is there, unless
// the file replaces one that was sealed.
void Arrivals::holdAgainstSeal() {
  Delivery* sealDelivery = deliveryOf(sealName(serial_));
  const bool isNew = sealDelivery->state == State::Brought;
  const Seal seal = Seal::read(isNew ? work_.path() : directory_, serial_);
  for (Delivery& delivery : deliveries_) {
    const bool isReplacement = !isNew && isPresent(delivery.name);
    if (delivery.state != State::Brought || &delivery == sealDelivery || isReplacement) continue;
    if (seal.holds(work_.path(), delivery.name)) continue;
    delivery.state = State::Failed;
    delivery.exitCode = ExitCode::AnswerIsNo;
    delivery.problem = repository_.shownName() + ": the file that came does not fit the seal " +
                       sealName(serial_) + (isNew ? "" : " that is present");
    delivery.remedy = "get a whole one from elsewhere";
  }
  const std::string refused = isNew ? whatSealRefuses(seal) : "";
  if (refused.empty()) return;
  *sealDelivery = {sealDelivery->name, State::Failed, ExitCode::AnswerIsNo,
                   repository_.shownName() + ": the seal " + refused,
                   "have the repository sealed again"};
}

// Of a new seal and what stays beside it.
std::string Arrivals::whatSealRefuses(const Seal& seal) const {
  if (!seal.isWhole()) return "is cut short, or none";
  for (const Delivery& delivery : deliveries_) {
    const bool stays = delivery.state == State::Same;
    if (stays && delivery.name != sealName(serial_) && !seal.holds(directory_, delivery.name)) {
      return "does not fit the file " + delivery.name + " beside it";
    }
  }
  return "";
}

Delivery* Arrivals::deliveryOf(const std::string& name) {
  return &*std::find_if(deliveries_.begin(), deliveries_.end(),
                        [&name](const Delivery& delivery) { return delivery.name == name; });
}

std::vector<const Delivery*> Arrivals::failures() const {
  std::vector<const Delivery*> result;
  const bool isWholeSetNeeded = isRecalibrated();
  for (const Delivery& delivery : deliveries_) {
    const bool isNeeded =
        delivery.name != sealName(serial_) && (isWholeSetNeeded || !isPresent(delivery.name));
    if (delivery.state == State::Failed || (delivery.state == State::Absent && isNeeded)) {
      result.push_back(&delivery);
    }
  }
  return result;
}

std::vector<std::string> Arrivals::brought(bool present) const {
  std::vector<std::string> names;
  for (const Delivery& delivery : deliveries_) {
    if (delivery.state == State::Brought && isPresent(delivery.name) == present) {
      names.push_back(delivery.name);
    }
  }
  return names;
}

bool Arrivals::isRecalibrated() const {
  const std::vector<std::string> names = differing();
  return std::find(names.begin(), names.end(), xmlName()) != names.end();
}

std::vector<std::string> Arrivals::place(std::vector<std::string> names) {
  std::stable_partition(names.begin(), names.end(),
                        [this](const std::string& name) { return name != xmlName(); });
  if (!names.empty()) work_.place(names);
  return names;
}

bool Arrivals::removeFormerSeal() const {
  const Seal seal = Seal::read(directory_, serial_);
  const bool isBroken =
      std::any_of(deliveries_.begin(), deliveries_.end(), [&](const Delivery& delivery) {
        return delivery.state == State::Brought && !seal.holds(directory_, delivery.name);
      });
  return isBroken && unlink((directory_ + "/" + sealName(serial_)).c_str()) == 0;
}

}  // namespace tool
