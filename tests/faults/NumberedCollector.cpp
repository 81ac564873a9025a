#include "tests/faults/NumberedCollector.h"

#include <chrono>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "foundation/Json.h"

namespace kesu::testing {
namespace {

// How often a request that hangs looks whether its sender has gone.
constexpr std::chrono::milliseconds kLookInterval(20);

std::chrono::steady_clock::time_point deadlineAfter(double seconds) {
  return std::chrono::steady_clock::now() +
         std::chrono::duration_cast<std::chrono::steady_clock::duration>(std::chrono::duration<double>(seconds));
}

std::string textOf(const Dictionary& record, std::string_view key) {
  const std::string* text = record.findText(key);
  return text != nullptr ? *text : "";
}

}  // namespace

NumberedCollector::NumberedCollector() : server_([this](loopback::Request& request) { return handle(request); }) {
  if (!server_.bind(0) || !server_.start()) {
    throw std::runtime_error("NumberedCollector: no port");
  }
}

NumberedCollector::~NumberedCollector() {
  setMode(Mode::Refusing);
}

void NumberedCollector::setMode(Mode mode) {
  bool wasRefusing = false;
  {
    const MutexLock lock(mutex_);
    wasRefusing = std::exchange(mode_, mode) == Mode::Refusing;
    changed_.notify_all();
  }
  if (mode == Mode::Refusing) {
    server_.stop();
  } else if (wasRefusing && !server_.start()) {
    throw std::runtime_error("NumberedCollector: the port was taken");
  }
}

loopback::Reply NumberedCollector::handle(loopback::Request& request) {
  std::string body;
  if (!request.readBody(body)) {
    return loopback::Reply::closed();
  }
  const MutexLock lock(mutex_);
  switch (mode_) {
    case Mode::Up:
      accept(body);
      return {};
    case Mode::Refusing:
      break;
    case Mode::Failing:
      return loopback::Reply::error(500, "not now");
    case Mode::Hanging:
      while (mode_ == Mode::Hanging && !request.isGone()) {
        changed_.wait_for(mutex_, kLookInterval);
      }
      break;
  }
  return loopback::Reply::closed();
}

void NumberedCollector::accept(const std::string& body) {
  const auto parsed = parseJson(body);
  const Dictionary* record = parsed ? parsed->dictionary() : nullptr;
  if (record == nullptr) {
    others_.emplace_back();
    return;
  }
  const std::string identifier = textOf(*record, "msg_id");
  const bool isFirstOfRound = ofThisRound_.insert(identifier).second;
  round_.repeats += isFirstOfRound ? 0U : 1U;
  round_.copies += isFirstOfRound && byIdentifier_.contains(identifier) ? 1U : 0U;
  ++byIdentifier_[identifier];
  const Value* number = record->find("n");
  if (number != nullptr && number->integer() != nullptr) {
    ++byNumber_[*number->integer()];
    identities_[*number->integer()] = textOf(*record, "kaid");
  } else {
    others_.push_back(*record);
  }
  changed_.notify_all();
}

std::set<std::int64_t> NumberedCollector::missingAfter(const std::set<std::int64_t>& numbers, double seconds) {
  std::set<std::int64_t> missing = numbers;
  const MutexLock lock(mutex_);
  const auto isHere = [this](std::int64_t number) KESU_REQUIRES(mutex_) { return byNumber_.contains(number); };
  std::cv_status wait = std::cv_status::no_timeout;
  for (auto deadline = deadlineAfter(seconds); wait == std::cv_status::no_timeout;) {
    while (!missing.empty() && isHere(*missing.begin())) {  // The first only: each arrival would cost a look at all.
      missing.erase(missing.begin());
      deadline = deadlineAfter(seconds);
    }
    if (missing.empty()) {
      return missing;
    }
    wait = changed_.wait_until(mutex_, deadline);
  }
  std::erase_if(missing, isHere);
  return missing;
}

std::map<std::int64_t, int> NumberedCollector::byNumber() {
  const MutexLock lock(mutex_);
  return byNumber_;
}

std::map<std::string, int> NumberedCollector::byIdentifier() {
  const MutexLock lock(mutex_);
  return byIdentifier_;
}

std::vector<Dictionary> NumberedCollector::others(std::size_t count, double seconds) {
  const auto deadline = deadlineAfter(seconds);
  const MutexLock lock(mutex_);
  while (others_.size() < count && changed_.wait_until(mutex_, deadline) != std::cv_status::timeout) {
  }
  return others_;
}

std::map<std::int64_t, std::string> NumberedCollector::identities() {
  const MutexLock lock(mutex_);
  return identities_;
}

NumberedCollector::Round NumberedCollector::endRound() {
  constexpr std::chrono::seconds kPatience(60);
  if (!server_.waitForConnections(0, kPatience)) {
    throw std::runtime_error("NumberedCollector: a sender is still there");
  }
  const MutexLock lock(mutex_);
  ofThisRound_.clear();
  return std::exchange(round_, {});
}

}  // namespace kesu::testing
