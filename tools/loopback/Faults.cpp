#include "tools/loopback/Faults.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kesu::loopback {
namespace {

constexpr std::int64_t kLongestDelayMs = std::int64_t{10} * 60 * 1000;
constexpr int kDefaultRedirectStatus = 307;

constexpr std::array<std::string_view, 10> kKnownKeys{"route", "status",    "delayMs",     "hang",     "close",
                                                      "times", "lostReply", "garbageBody", "redirect", "hits"};

bool isSwitchedOn(const Dictionary& from, std::string_view key) {
  const Value* value = from.find(key);
  return value != nullptr && value->boolean() != nullptr && *value->boolean();
}

std::vector<FaultKind> kindsNamed(const Dictionary& from) {
  std::vector<FaultKind> kinds;
  if (isSwitchedOn(from, "hang")) {
    kinds.push_back(FaultKind::Hang);
  }
  if (const std::string* when = from.findText("close")) {
    kinds.push_back(*when == "before" ? FaultKind::CloseBefore : FaultKind::CloseAfter);
  }
  if (isSwitchedOn(from, "lostReply")) {
    kinds.push_back(FaultKind::LostReply);
  }
  if (isSwitchedOn(from, "garbageBody")) {
    kinds.push_back(FaultKind::Garbage);
  }
  if (from.findText("redirect") != nullptr) {
    kinds.push_back(FaultKind::Redirect);
  }
  return kinds;
}

std::string textFault(const Dictionary& from) {
  for (const auto& entry : from) {
    if (std::find(kKnownKeys.begin(), kKnownKeys.end(), entry.key) == kKnownKeys.end()) {
      return "unknown key \"" + entry.key + "\"";
    }
  }
  const std::string* route = from.findText("route");
  if (route == nullptr || (*route != "*" && !route->starts_with('/'))) {
    return "\"route\" must be a path such as \"/collect\" or \"*\"";
  }
  const std::string* when = from.findText("close");
  if (from.contains("close") && (when == nullptr || (*when != "before" && *when != "after"))) {
    return "\"close\" must be \"before\" or \"after\"";
  }
  const std::string* target = from.findText("redirect");
  if (target != nullptr && target->find_first_of("\r\n") != std::string::npos) {
    return "\"redirect\" must be a URL";
  }
  return {};
}

// Reads a whole number into `number` when the key is there. False when it is there and is none, or lies outside.
bool readNumber(const Dictionary& from, std::string_view key, std::int64_t lowest, std::int64_t highest,
                std::optional<std::int64_t>& number) {
  const Value* value = from.find(key);
  if (value == nullptr) {
    return true;
  }
  number = value->integerValue();
  return value->integer() != nullptr && *number >= lowest && *number <= highest;
}

struct Numbers {
  std::optional<std::int64_t> status;
  std::optional<std::int64_t> delayMs;
  std::optional<std::int64_t> times;
};

std::string readNumbers(const Dictionary& from, Numbers& numbers) {
  if (!readNumber(from, "status", 200, 599, numbers.status)) {
    return "\"status\" must be a number from 200 to 599";
  }
  if (!readNumber(from, "delayMs", 0, kLongestDelayMs, numbers.delayMs)) {
    return "\"delayMs\" must be a number from 0 to 600000";
  }
  if (!readNumber(from, "times", 1, INT64_MAX, numbers.times)) {
    return "\"times\" must be a number from 1 on";
  }
  return {};
}

FaultKind kindOf(const std::vector<FaultKind>& named, bool hasStatus) {
  if (!named.empty()) {
    return named.front();
  }
  return hasStatus ? FaultKind::Status : FaultKind::Delay;
}

std::string kindFault(const std::vector<FaultKind>& named, FaultKind kind, const Numbers& numbers) {
  if (named.size() > 1) {
    return "one fault does one thing: hang, close, lostReply, garbageBody or redirect";
  }
  if (kind == FaultKind::Delay && !numbers.delayMs) {
    return "say what goes wrong: status, delayMs, hang, close, lostReply, garbageBody or redirect";
  }
  return {};
}

std::int64_t defaultStatus(FaultKind kind) {
  return kind == FaultKind::Redirect ? kDefaultRedirectStatus : 200;
}

void describeKind(const Fault& fault, Dictionary& out) {
  switch (fault.kind) {
    case FaultKind::Delay:
      break;
    case FaultKind::Status:
      out.set("status", fault.status);
      break;
    case FaultKind::Hang:
      out.set("hang", true);
      break;
    case FaultKind::CloseBefore:
      out.set("close", "before");
      break;
    case FaultKind::CloseAfter:
      out.set("close", "after");
      break;
    case FaultKind::LostReply:
      out.set("lostReply", true);
      break;
    case FaultKind::Garbage:
      out.set("garbageBody", true);
      out.set("status", fault.status);
      break;
    case FaultKind::Redirect:
      out.set("redirect", fault.location);
      out.set("status", fault.status);
      break;
    case FaultKind::Raw:
    case FaultKind::Reset:
    case FaultKind::Endless:
    case FaultKind::Drip:
      break;
  }
}

}  // namespace

