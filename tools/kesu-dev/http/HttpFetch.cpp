#include "tools/kesu-dev/http/HttpFetch.h"

#include <httplib.h>

#include "tools/kesu-dev/base/Text.h"

namespace kesu::dev {
namespace {

constexpr std::string_view kScheme = "http://";
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
  if (!url.starts_with(kScheme)) {
    return std::nullopt;
  }
  url.remove_prefix(kScheme.size());
  if (url.ends_with('/')) {
    url.remove_suffix(1);
  }
  const std::size_t colon = url.find(':');
  const auto port =
      colon == std::string_view::npos ? std::optional<std::int64_t>(80) : parseDecimal(url.substr(colon + 1));
  const std::string_view host = url.substr(0, colon);
  if (!port || *port < 1 || *port > 65535 || host.empty() || host.find_first_of("/?#@") != std::string_view::npos) {
    return std::nullopt;
  }
  return ServerAddress{std::string(host), static_cast<int>(*port)};
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
