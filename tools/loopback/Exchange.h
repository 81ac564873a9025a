#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kesu::loopback {

using Fields = std::vector<std::pair<std::string, std::string>>;

/// A request without its body, as it came over the wire.
struct RequestHead {
  std::string head;  ///< Request line and headers as received, with the empty line that ends them.
  std::string method;
  std::string target;          ///< Path and query as received.
  std::string path;            ///< Without the query, percent-decoded.
  Fields query;                ///< Percent-decoded.
  Fields headers;              ///< In the order of the wire.
  bool isLast = false;         ///< The sender wants the connection closed after the reply.
  std::size_t connection = 0;  ///< The connection that carried it, counted from 0.

  /// Returns the first header of that name (any case), or an empty text.
  std::string_view header(std::string_view name) const;

  /// Returns the query parameter of that name.
  std::optional<std::string_view> parameter(std::string_view name) const;
};

/// One request, as a handler sees it. Valid until its reply has been written.
struct Request : RequestHead {
  /// Reads the body. False when the sender broke off or sent more than 16 MB (an error reply then reaches only the
  /// latter). Once it was read, returns true and leaves `body` as it is. The connection is closed after the reply of a
  /// handler that never calls it.
  std::function<bool(std::string& body)> readBody;

  /// Whether the sender has closed the connection, or the server is stopping. For handlers that take their time.
  std::function<bool()> isGone;
};

/// What a handler answers.
struct Reply {
  using Write = std::function<bool(std::string_view)>;

  /// What is put on the wire.
  enum class Form {
    Http,   ///< A reply of HTTP.
    Raw,    ///< `body` as it is, head and all, and what `stream` writes; then the connection is closed.
    Reset,  ///< Nothing: the connection is broken with RST.
  };

  Form form = Form::Http;
  int status = 200;
  std::string contentType = "application/json";  ///< Empty: no such header.
  std::string body;
  Fields headers;

  /// When set, the body is what this function writes, piece by piece, until it returns. `write` is false once the
  /// receiver has gone.
  std::function<void(const Write& write)> stream;

  /// The length of what `stream` writes; without it the body is chunked.
  std::optional<std::uint64_t> streamLength;

  /// Closes the connection and sends nothing.
  static Reply closed();
  /// A text for people.
  static Reply error(int status, const std::string& text);
};

/// Compares ASCII letters without case.
bool equalIgnoringCase(std::string_view one, std::string_view other);

/// Reads the bytes of a request line and headers; nothing when they are no HTTP/1.
std::optional<RequestHead> parseHead(std::string bytes);

/// Returns status line and headers of a reply of HTTP. `closes`: the connection is closed after it.
std::string headOf(const Reply& reply, bool closes);

}  // namespace kesu::loopback
