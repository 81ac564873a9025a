#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "tools/kesu-dev/http/EventStream.h"

namespace kesu::dev {

/// Where a running kesu-dev is.
struct ServerAddress {
  std::string host;
  int port = 80;

  friend bool operator==(const ServerAddress&, const ServerAddress&) = default;
};

/// The host and port of an "http://HOST[:PORT][/]" URL; nothing for any other text.
std::optional<ServerAddress> parseServerUrl(std::string_view url);

struct FetchResult {
  int status = 0;  // 0 = no reply; `error` says why.
  std::string body;
  std::string error;
};

/// GETs a path. Blocks.
FetchResult fetch(const ServerAddress& server, const std::string& path);

/// GETs the event stream and calls `consume` for each event as it arrives. Blocks until the connection ends; the body
/// of the result is empty. `after` = last id seen, to take up where it left; nothing = only what is to come.
FetchResult followEvents(const ServerAddress& server, std::optional<std::int64_t> after,
                         const std::function<void(const ServerEvent&)>& consume);

}  // namespace kesu::dev
