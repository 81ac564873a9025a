#include "tools/kesu-dev/commands/Services.h"

#include <chrono>
#include <stdexcept>
#include <utility>

#include "tools/kesu-dev/base/Console.h"
#include "tools/kesu-dev/http/HttpFetch.h"

namespace kesu::dev {
namespace {

constexpr int kPortsToTry = 20;                             // As many as lie between the two default ports.
constexpr std::chrono::milliseconds kSettlePatience{2000};  // Requests that hang by a fault never end.

// Binds to the port asked for, or to the first free one from `standard` on.
bool bindTo(loopback::Server& server, const std::optional<int>& port, int standard) {
  if (port) {
    return server.bind(*port);
  }
  for (int candidate = standard; candidate < standard + kPortsToTry; ++candidate) {
    if (server.bind(candidate)) {
      return true;
    }
  }
  return false;
}

std::string takenText(int port) {
  return "port " + std::to_string(port) + " of 127.0.0.1 is taken (try --port 0)";
}

}  // namespace

std::unique_ptr<Services> Services::start(const Options& options, std::string& error) {
  std::unique_ptr<RecordStore> store = RecordStore::open(options.database, error);
  if (store == nullptr) {
    error = "cannot open the database " + options.database + ": " + error;
    return nullptr;
  }
  std::unique_ptr<Services> services;
  try {
    services = std::make_unique<Services>(std::move(store), options);
  } catch (const std::runtime_error& failure) {  // There is no certificate.
    error = failure.what();
    return nullptr;
  }
  const bool anyPort = options.port.value_or(1) == 0 && !options.messagingPort;
  const std::optional<int> messagingPort = anyPort ? std::optional(0) : options.messagingPort;
  if (!bindTo(services->server_, options.port, kDefaultPort)) {
    error = takenText(options.port.value_or(kDefaultPort));
    return nullptr;
  }
  if (!bindTo(services->messagingServer_, messagingPort, kDefaultMessagingPort)) {
    error = takenText(messagingPort.value_or(kDefaultMessagingPort));
    return nullptr;
  }
  services->collector_.servesPort(services->server_.port());
  services->messaging_.serve(options.messages, services->messagingServer_.port());
  services->server_.start();
  services->messagingServer_.start();
  return services;
}

Services::Services(std::unique_ptr<RecordStore> store, const Options& options)
    : store_(std::move(store)),
      messaging_(*store_, faults_, options.logLine ? options.logLine : say),
      collector_(*store_, faults_, messaging_, {options.strict}),
      server_([this](loopback::Request& request) { return collector_.handle(request); }),
      messagingServer_([this](loopback::Request& request) { return messaging_.handle(request); },
                       &certificate_.context()) {
  certificate_.save(certificateFile());
}

Services::~Services() {
  stop();
}

std::vector<std::string> Services::environment() const {
  return {"KESU_OVERRIDE_SERVER=" + recordUrl(), "KESU_REACHABILITY_HOST=" + hostAndPort(),
          "KESU_MESSAGING_HOST=" + messagingHost(), "KESU_CA_FILE=" + certificateFile()};
}

void Services::settle() {
  // Connections are accepted in their order: once this one is served, all that were made before are counted.
  fetch({"127.0.0.1", server_.port()}, "/health");
  server_.waitForConnections(collector_.followers(), kSettlePatience);
}

void Services::stop() {
  collector_.interrupt();
  server_.stop();
  messagingServer_.stop();
}

}  // namespace kesu::dev
