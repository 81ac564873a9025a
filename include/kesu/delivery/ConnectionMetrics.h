#pragma once

#include <kesu/Export.h>
#include <kesu/platform/HttpClient.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kesu {

/// What one HTTP request moved and how long it took. A network layer makes one (with std::make_shared), tells it what
/// happens and closes it; the library itself makes none. Belongs to one thread at a time.
class KESU_API Metric : public std::enable_shared_from_this<Metric> {
 public:
  /// [Metric updateRequest:] Joins the shared list and notes the URL, its scheme, the body's length and the time. A
  /// Metric that no shared_ptr owns does not join the list.
  void updateRequest(const HttpRequest& request);

  /// [Metric updateResponse:] Notes the reply's expected length in bytes; -1 when unknown.
  void updateResponse(std::int64_t expectedContentLength);

  /// [Metric updateSessionForTask:] Notes what was moved in the end, in bytes.
  void updateSessionForTask(std::int64_t bytesReceived, std::int64_t bytesSent);

  /// [Metric updateFinish] Turns the start time into the elapsed figure and logs the metric at level 3.
  /// Kept: the start loses its fraction and the difference counts hundredths of a second, though the text says "ms".
  void updateFinish();

  /// [Metric description] "URL | scheme | bytes in N | bytes out N | latency Nms", up to the first missing piece.
  std::string description() const;

  std::optional<std::string> url;
  std::optional<std::string> method;  ///< Kept: the scheme of the URL, not the HTTP method.
  std::optional<std::int64_t> bytesSent;
  std::optional<std::int64_t> bytesReceived;
  std::optional<double> latency;  ///< Start in seconds since 1970 until updateFinish(); then the elapsed figure.
};

/// Every metric whose request was registered, for the life of the process. Any thread.
class KESU_API ConnectionMetrics {
 public:
  ConnectionMetrics();
  ~ConnectionMetrics();

  /// [ConnectionMetrics sharedMetrics]
  static ConnectionMetrics& sharedMetrics();

  /// [ConnectionMetrics addObject:] Appends a metric. Kept: the list is never trimmed.
  void addObject(std::shared_ptr<Metric> metric);

  /// A copy of the list.
  std::vector<std::shared_ptr<Metric>> metricArray();

 private:
  struct List;
  std::unique_ptr<List> list_;
};

}  // namespace kesu
