#pragma once

#include <kesu/foundation/Value.h>

#include <string>
#include <string_view>
#include <utility>

#include "tools/kesu-dev/base/Fields.h"
#include "tools/kesu-dev/records/StoredRecord.h"

namespace kesu::dev {

inline constexpr const char* kTestVersion = "10-i-3.2.3";

/// A good record of that destination, as the library sends it; tests change single keys.
inline Dictionary testBody(std::string_view destination, std::string messageId = "AbCdEfGhIjKlMnOpQrSt01") {
  Dictionary body{{"kak", "demo key"},
                  {"~v", kTestVersion},
                  {"kaid", "0123456789abcdefghijAB"},
                  {"ace", "1489579200000"},
                  {"ase", "1489579200100"},
                  {"msg_id", std::move(messageId)},
                  {"ldt", "2017-03-15 13:00:00 +0100"},
                  {"rv", "17"},
                  {"av", "1.4"},
                  {"ov", "6.1"}};
  if (destination == "t" || destination == "i") {
    body.set("prd", "box");
  } else if (destination == "s") {
    body.set("~ns", "l");
    body.set("~ld", "Foreground Inactive");
  } else if (destination == "e") {
    body.set("~e", "LevelStarted");
    body.set("world", "ice");
  }
  return body;
}

/// The text of testBody().
inline std::string testRecord(std::string_view destination, std::string messageId = "AbCdEfGhIjKlMnOpQrSt01") {
  return jsonText(testBody(destination, std::move(messageId)));
}

/// The same as the collector stores it.
inline StoredRecord testStored(std::string destination, std::string messageId = "AbCdEfGhIjKlMnOpQrSt01") {
  StoredRecord record;
  record.body = testRecord(destination, messageId);
  record.bodyIsObject = true;
  record.destination = std::move(destination);
  record.messageId = std::move(messageId);
  record.arrivedMs = 1489579200123;
  record.path = "/collect";
  return record;
}

}  // namespace kesu::dev
