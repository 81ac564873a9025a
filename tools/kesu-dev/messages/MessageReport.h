#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tools/kesu-dev/messages/DeliveryLog.h"
#include "tools/kesu-dev/messages/MessageDirectory.h"
#include "tools/kesu-dev/records/StoredRecord.h"

namespace kesu::dev {

/// Each message beside what became of it, as `GET /messages` answers: "messages" (with "mid", "cid", "title", "file",
/// "image", "asHeader" and "whole" for how often it went out, "delivered" for its receipts, "presses" with button,
/// title and time of each), "hooks" (calls of the web hook) and "problems" (files that were skipped). `records` are the
/// records of messages that arrived; a record that came twice counts once. Messages that are no longer in the
/// directory stand last, without a "file", as long as records name them. Pure.
Dictionary describeMessages(const MessageReading& reading, const DeliveryLog& log,
                            const std::vector<StoredRecord>& records);

/// The same as tables for a terminal. Takes what describeMessages() made, or nothing that makes sense. Pure.
std::string messageTable(const Dictionary& report, std::size_t width);

}  // namespace kesu::dev
