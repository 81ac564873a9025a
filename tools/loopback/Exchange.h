#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kesu::loopback {

/// One request, as a handler sees it. Lives as long as the handler runs.
struct Request {
  std::string method;
  std::string path;  // Without the query, percent-decoded.
  std::vector<std::pair<std::string, std::string>> headers;
  std::vector<std::pair<std::string, std::string>> query;

  /// Reads the body. False when the sender broke off or sent more than the limit of 16 MB (an error reply then reaches
  /// only the latter). A handler that never calls it answers early, and the connection is closed after that.
  std::function<bool(std::string& body)> readBody;

  /// Whether the sender has gone, or the server is stopping. For handlers that take their time.
  std::function<bool()> isGone;

  /// The first header of that name (any case), or an empty text.
  std::string_view header(std::string_view name) const;

  /// The query parameter of that name.
  std::optional<std::string_view> parameter(std::string_view name) const;
};

/// What a handler answers.
struct Reply {
  using Write = std::function<bool(std::string_view)>;

  int status = 200;
  std::string contentType = "application/json";
  std::string body;
  std::vector<std::pair<std::string, std::string>> headers;

  /// Close the connection at once and send nothing.
  bool close = false;

  /// When set, the body is what this function writes, piece by piece, until it returns. `write` is false once the
  /// receiver has gone.
  std::function<void(const Write& write)> stream;

  static Reply closed();
  static Reply error(int status, const std::string& text);
};

}  // namespace kesu::loopback
