#include "Services.h"

#include <chrono>
#include <utility>

#include "HttpFetch.h"

namespace kesu::dev {
namespace {

constexpr int kPortsToTry = 20;
constexpr std::chrono::milliseconds kSettlePatience{2000};

}  // namespace

std::unique_ptr<Services> Services::start(const Options& options, std::string& error) {
  std::unique_ptr<RecordStore> store = RecordStore::open(options.database, error);
  if (store == nullptr) {
    error = "cannot open the database " + options.database + ": " + error;
    return nullptr;
  }
  auto services = std::make_unique<Services>(std::move(store), options);
  if (!services->bind(options.port)) {
    error = "port " + std::to_string(options.port.value_or(kDefaultPort)) + " of 127.0.0.1 is taken (try --port 0)";
    return nullptr;
  }
  services->collector_.servesPort(services->server_.port());
  services->server_.start();
  return services;
}

Services::Services(std::unique_ptr<RecordStore> store, const Options& options)
    : store_(std::move(store)),
      collector_(*store_, faults_, {options.strict}),
      server_([this](HttpRequest& request) { return collector_.handle(request); }) {}

Services::~Services() {
  stop();
}

void Services::settle() {
  // Connections are accepted in their order: once this one is served, all that were made before are counted.
  fetch({"127.0.0.1", server_.port()}, "/health");
  server_.waitForConnections(collector_.followers(), kSettlePatience);
}

void Services::stop() {
  collector_.interrupt();
  server_.stop();
}

bool Services::bind(const std::optional<int>& port) {
  if (port) {
    return server_.bind(*port);
  }
  for (int candidate = kDefaultPort; candidate < kDefaultPort + kPortsToTry; ++candidate) {
    if (server_.bind(candidate)) {
      return true;
    }
  }
  return false;
}

}  // namespace kesu::dev
