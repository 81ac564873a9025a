#pragma once

#include <string>

#include "tools/kesu-dev/records/StoredRecord.h"
#include "tools/loopback/Server.h"

namespace kesu::dev {

/// What a request leaves behind in the store, before anybody has looked at it: when it came, where to, with which
/// headers and which body. The caller adds what it found out.
StoredRecord arrivalOf(const loopback::Request& request, const std::string& body);

/// A reply in JSON. Its texts must have gone through validUtf8 before.
loopback::Reply jsonReply(const Dictionary& body, int status = 200);

/// The reply for something with faults: "ok" is false, and the "reasons".
loopback::Reply reasonsReply(const std::vector<std::string>& reasons, int status);

}  // namespace kesu::dev
