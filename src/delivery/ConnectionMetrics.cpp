#include <kesu/delivery/ConnectionMetrics.h>
#include <kesu/platform/Platform.h>
#include <kesu/support/CollectionHelpers.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>
#include <utility>

#include "foundation/Mutex.h"
#include "foundation/NumberText.h"
#include "foundation/SharedInstance.h"
#include "foundation/Url.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr double kFiguresPerSecond = 100.0;  // Kept: hundredths of a second, though the text says "ms".

/// The figure is a 32-bit integer; a second updateFinish() takes a figure for a time and leaves its range.
double clampedTo32Bits(double figure) {
  constexpr double kLowest = std::numeric_limits<std::int32_t>::min();
  constexpr double kHighest = std::numeric_limits<std::int32_t>::max();
  return std::clamp(std::trunc(figure), kLowest, kHighest);
}

}  // namespace

void Metric::updateRequest(const HttpRequest& request) {
  if (std::shared_ptr<Metric> self = weak_from_this().lock()) {
    ConnectionMetrics::sharedMetrics().addObject(std::move(self));
  }
  url = request.url;
  const std::string_view scheme = urlScheme(request.url);
  method = scheme.empty() ? std::nullopt : OptionalText(scheme);
  bytesSent = static_cast<std::int64_t>(request.body.size());
  latency = Platform::current().clock.now();
}

void Metric::updateResponse(std::int64_t expectedContentLength) {
  bytesReceived = expectedContentLength;
}

void Metric::updateSessionForTask(std::int64_t received, std::int64_t sent) {
  bytesReceived = received;
  bytesSent = sent;
}

void Metric::updateFinish() {
  const double start = std::trunc(latency.value_or(0.0));
  latency = clampedTo32Bits((Platform::current().clock.now() - start) * kFiguresPerSecond);
  KESU_LOG_AT(3, "ConnectionMetrics", 46, "Connection Metric : %s", description().c_str());
}

std::string Metric::description() const {
  if (!url) {
    return "";
  }
  const OptionalText latencyText = latency ? OptionalText(shortestReal(*latency)) : std::nullopt;
  return concat(*url, {" | ", method, " | ", "bytes in ", decimalOrNothing(bytesReceived), " | ", "bytes out ",
                       decimalOrNothing(bytesSent), " | ", "latency ", latencyText, "ms"});
}

struct ConnectionMetrics::List {
  Mutex mutex;
  std::vector<std::shared_ptr<Metric>> metrics KESU_GUARDED_BY(mutex);
};

ConnectionMetrics::ConnectionMetrics() : list_(std::make_unique<List>()) {}
ConnectionMetrics::~ConnectionMetrics() = default;

ConnectionMetrics& ConnectionMetrics::sharedMetrics() {
  return SharedInstance<ConnectionMetrics>::get();
}

void ConnectionMetrics::addObject(std::shared_ptr<Metric> metric) {
  const MutexLock lock(list_->mutex);
  list_->metrics.push_back(std::move(metric));
}

std::vector<std::shared_ptr<Metric>> ConnectionMetrics::metricArray() {
  const MutexLock lock(list_->mutex);
  return list_->metrics;
}

}  // namespace kesu
