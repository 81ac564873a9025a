#pragma once

#include <kesu/platform/HttpClient.h>

#include <string>
#include <string_view>
#include <vector>

namespace kesu {

/// Formats a request's headers for libcurl (CURLOPT_HTTPHEADER), in the caller's order and without CR, LF and NUL,
/// followed by the removals of the headers that libcurl would add by itself.
///
/// The caller's first Content-Length keeps its place but gets the true length of the body; without one libcurl adds it
/// as the last header. A second Content-Length or Accept-Encoding, headers whose name is empty or has a blank or a
/// colon, and those that belong to the transport (Expect, Host, Transfer-Encoding) are left out.
std::vector<std::string> httpHeaderLines(const HttpRequest& request);

/// Whether the request has a body, perhaps an empty one, and so a Content-Length.
bool carriesBody(const HttpRequest& request);

/// Whether the request accepts gzip: such replies are decoded then.
bool acceptsGzip(const HttpRequest& request);

/// Removes from a method what cannot stand in a request line; "GET" if nothing is left.
std::string cleanMethod(const std::string& method);

}  // namespace kesu
