#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tools/kesu-dev/messages/DeliveryLog.h"
#include "tools/kesu-dev/messages/MessageDirectory.h"
#include "tools/kesu-dev/records/StoredRecord.h"

namespace kesu::dev {

/// Describes each message and its fate for `GET /messages`: "messages" (with "mid", "cid", "title", "file", "image",
/// "asHeader" and "whole" for how often it was sent, "delivered" for its receipts, "presses" with button, title and
/// time of each), "hooks" (calls of the web hook) and "problems" (files that were skipped). `records` are the records
/// of messages that arrived; duplicates count once. Messages that have left the directory come last, without a "file",
/// as long as records name them. Pure.
Dictionary describeMessages(const MessageReading& reading, const DeliveryLog& log,
                            const std::vector<StoredRecord>& records);

/// Formats a report of describeMessages() for a terminal; missing parts count as empty. Pure.
std::string messageTable(const Dictionary& report, std::size_t width);

}  // namespace kesu::dev
