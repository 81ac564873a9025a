#include "tools/kesu-dev/collector/Collector.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "foundation/Json.h"
#include "tools/kesu-dev/base/Text.h"
#include "tools/kesu-dev/collector/WebPage.h"
#include "tools/kesu-dev/http/Arrival.h"
#include "tools/kesu-dev/http/EventStream.h"
#include "tools/kesu-dev/http/RequestGuard.h"
#include "tools/kesu-dev/records/KeyTable.h"
#include "tools/kesu-dev/records/RecordCheck.h"

namespace kesu::dev {
namespace {

constexpr std::int64_t kDefaultLimit = 100;
constexpr std::int64_t kHighestLimit = 10'000;
constexpr int kMostFollowers = 16;

std::int64_t numberParameter(const loopback::Request& request, std::string_view name, std::int64_t otherwise) {
  const auto text = request.parameter(name);
  return text ? parseDecimal(*text).value_or(otherwise) : otherwise;
}

StoredRecord arrival(const loopback::Request& request, const std::string& body) {
  CheckResult check = checkRecord({request.header("t"), request.header("v"), request.header("Content-Type"), body});
  StoredRecord record = arrivalOf(request, body);
  record.destination = request.header("t");
  record.bodyIsObject = check.isObject;
  record.messageId = std::move(check.messageId);
  record.reasons = std::move(check.reasons);
  record.wasStored = check.wasStored;
  return record;
}

loopback::Reply acceptedReply(const StoredRecord& record, bool strict) {
  if (record.good()) {
    loopback::Reply reply;
    reply.body = R"({"ok":true})";
    return reply;
  }
  return reasonsReply(record.reasons, strict ? 400 : 200);
}

loopback::Reply faultsReply(const loopback::FaultTable& faults) {
  Array list;
  for (const loopback::Fault& fault : faults.all()) {
    list.emplace_back(loopback::describeFault(fault));
  }
  return jsonReply({{"faults", std::move(list)}});
}

// A body with one fault, or with an array of them. Nothing and a sentence in `error` when one makes no sense.
std::vector<loopback::Fault> faultsFrom(const std::string& body, std::string& error) {
  const std::optional<Value> parsed = parseJson(body);
  if (!parsed) {
    error = "the body is not valid JSON";
    return {};
  }
  std::vector<loopback::Fault> faults;
  for (const Value& value : parsed->array() != nullptr ? *parsed->array() : Array{*parsed}) {
    if (std::optional<loopback::Fault> fault = loopback::faultFromJson(value, error)) {
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
    {"GET", "/", &Collector::page},
    {"GET", "/help", &Collector::help},
    {"GET", "/all", &Collector::all},
    {"GET", "/good", &Collector::good},
    {"GET", "/bad", &Collector::bad},
    {"GET", "/events", &Collector::events},
    {"GET", "/messages", &Collector::messages},
    {"GET", "/keys", &Collector::keys},
    {"GET", "/health", &Collector::health},
    {"GET", "/reset", &Collector::reset},
    {"POST", "/reset", &Collector::reset},
    {"GET", "/faults", &Collector::listFaults},
    {"POST", "/faults", &Collector::addFaults},
    {"PUT", "/faults", &Collector::replaceFaults},
    {"DELETE", "/faults", &Collector::removeFaults},
};

Collector::Collector(RecordStore& store, loopback::FaultTable& faults, MessagingService& messaging, Options options)
    : store_(store), faults_(faults), faulty_(faults), messaging_(messaging), options_(options) {}

loopback::Reply Collector::handle(loopback::Request& request) {
  const std::string refused =
      refusal({request.header("Host"), request.header("Origin"), request.header("Sec-Fetch-Site")}, port_);
  if (!refused.empty()) {
    return loopback::Reply::error(421, refused);
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
  if (constexpr std::string_view kImages = MessagingService::kImagePath;
      method == "GET" && request.path.starts_with(kImages)) {
    return messaging_.image(std::string_view(request.path).substr(kImages.size()));
  }
  return knownPath ? loopback::Reply::error(405, "this route does not know " + request.method)
                   : loopback::Reply::error(404, "there is nothing here; GET /help lists what there is");
}

void Collector::interrupt() {
  faults_.clear();
  store_.interrupt();
}

loopback::Reply Collector::takeRecord(loopback::Request& request) {
  return faulty_.handle(request,
                        [this](loopback::Request& whole, const std::string& body) { return accept(whole, body); });
}

loopback::Reply Collector::accept(loopback::Request& request, const std::string& body) {
  const std::optional<StoredRecord> record = store_.add(arrival(request, body));
  return record ? acceptedReply(*record, options_.strict) : loopback::Reply::error(507, "the record cannot be stored");
}

loopback::Reply Collector::page(loopback::Request&) {
  loopback::Reply reply;
  reply.contentType = "text/html; charset=utf-8";
  // The page shows what anybody posted: nothing in it may run or load from elsewhere.
  reply.headers.emplace_back("Content-Security-Policy",
                             "default-src 'none'; script-src 'unsafe-inline'; style-src 'unsafe-inline'; "
                             "img-src 'self' data:; connect-src 'self'; base-uri 'none'; form-action 'none'");
  reply.headers.emplace_back("Cache-Control", "no-cache");
  reply.body = webPage();
  return reply;
}

loopback::Reply Collector::help(loopback::Request&) {
  return loopback::Reply::error(200,
                                "kesu-dev collector\n"
                                "  GET  /          a page that shows all this live\n"
                                "  POST /collect   one record\n"
                                "  GET  /all       counts\n"
                                "  GET  /good      good records (?after=ID&limit=N)\n"
                                "  GET  /bad       bad records and requests, with what is wrong\n"
                                "  GET  /events    records as they arrive (server-sent events)\n"
                                "  GET  /messages  the messages served, with their receipts and button presses\n"
                                "  GET  /keys      what the short keys mean\n"
                                "  GET  /faults    faults switched on; POST adds, PUT replaces, DELETE removes\n"
                                "  POST /reset     forget all records and who fetched which message\n"
                                "  GET  /health    whether this runs");
}

loopback::Reply Collector::messages(loopback::Request&) {
  return jsonReply(messaging_.report());
}

loopback::Reply Collector::all(loopback::Request&) {
  Dictionary counts = describeCounts(store_.counts());
  counts.set("faultHits", faults_.hits());
  return jsonReply(counts);
}

loopback::Reply Collector::good(loopback::Request& request) {
  return list(RecordStore::Which::Good, request);
}

loopback::Reply Collector::bad(loopback::Request& request) {
  return list(RecordStore::Which::Bad, request);
}

loopback::Reply Collector::list(RecordStore::Which which, loopback::Request& request) {
  const std::int64_t limit =
      std::clamp<std::int64_t>(numberParameter(request, "limit", kDefaultLimit), 1, kHighestLimit);
  const auto records = store_.read(which, numberParameter(request, "after", 0), static_cast<std::size_t>(limit));
  loopback::Reply reply;
  reply.body = R"({"records":[)";
  for (const StoredRecord& record : records) {
    reply.body += &record == records.data() ? "" : ",";
    appendJson(record, reply.body);
  }
  const std::int64_t last = records.empty() ? numberParameter(request, "after", 0) : records.back().id;
  reply.body += "],\"last\":" + std::to_string(last) + "}";
  return reply;
}

loopback::Reply Collector::events(loopback::Request& request) {
  // Counted until the reply is gone, whichever way it goes.
  const std::shared_ptr<void> place(nullptr, [this](void*) { --followers_; });
  if (++followers_ > kMostFollowers) {
    return loopback::Reply::error(503, "too many follow the events already");
  }
  loopback::Reply reply;
  reply.contentType = "text/event-stream";
  reply.headers.emplace_back("Cache-Control", "no-store");
  const auto after = resumePoint(request.header("Last-Event-ID"), request.parameter("after"));
  reply.stream = [this, after, place, isGone = request.isGone](const loopback::Reply::Write& write) {
    followRecords(store_, after, write, isGone);
  };
  return reply;
}

loopback::Reply Collector::keys(loopback::Request&) {
  Dictionary tables = describeKeys();
  Array routes;
  for (const MessagingRoute& route : messagingRoutes()) {
    routes.emplace_back(route.productionPath);
    routes.emplace_back(route.developmentPath);
  }
  tables.set("messagingRoutes", std::move(routes));
  return jsonReply(tables);
}

loopback::Reply Collector::health(loopback::Request&) {
  return jsonReply(
      {{"ok", true}, {"strict", options_.strict}, {"records", store_.identity()}, {"last", store_.news().lastId}});
}

loopback::Reply Collector::reset(loopback::Request& request) {
  std::string body;
  if (request.method == "POST") {
    request.readBody(body);
  }
  messaging_.reset();
  return store_.reset() ? jsonReply({{"ok", true}}) : loopback::Reply::error(500, "the records cannot be removed");
}

loopback::Reply Collector::listFaults(loopback::Request&) {
  return faultsReply(faults_);
}

loopback::Reply Collector::addFaults(loopback::Request& request) {
  return setFaults(request, false);
}

loopback::Reply Collector::replaceFaults(loopback::Request& request) {
  return setFaults(request, true);
}

loopback::Reply Collector::setFaults(loopback::Request& request, bool replaces) {
  std::string body;
  std::string error;
  if (!request.readBody(body)) {
    return loopback::Reply::error(413, "the faults are too long");
  }
  std::vector<loopback::Fault> faults = faultsFrom(body, error);
  if (!error.empty()) {
    return loopback::Reply::error(400, error);
  }
  for (const loopback::Fault& fault : faults) {
    if (replaces) {
      faults_.remove(fault.route);
    }
  }
  for (loopback::Fault& fault : faults) {
    faults_.add(std::move(fault));
  }
  return faultsReply(faults_);
}

loopback::Reply Collector::removeFaults(loopback::Request& request) {
  if (const auto route = request.parameter("route")) {
    faults_.remove(*route);
  } else {
    faults_.clear();
  }
  return faultsReply(faults_);
}

}  // namespace kesu::dev
