#include "tools/kesu-dev/collector/Routes.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "foundation/Json.h"
#include "tools/kesu-dev/base/Fields.h"
#include "tools/kesu-dev/base/Text.h"
#include "tools/kesu-dev/collector/Collector.h"
#include "tools/kesu-dev/collector/WebPage.h"
#include "tools/kesu-dev/http/Arrival.h"
#include "tools/kesu-dev/http/EventStream.h"
#include "tools/kesu-dev/records/KeyTable.h"
#include "tools/kesu-dev/records/RecordCheck.h"
#include "tools/loopback/FaultyHandler.h"

namespace kesu::dev {
namespace {

using loopback::Reply;
using loopback::Request;

constexpr std::string_view kImages = "/images/*";
constexpr std::size_t kMethodColumns = 8;  // "DELETE" and an indent.
constexpr std::size_t kPathColumns = 11;
constexpr std::int64_t kDefaultLimit = 100;
constexpr std::int64_t kHighestLimit = 10'000;  // Some 10 MB of JSON.
constexpr int kMostFollowers = 16;              // Each occupies a thread of the server.

std::int64_t numberParameter(const Request& request, std::string_view name, std::int64_t otherwise) {
  const auto text = request.parameter(name);
  return text ? parseDecimal(*text).value_or(otherwise) : otherwise;
}

StoredRecord arrival(const Request& request, const std::string& body) {
  CheckResult check = checkRecord({request.header("t"), request.header("v"), request.header("Content-Type"), body});
  StoredRecord record = arrivalOf(request, body);
  record.destination = request.header("t");
  record.bodyIsObject = check.isObject;
  record.messageId = std::move(check.messageId);
  record.reasons = std::move(check.reasons);
  record.wasStored = check.wasStored;
  return record;
}

Reply acceptedReply(const StoredRecord& record, bool strict) {
  if (record.good()) {
    Reply reply;
    reply.body = R"({"ok":true})";
    return reply;
  }
  return reasonsReply(record.reasons, strict ? 400 : 200);
}

Reply faultsReply(const loopback::FaultTable& faults) {
  Array list;
  for (const loopback::Fault& fault : faults.all()) {
    list.emplace_back(describeFault(fault));
  }
  return jsonReply({{"faults", std::move(list)}});
}

// Reads one fault or an array of them. Returns nothing and one sentence in `error` when one is invalid.
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

Reply page(CollectorParts&, Request&) {
  Reply reply;
  reply.contentType = "text/html; charset=utf-8";
  // The page shows whatever was posted: nothing in it may run or load from elsewhere.
  reply.headers.emplace_back("Content-Security-Policy",
                             "default-src 'none'; script-src 'unsafe-inline'; style-src 'unsafe-inline'; "
                             "img-src 'self' data:; connect-src 'self'; base-uri 'none'; form-action 'none'");
  reply.headers.emplace_back("Cache-Control", "no-cache");
  reply.body = webPage();
  return reply;
}

Reply help(CollectorParts&, Request&) {
  std::string text = "kesu-dev collector\n";
  for (const Route& route : collectorRoutes()) {
    text += std::string(kMethodColumns - route.method.size(), ' ') + std::string(route.method) + " " +
            padded(route.path, kPathColumns) + std::string(route.sentence) + "\n";
  }
  text.pop_back();
  return Reply::error(200, text);
}

Reply messages(CollectorParts& parts, Request&) {
  return jsonReply(parts.messaging.report());
}

Reply all(CollectorParts& parts, Request&) {
  Dictionary counts = describeCounts(parts.store.counts());
  counts.set("faultHits", parts.faults.hits());
  return jsonReply(counts);
}

template <RecordStore::Which kWhich>
Reply list(CollectorParts& parts, Request& request) {
  const std::int64_t limit =
      std::clamp<std::int64_t>(numberParameter(request, "limit", kDefaultLimit), 1, kHighestLimit);
  const auto records = parts.store.read(kWhich, numberParameter(request, "after", 0), static_cast<std::size_t>(limit));
  Reply reply;
  reply.body = R"({"records":[)";
  for (const StoredRecord& record : records) {
    reply.body += &record == records.data() ? "" : ",";
    appendJson(record, reply.body);
  }
  const std::int64_t last = records.empty() ? numberParameter(request, "after", 0) : records.back().id;
  reply.body += "],\"last\":" + std::to_string(last) + "}";
  return reply;
}

Reply events(CollectorParts& parts, Request& request) {
  // Counted until the reply is destroyed, whether it was sent or not.
  const std::shared_ptr<void> place(nullptr, [&parts](void*) { --parts.followers; });
  if (++parts.followers > kMostFollowers) {
    return Reply::error(503, "too many follow the events already");
  }
  Reply reply;
  reply.contentType = "text/event-stream";
  reply.headers.emplace_back("Cache-Control", "no-store");
  const auto after = resumePoint(request.header("Last-Event-ID"), request.parameter("after"));
  reply.stream = [&parts, after, place, isGone = request.isGone](const Reply::Write& write) {
    followRecords(parts.store, after, write, isGone);
  };
  return reply;
}

Reply keys(CollectorParts&, Request&) {
  Dictionary tables = describeKeys();
  Array routes;
  for (const MessagingRoute& route : messagingRoutes()) {
    routes.emplace_back(route.productionPath);
    routes.emplace_back(route.developmentPath);
  }
  tables.set("messagingRoutes", std::move(routes));
  return jsonReply(tables);
}

Reply health(CollectorParts& parts, Request&) {
  return jsonReply({{"ok", true},
                    {"strict", parts.strict},
                    {"records", parts.store.identity()},
                    {"last", parts.store.news().lastId}});
}

Reply reset(CollectorParts& parts, Request& request) {
  std::string body;
  if (request.method == "POST") {
    request.readBody(body);
  }
  parts.messaging.reset();
  return parts.store.reset() ? jsonReply({{"ok", true}}) : Reply::error(500, "the records cannot be removed");
}

Reply listFaults(CollectorParts& parts, Request&) {
  return faultsReply(parts.faults);
}

template <bool kReplaces>
Reply setFaults(CollectorParts& parts, Request& request) {
  std::string body;
  std::string error;
  if (!request.readBody(body)) {
    return Reply::error(413, "the faults are too long");
  }
  std::vector<loopback::Fault> faults = faultsFrom(body, error);
  if (!error.empty()) {
    return Reply::error(400, error);
  }
  for (const loopback::Fault& fault : faults) {
    if (kReplaces) {
      parts.faults.remove(fault.route);
    }
  }
  for (loopback::Fault& fault : faults) {
    parts.faults.add(std::move(fault));
  }
  return faultsReply(parts.faults);
}

Reply removeFaults(CollectorParts& parts, Request& request) {
  if (const auto route = request.parameter("route")) {
    parts.faults.remove(*route);
  } else {
    parts.faults.clear();
  }
  return faultsReply(parts.faults);
}

Reply image(CollectorParts& parts, Request& request) {
  return parts.messaging.image(std::string_view(request.path).substr(kImages.size() - 1));
}

constexpr Route kRoutes[] = {
    {"GET", "/", "a page that shows everything live", &page},
    {"GET", "/help", "this list", &help},
    {"POST", Collector::kRecordPath, "stores a record; any path that is not in this list does too", &storeRecord},
    {"GET", "/all", "counts by destination", &all},
    {"GET", "/good", "good records (?after=ID&limit=N)", &list<RecordStore::Which::Good>},
    {"GET", "/bad", "bad records and requests, with what is wrong (?after=ID&limit=N)", &list<RecordStore::Which::Bad>},
    {"GET", "/events", "records as they arrive, as server-sent events (?after=ID)", &events},
    {"GET", "/messages", "the messages served, with their receipts and button presses", &messages},
    {"GET", kImages, "a picture of a message", &image},
    {"GET", "/keys", "the meaning of every short key", &keys},
    {"GET", "/faults", "the faults switched on", &listFaults},
    {"POST", "/faults", "switches on a fault, or an array of them", &setFaults<false>},
    {"PUT", "/faults", "the same, in place of those of the same routes", &setFaults<true>},
    {"DELETE", "/faults", "switches all faults off, or those of a route (?route=PATH)", &removeFaults},
    {"POST", "/reset", "removes all records and forgets who fetched which message", &reset},
    {"GET", "/reset", "the same, for the address line of a browser", &reset},
    {"GET", "/health", "whether this runs, with which database and how many records", &health},
};

}  // namespace

std::span<const Route> collectorRoutes() {
  return kRoutes;
}

Reply storeRecord(CollectorParts& parts, Request& request) {
  const loopback::FaultyHandler handler(parts.faults);
  return handler.handle(request, [&parts](Request& whole, const std::string& body) {
    const std::optional<StoredRecord> record = parts.store.add(arrival(whole, body));
    return record ? acceptedReply(*record, parts.strict) : Reply::error(507, "the record cannot be stored");
  });
}

}  // namespace kesu::dev