std::optional<Fault> faultFromJson(const Value& value, std::string& error) {
  const Dictionary* from = value.dictionary();
  error = from == nullptr ? "a fault is a JSON object" : textFault(*from);
  Numbers numbers;
  if (error.empty()) {
    error = readNumbers(*from, numbers);
  }
  if (!error.empty()) {
    return std::nullopt;
  }
  const std::vector<FaultKind> named = kindsNamed(*from);
  Fault fault;
  fault.kind = kindOf(named, numbers.status.has_value());
  error = kindFault(named, fault.kind, numbers);
  fault.route = *from->findText("route");
  fault.delay = std::chrono::milliseconds(numbers.delayMs.value_or(0));
  fault.status = static_cast<int>(numbers.status.value_or(defaultStatus(fault.kind)));
  fault.times = numbers.times;
  if (fault.kind == FaultKind::Redirect) {
    fault.location = *from->findText("redirect");
  }
  return error.empty() ? std::optional<Fault>(std::move(fault)) : std::nullopt;
}

Fault Fault::reply(int status, std::string body) {
  Fault fault;
  fault.kind = FaultKind::Status;
  fault.status = status;
  fault.body = std::move(body);
  return fault;
}

Fault Fault::redirect(int status, std::string location) {
  Fault fault;
  fault.kind = FaultKind::Redirect;
  fault.status = status;
  fault.location = std::move(location);
  return fault;
}

Fault Fault::hang() {
  Fault fault;
  fault.kind = FaultKind::Hang;
  return fault;
}

Fault Fault::reset() {
  Fault fault;
  fault.kind = FaultKind::Reset;
  return fault;
}

Fault Fault::raw(std::string bytes) {
  Fault fault;
  fault.kind = FaultKind::Raw;
  fault.body = std::move(bytes);
  return fault;
}

Fault Fault::cutBody(std::size_t promised, const std::string& sent) {
  return raw("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(promised) + "\r\n\r\n" + sent);
}

Fault Fault::badGzip() {
  Fault fault = reply(200, "this was never compressed");
  fault.headers.emplace_back("Content-Encoding", "gzip");
  return fault;
}

Fault Fault::endless(std::uint64_t length) {
  Fault fault;
  fault.kind = FaultKind::Endless;
  fault.length = length;
  return fault;
}

Fault Fault::drip(std::string bytes, std::string drop) {
  Fault fault = raw(std::move(bytes));
  fault.kind = FaultKind::Drip;
  fault.drop = std::move(drop);
  return fault;
}

Dictionary describeFault(const Fault& fault) {
  Dictionary out{{"route", fault.route}};
  describeKind(fault, out);
  if (fault.delay.count() > 0 || fault.kind == FaultKind::Delay) {
    out.set("delayMs", static_cast<std::int64_t>(fault.delay.count()));
  }
  if (fault.times) {
    out.set("times", *fault.times);
  }
  out.set("hits", fault.hits);
  return out;
}

bool routeMatches(std::string_view route, std::string_view path) {
  if (route.ends_with('*')) {
    return path.starts_with(route.substr(0, route.size() - 1));
  }
  return route == path;
}

void FaultTable::add(Fault fault) {
  const MutexLock lock(mutex_);
  faults_.push_back(std::move(fault));
}

void FaultTable::remove(std::string_view route) {
  const MutexLock lock(mutex_);
  std::erase_if(faults_, [&](const Fault& fault) { return fault.route == route; });
  ++removals_;
  removed_.notify_all();
}

void FaultTable::clear() {
  const MutexLock lock(mutex_);
  faults_.clear();
  ++removals_;
  removed_.notify_all();
}

std::optional<FaultTable::Hit> FaultTable::hit(std::string_view path) {
  const MutexLock lock(mutex_);
  const auto found = std::find_if(faults_.begin(), faults_.end(), [&](const Fault& fault) {
    return routeMatches(fault.route, path) && fault.times.value_or(1) > 0;
  });
  if (found == faults_.end()) {
    return std::nullopt;
  }
  if (found->times) {
    --*found->times;
  }
  ++found->hits;
  ++hits_;
  return Hit{*found, removals_};
}

std::vector<Fault> FaultTable::all() const {
  const MutexLock lock(mutex_);
  return faults_;
}

std::int64_t FaultTable::hits() const {
  const MutexLock lock(mutex_);
  return hits_;
}

bool FaultTable::waitForRemoval(const Hit& hit, std::chrono::milliseconds patience) const {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  const MutexLock lock(mutex_);
  while (removals_ == hit.removals && removed_.wait_until(mutex_, deadline) == std::cv_status::no_timeout) {
  }
  return removals_ != hit.removals;
}

}  // namespace kesu::loopback
