#pragma once

#include <kesu/Export.h>
#include <kesu/platform/HttpClient.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kesu {

/// What one HTTP request moved and how long it took. A network layer creates one (with std::make_shared), updates it
/// and finishes it; the library itself creates none. Used by one thread at a time.
class KESU_API Metric : public std::enable_shared_from_this<Metric> {
 public:
  /// Joins the shared list and records the URL, its scheme, the body's length and the time. A Metric that no shared_ptr
  /// owns does not join the list. [Metric updateRequest:]
  void updateRequest(const HttpRequest& request);

  /// Records the reply's expected length in bytes; -1 when unknown. [Metric updateResponse:]
  void updateResponse(std::int64_t expectedContentLength);

  /// Records the bytes that were moved in the end. [Metric updateSessionForTask:]
  void updateSessionForTask(std::int64_t bytesReceived, std::int64_t bytesSent);

  /// Replaces the start time by the elapsed figure and logs the metric at level 3.
  /// Kept: the start loses its fraction and the difference counts hundredths of a second, though the text says "ms".
  /// [Metric updateFinish]
  void updateFinish();

  /// Returns "URL | scheme | bytes in N | bytes out N | latency Nms", up to the first missing piece.
  /// [Metric description]
  std::string description() const;

  std::optional<std::string> url;
  std::optional<std::string> method;  ///< Kept: the scheme of the URL, not the HTTP method.
  std::optional<std::int64_t> bytesSent;
  std::optional<std::int64_t> bytesReceived;
  std::optional<double> latency;  ///< Start in seconds since 1970 until updateFinish(); then the elapsed figure.
};

/// Lists every metric whose request was registered, for the life of the process. Any thread.
class KESU_API ConnectionMetrics {
 public:
  ConnectionMetrics();
  ~ConnectionMetrics();

  /// Returns the list of this process, created at the first call. [ConnectionMetrics sharedMetrics]
  static ConnectionMetrics& sharedMetrics();

  /// Appends a metric. Kept: the list is never trimmed. [ConnectionMetrics addObject:]
  void addObject(std::shared_ptr<Metric> metric);

  /// Returns a copy of the list. [ConnectionMetrics metricArray]
  std::vector<std::shared_ptr<Metric>> metricArray();

 private:
  struct List;
  std::unique_ptr<List> list_;
};

}  // namespace kesu
