#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/kesu-dev/collector/Collector.h"
#include "tools/kesu-dev/messages/MessagingService.h"
#include "tools/kesu-dev/records/RecordStore.h"
#include "tools/loopback/Certificate.h"
#include "tools/loopback/Faults.h"
#include "tools/loopback/Server.h"
#include "tools/loopback/TemporaryDirectory.h"

namespace kesu::dev {

/// The running services of kesu-dev: collector and messaging service.
class Services {
 public:
  struct Options {
    std::optional<int> port;  // 0 = any free one; nothing = 8470 or, when that is taken, one of the next 20.
    std::string database;     // File for the records; empty = memory.
    bool strict = false;      // See Collector::Options.

    std::optional<int> messagingPort;   // The same for messages; nothing = any free one when `port` is 0, else 8490...
    std::string messages;               // Directory of messages; empty = there are none.
    MessagingService::LogLine logLine;  // Lines for the terminal; empty = standard error. Any thread.
  };

  static constexpr int kDefaultPort = 8470;
  static constexpr int kDefaultMessagingPort = 8490;

  /// Starts the services. Returns null and one sentence in `error` when they cannot start. Their threads inherit the
  /// caller's signal mask.
  static std::unique_ptr<Services> start(const Options& options, std::string& error);

  /// Only start() calls this.
  Services(std::unique_ptr<RecordStore> store, const Options& options);

  /// Stops.
  ~Services();

  Services(const Services&) = delete;
  Services& operator=(const Services&) = delete;

  std::string url() const { return "http://" + hostAndPort(); }
  std::string recordUrl() const { return url() + Collector::kRecordPath; }
  std::string hostAndPort() const { return "127.0.0.1:" + std::to_string(server_.port()); }

  /// Where the messaging service answers, over TLS.
  std::string messagingHost() const { return "127.0.0.1:" + std::to_string(messagingServer_.port()); }

  /// The certificate to trust for that; removed with this object.
  std::string certificateFile() const { return directory_ / "certificate.pem"; }

  /// Returns the environment that points a program at the services, "NAME=value" each.
  std::vector<std::string> environment() const;

  MessagingService& messaging() { return messaging_; }
  RecordStore& store() { return *store_; }
  loopback::FaultTable& faults() { return faults_; }

  /// Waits briefly until the requests that an ended program has left in its connections are handled.
  void settle();

  /// Closes every connection, hanging ones too. May be called twice.
  void stop();

 private:
  std::unique_ptr<RecordStore> store_;
  const loopback::TemporaryDirectory directory_;  // Of the certificate.
  const loopback::Certificate certificate_ = loopback::Certificate::selfSigned("kesu-dev on localhost");
  loopback::FaultTable faults_;
  MessagingService messaging_;
  Collector collector_;
  loopback::Server server_;
  loopback::Server messagingServer_;
};

}  // namespace kesu::dev
