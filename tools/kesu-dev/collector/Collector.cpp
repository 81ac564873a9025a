#include "tools/kesu-dev/collector/Collector.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "foundation/Json.h"
#include "tools/kesu-dev/base/Text.h"
#include "tools/kesu-dev/collector/Arrival.h"
#include "tools/kesu-dev/collector/EventStream.h"
#include "tools/kesu-dev/collector/WebPage.h"
#include "tools/kesu-dev/http/RequestGuard.h"
#include "tools/kesu-dev/records/KeyTable.h"
#include "tools/kesu-dev/records/RecordCheck.h"

namespace kesu::dev {
namespace {

constexpr std::int64_t kDefaultLimit = 100;
constexpr std::int64_t kHighestLimit = 10'000;
constexpr int kMostFollowers = 16;

std::int64_t numberParameter(const HttpRequest& request, std::string_view name, std::int64_t otherwise) {
  const auto text = request.parameter(name);
  return text ? parseDecimal(*text).value_or(otherwise) : otherwise;
}

StoredRecord arrival(const HttpRequest& request, const std::string& body) {
  CheckResult check = checkRecord({request.header("t"), request.header("v"), request.header("Content-Type"), body});
  StoredRecord record = arrivalOf(request, body);
  record.destination = request.header("t");
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
  return reasonsReply(record.reasons, strict ? 400 : 200);
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

Collector::Collector(RecordStore& store, FaultTable& faults, MessagingService& messaging, Options options)
    : store_(store), faults_(faults), faulty_(faults), messaging_(messaging), options_(options) {}

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
  if (constexpr std::string_view kImages = MessagingService::kImagePath;
      method == "GET" && request.path.starts_with(kImages)) {
    return messaging_.image(std::string_view(request.path).substr(kImages.size()));
  }
  return knownPath ? HttpReply::error(405, "this route does not know " + request.method)
                   : HttpReply::error(404, "there is nothing here; GET /help lists what there is");
}

void Collector::interrupt() {
  faults_.clear();
  store_.interrupt();
}

HttpReply Collector::takeRecord(HttpRequest& request) {
  return faulty_.handle(request, [this](HttpRequest& whole, const std::string& body) { return accept(whole, body); });
}

HttpReply Collector::accept(HttpRequest& request, const std::string& body) {
  const std::optional<StoredRecord> record = store_.add(arrival(request, body));
  return record ? acceptedReply(*record, options_.strict) : HttpReply::error(507, "the record cannot be stored");
}

HttpReply Collector::page(HttpRequest&) {
  HttpReply reply;
  reply.contentType = "text/html; charset=utf-8";
  // The page shows what anybody posted: nothing in it may run or load from elsewhere.
  reply.headers.emplace_back("Content-Security-Policy",
                             "default-src 'none'; script-src 'unsafe-inline'; style-src 'unsafe-inline'; "
                             "img-src 'self' data:; connect-src 'self'; base-uri 'none'; form-action 'none'");
  reply.headers.emplace_back("Cache-Control", "no-cache");
  reply.body = webPage();
  return reply;
}

HttpReply Collector::help(HttpRequest&) {
  return HttpReply::error(200,
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

HttpReply Collector::messages(HttpRequest&) {
  return jsonReply(messaging_.report());
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
  Dictionary tables = describeKeys();
  Array routes;
  for (const MessagingRoute& route : messagingRoutes()) {
    routes.emplace_back(route.productionPath);
    routes.emplace_back(route.developmentPath);
  }
  tables.set("messagingRoutes", std::move(routes));
  return jsonReply(tables);
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
  messaging_.reset();
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
