#pragma once

#include <kesu/platform/HttpClient.h>

#include <string>
#include <string_view>
#include <vector>

namespace kesu {

/// The request's headers as libcurl wants them (CURLOPT_HTTPHEADER), in the caller's order and without CR, LF and NUL,
/// followed by the removals of the headers that libcurl would add by itself.
///
/// The caller's first Content-Length keeps its place but tells the true length of the body; without one libcurl adds it
/// as the last header. A second Content-Length or Accept-Encoding, headers without a name, and those that belong to the
/// transport (Expect, Host, Transfer-Encoding) are left out.
std::vector<std::string> httpHeaderLines(const HttpRequest& request);

/// Whether a body, perhaps an empty one, belongs to the request, so that its length is told.
bool carriesBody(const HttpRequest& request);

/// Whether the request offers gzip, so that such replies are to be decoded.
bool acceptsGzip(const HttpRequest& request);

/// The method with everything left out that has no place in a request line; "GET" if nothing is left.
std::string cleanMethod(const std::string& method);

}  // namespace kesu
