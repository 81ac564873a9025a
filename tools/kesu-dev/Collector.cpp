#include "Collector.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

#include "EventStream.h"
#include "KeyTable.h"
#include "RecordCheck.h"
#include "RequestGuard.h"
#include "Text.h"
#include "foundation/Json.h"

namespace kesu::dev {
namespace {

constexpr std::int64_t kDefaultLimit = 100;
constexpr std::int64_t kHighestLimit = 10'000;
constexpr int kMostFollowers = 16;
constexpr std::chrono::milliseconds kLookInterval{100};
constexpr std::string_view kGarbage = "\xC3\x28{]\" this is no JSON \x01\xFF";

HttpReply jsonReply(const Dictionary& body, int status = 200) {
  HttpReply reply;
  reply.status = status;
  reply.body = jsonText(body);
  return reply;
}

std::int64_t numberParameter(const HttpRequest& request, std::string_view name, std::int64_t otherwise) {
  const auto text = request.parameter(name);
  return text ? parseDecimal(*text).value_or(otherwise) : otherwise;
}

std::string headersText(const HttpRequest& request) {
  Dictionary headers;
  for (const auto& [name, value] : request.headers) {
    headers.set(validUtf8(name), validUtf8(value));
  }
  return jsonText(headers);
}

StoredRecord arrival(const HttpRequest& request, const std::string& body) {
  CheckResult check = checkRecord({request.header("t"), request.header("v"), request.header("Content-Type"), body});
  StoredRecord record;
  record.arrivedMs = nowMilliseconds();
  record.path = request.path;
  record.destination = request.header("t");
  record.headers = headersText(request);
  record.body = body;
  record.bodyIsObject = check.isObject;
  record.messageId = std::move(check.messageId);
  record.reasons = std::move(check.reasons);
  record.wasStored = check.wasStored;
  return record;
}

HttpReply acceptedReply(const StoredRecord& record, bool strict) {
  if (record.good()) {
    HttpReply reply;
    reply.body = R"({"ok":true})";
    return reply;
  }
  Array reasons;
  for (const std::string& reason : record.reasons) {
    reasons.emplace_back(validUtf8(reason));
  }
  return jsonReply({{"ok", false}, {"reasons", std::move(reasons)}}, strict ? 400 : 200);
}

// What is wrong with how the body is announced, before any of it is read.
std::optional<HttpReply> bodyRefusal(const HttpRequest& request) {
  if (request.header("Content-Length").empty() && request.header("Transfer-Encoding").empty()) {
    return HttpReply::error(411, "a record needs a Content-Length");
  }
  if (lowerAscii(request.header("Content-Type")).starts_with("multipart/form-data")) {
    return HttpReply::error(415, "a record is one JSON object, not a form");
  }
  return std::nullopt;
}

HttpReply faultsReply(const FaultTable& faults) {
  Array list;
  for (const Fault& fault : faults.all()) {
    list.emplace_back(describeFault(fault));
  }
  return jsonReply({{"faults", std::move(list)}});
}

// A body with one fault, or with an array of them. Nothing and a sentence in `error` when one makes no sense.
std::vector<Fault> faultsFrom(const std::string& body, std::string& error) {
  const std::optional<Value> parsed = parseJson(body);
  if (!parsed) {
    error = "the body is not valid JSON";
    return {};
  }
  std::vector<Fault> faults;
  for (const Value& value : parsed->array() != nullptr ? *parsed->array() : Array{*parsed}) {
    if (std::optional<Fault> fault = faultFromJson(value, error)) {
      faults.push_back(std::move(*fault));
    } else {
      return {};
    }
  }
  return faults;
}

}  // namespace

struct Collector::RouteRow {
  std::string_view method;
  std::string_view path;
  Route route;
};

const Collector::RouteRow Collector::kRoutes[] = {
    {"GET", "/", &Collector::index},
    {"GET", "/all", &Collector::all},
    {"GET", "/good", &Collector::good},
    {"GET", "/bad", &Collector::bad},
    {"GET", "/events", &Collector::events},
    {"GET", "/keys", &Collector::keys},
    {"GET", "/health", &Collector::health},
    {"GET", "/reset", &Collector::reset},
    {"POST", "/reset", &Collector::reset},
    {"GET", "/faults", &Collector::listFaults},
    {"POST", "/faults", &Collector::addFaults},
    {"PUT", "/faults", &Collector::replaceFaults},
    {"DELETE", "/faults", &Collector::removeFaults},
};

Collector::Collector(RecordStore& store, FaultTable& faults, Options options)
    : store_(store), faults_(faults), options_(options) {}

HttpReply Collector::handle(HttpRequest& request) {
  const std::string refused =
      refusal({request.header("Host"), request.header("Origin"), request.header("Sec-Fetch-Site")}, port_);
  if (!refused.empty()) {
    return HttpReply::error(421, refused);
  }
  const std::string method = request.method == "HEAD" ? "GET" : request.method;
  bool knownPath = false;
  for (const RouteRow& row : kRoutes) {
    if (row.path == request.path && row.method == method) {
      return (this->*row.route)(request);
    }
    knownPath = knownPath || (row.path == request.path && row.path != "/");
  }
  if (method == "POST" && !knownPath) {
    return takeRecord(request);
  }
  return knownPath ? HttpReply::error(405, "this route does not know " + request.method)
                   : HttpReply::error(404, "there is nothing here; GET / lists what there is");
}

void Collector::interrupt() {
  faults_.clear();
  store_.interrupt();
}

HttpReply Collector::takeRecord(HttpRequest& request) {
  if (const auto hit = faults_.take(request.path)) {
    return suffer(*hit, request);
  }
  if (auto refused = bodyRefusal(request)) {
    return std::move(*refused);
  }
  std::string body;
  return request.readBody(body) ? accept(request, body) : HttpReply::error(413, "the record is too long");
}

HttpReply Collector::suffer(const FaultTable::Hit& hit, HttpRequest& request) {
  const Fault& fault = hit.fault;
  std::string body;
  if (fault.kind != FaultKind::CloseBefore && !request.readBody(body)) {
    return HttpReply::closed();
  }
  if (fault.delay.count() > 0) {
    faults_.waitForRemoval(hit, fault.delay);
  }
  const bool accepts = fault.status < 300;
  switch (fault.kind) {
    case FaultKind::Delay:
      return accept(request, body);
    case FaultKind::Status: {
      HttpReply reply = accepts ? accept(request, body) : HttpReply::error(fault.status, "a fault is switched on");
      reply.status = fault.status;
      return reply;
    }
    case FaultKind::Hang:
      return hang(hit, request);
    case FaultKind::CloseBefore:
    case FaultKind::CloseAfter:
      return HttpReply::closed();
    case FaultKind::LostReply:
      accept(request, body);
      return HttpReply::closed();
    case FaultKind::Garbage: {
      HttpReply reply = accepts ? accept(request, body) : HttpReply();
      reply.status = fault.status;
      reply.body = kGarbage;
      return reply;
    }
    case FaultKind::Redirect: {
      HttpReply reply = HttpReply::error(fault.status, "a fault is switched on");
      reply.headers.emplace_back("Location", fault.location);
      return reply;
    }
  }
  return HttpReply::closed();
}

HttpReply Collector::accept(HttpRequest& request, const std::string& body) {
  const std::optional<StoredRecord> record = store_.add(arrival(request, body));
  return record ? acceptedReply(*record, options_.strict) : HttpReply::error(507, "the record cannot be stored");
}

HttpReply Collector::hang(const FaultTable::Hit& hit, HttpRequest& request) {
  while (!request.isGone() && !faults_.waitForRemoval(hit, kLookInterval)) {
  }
  return HttpReply::closed();
}

HttpReply Collector::index(HttpRequest&) {
  HttpReply reply = HttpReply::error(200,
                                     "kesu-dev collector\n"
                                     "  POST /collect   one record\n"
                                     "  GET  /all       counts\n"
                                     "  GET  /good      good records (?after=ID&limit=N)\n"
                                     "  GET  /bad       bad records, with what is wrong\n"
                                     "  GET  /events    records as they arrive (server-sent events)\n"
                                     "  GET  /keys      what the short keys mean\n"
                                     "  GET  /faults    faults switched on; POST adds, PUT replaces, DELETE removes\n"
                                     "  POST /reset     forget all records\n"
                                     "  GET  /health    whether this runs");
  return reply;
}

HttpReply Collector::all(HttpRequest&) {
  Dictionary counts = describeCounts(store_.counts());
  counts.set("faultHits", faults_.hits());
  return jsonReply(counts);
}

HttpReply Collector::good(HttpRequest& request) {
  return list(RecordStore::Which::Good, request);
}

HttpReply Collector::bad(HttpRequest& request) {
  return list(RecordStore::Which::Bad, request);
}

HttpReply Collector::list(RecordStore::Which which, HttpRequest& request) {
  const std::int64_t limit =
      std::clamp<std::int64_t>(numberParameter(request, "limit", kDefaultLimit), 1, kHighestLimit);
  const auto records = store_.read(which, numberParameter(request, "after", 0), static_cast<std::size_t>(limit));
  HttpReply reply;
  reply.body = R"({"records":[)";
  for (const StoredRecord& record : records) {
    reply.body += &record == records.data() ? "" : ",";
    appendJson(record, reply.body);
  }
  const std::int64_t last = records.empty() ? numberParameter(request, "after", 0) : records.back().id;
  reply.body += "],\"last\":" + std::to_string(last) + "}";
  return reply;
}

HttpReply Collector::events(HttpRequest& request) {
  // Counted until the reply is gone, whichever way it goes.
  const std::shared_ptr<void> place(nullptr, [this](void*) { --followers_; });
  if (++followers_ > kMostFollowers) {
    return HttpReply::error(503, "too many follow the events already");
  }
  HttpReply reply;
  reply.contentType = "text/event-stream";
  reply.headers.emplace_back("Cache-Control", "no-store");
  const auto after = resumePoint(request.header("Last-Event-ID"), request.parameter("after"));
  reply.stream = [this, after, place, isGone = request.isGone](const HttpReply::Write& write) {
    followRecords(store_, after, write, isGone);
  };
  return reply;
}

HttpReply Collector::keys(HttpRequest&) {
  return jsonReply(describeKeys());
}

HttpReply Collector::health(HttpRequest&) {
  return jsonReply(
      {{"ok", true}, {"strict", options_.strict}, {"records", store_.identity()}, {"last", store_.news().lastId}});
}

HttpReply Collector::reset(HttpRequest& request) {
  std::string body;
  if (request.method == "POST") {
    request.readBody(body);
  }
  return store_.reset() ? jsonReply({{"ok", true}}) : HttpReply::error(500, "the records cannot be removed");
}

HttpReply Collector::listFaults(HttpRequest&) {
  return faultsReply(faults_);
}

HttpReply Collector::addFaults(HttpRequest& request) {
  return setFaults(request, false);
}

HttpReply Collector::replaceFaults(HttpRequest& request) {
  return setFaults(request, true);
}

HttpReply Collector::setFaults(HttpRequest& request, bool replaces) {
  std::string body;
  std::string error;
  if (!request.readBody(body)) {
    return HttpReply::error(413, "the faults are too long");
  }
  std::vector<Fault> faults = faultsFrom(body, error);
  if (!error.empty()) {
    return HttpReply::error(400, error);
  }
  for (const Fault& fault : faults) {
    if (replaces) {
      faults_.remove(fault.route);
    }
  }
  for (Fault& fault : faults) {
    faults_.add(std::move(fault));
  }
  return faultsReply(faults_);
}

HttpReply Collector::removeFaults(HttpRequest& request) {
  if (const auto route = request.parameter("route")) {
    faults_.remove(*route);
  } else {
    faults_.clear();
  }
  return faultsReply(faults_);
}

}  // namespace kesu::dev
