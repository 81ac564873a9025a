#include "tools/kesu-dev/http/HttpFetch.h"

#include <httplib.h>

#include "foundation/Url.h"

namespace kesu::dev {
namespace {

constexpr int kConnectSeconds = 5;
// The server writes something every 15 s at least.
constexpr int kReadSeconds = 40;

httplib::Client clientFor(const ServerAddress& server) {
  httplib::Client client(server.host, server.port);
  client.set_connection_timeout(kConnectSeconds);
  client.set_read_timeout(kReadSeconds);
  return client;
}

FetchResult resultFrom(const httplib::Result& from) {
  FetchResult result;
  if (from) {
    result.status = from->status;
    result.body = from->body;
  } else {
    result.error = httplib::to_string(from.error());
  }
  return result;
}

}  // namespace

std::optional<ServerAddress> parseServerUrl(std::string_view url) {
  const auto parts = splitUrl(url);
  if (!parts || parts->scheme != "http://" || !parts->user.empty() || parts->host.empty() ||
      parts->host.find(':') != std::string_view::npos || (!parts->rest.empty() && parts->rest != "/")) {
    return std::nullopt;
  }
  const int port = parts->port.empty() ? 80 : portNumber(parts->port).value_or(0);
  return port == 0 ? std::nullopt : std::optional(ServerAddress{std::string(parts->host), port});
}

FetchResult fetch(const ServerAddress& server, const std::string& path) {
  httplib::Client client = clientFor(server);
  return resultFrom(client.Get(path));
}

FetchResult followEvents(const ServerAddress& server, std::optional<std::int64_t> after,
                         const std::function<void(const ServerEvent&)>& consume) {
  httplib::Client client = clientFor(server);
  const std::string path = after ? "/events?after=" + std::to_string(*after) : "/events";
  EventParser parser;
  return resultFrom(client.Get(path, [&](const char* bytes, std::size_t size) {
    parser.feed(std::string_view(bytes, size), consume);
    return true;
  }));
}

}  // namespace kesu::dev
