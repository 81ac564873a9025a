#pragma once

#include <memory>
#include <optional>
#include <string>

#include "Collector.h"
#include "Faults.h"
#include "HttpServer.h"
#include "RecordStore.h"

namespace kesu::dev {

/// Everything that `kesu-dev serve` serves, put together and running.
class Services {
 public:
  struct Options {
    std::optional<int> port;  // 0 = any free one; nothing = 8470 or, when that is taken, one of the next 20.
    std::string database;     // File for the records; empty = memory.
    bool strict = false;      // See Collector::Options.
  };

  static constexpr int kDefaultPort = 8470;

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

  RecordStore& store() { return *store_; }
  FaultTable& faults() { return faults_; }

  /// Gives what a program that has ended left in its connections a moment to be taken in.
  void settle();

  /// Ends every connection, hanging ones too. May be called twice.
  void stop();

 private:
  bool bind(const std::optional<int>& port);

  std::unique_ptr<RecordStore> store_;
  FaultTable faults_;
  Collector collector_;
  HttpServer server_;
};

}  // namespace kesu::dev
