#include "tools/kesu-dev/collector/Collector.h"

#include "tools/kesu-dev/http/RequestGuard.h"

namespace kesu::dev {
namespace {

// Whether a path belongs to a route alone, whatever the method. The root and the path for records do not: a POST there
// is a record.
bool owns(const Route& route, std::string_view path) {
  return route.path == path && path != "/" && path != Collector::kRecordPath;
}

}  // namespace

Collector::Collector(RecordStore& store, loopback::FaultTable& faults, MessagingService& messaging, Options options)
    : parts_{store, faults, messaging, options.strict} {}

loopback::Reply Collector::handle(loopback::Request& request) {
  const std::string refused =
      refusal({request.header("Host"), request.header("Origin"), request.header("Sec-Fetch-Site")}, port_);
  if (!refused.empty()) {
    return loopback::Reply::error(421, refused);
  }
  const std::string_view method = request.method == "HEAD" ? "GET" : std::string_view(request.method);
  bool isOwned = false;
  for (const Route& route : collectorRoutes()) {
    if (route.method == method && loopback::routeMatches(route.path, request.path)) {
      return route.answer(parts_, request);
    }
    isOwned = isOwned || owns(route, request.path);
  }
  if (method == "POST" && !isOwned) {
    return storeRecord(parts_, request);
  }
  return isOwned ? loopback::Reply::error(405, "this route does not know " + request.method)
                 : loopback::Reply::error(404, "there is nothing here; GET /help lists what there is");
}

void Collector::interrupt() {
  parts_.faults.clear();
  parts_.store.interrupt();
}

}  // namespace kesu::dev
