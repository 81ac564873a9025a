#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/HttpClient.h>

#include <optional>
#include <string>

namespace kesu {

/// Removes null entries, at the top level only. Kept: empty texts stay and are sent as "". [optimizeDictionary:]
void optimizeDictionary(Dictionary& record);

/// Returns the request that carries a record to the collector at `url`; nothing when it cannot be JSON (see
/// jsonRequest).
///
/// Its body: every entry of the record except "dest" and "fnk", unsupported top-level values as their description (one
/// level-0 log line each), and "ase" = `sentAt` in milliseconds since 1970. A record that reports an interrupted run (a
/// non-empty "~cfqt") gets that time as "ace". The destination is header "t", in front of those of jsonRequest, as the
/// collector has always received it.
std::optional<HttpRequest> collectorRequest(const Dictionary& record, double sentAt, std::string url);

}  // namespace kesu
