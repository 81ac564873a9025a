#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/HttpClient.h>

#include <optional>
#include <string>

namespace kesu {

/// Removes null entries, at the top level only. Kept: empty texts stay and are sent as "". [optimizeDictionary:]
void optimizeDictionary(Dictionary& record);

/// Returns the body of a collector request: every entry of the record except "dest" and "fnk", unsupported top-level
/// values as their description (one level-0 log line each), and "ase" = `sentAt` in milliseconds since 1970. A record
/// that reports an interrupted run (a non-empty "~cfqt") gets that time as "ace".
Dictionary collectorBody(const Dictionary& record, double sentAt);

/// Returns the request that carries `body` to the collector at `url`, with the destination in header "t"; nothing when
/// the body cannot be JSON (see jsonRequest).
std::optional<HttpRequest> collectorRequest(const Dictionary& body, const std::string& destination,
                                            const std::string& url);

}  // namespace kesu
