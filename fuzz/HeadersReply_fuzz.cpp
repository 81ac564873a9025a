// Fuzzes: messaging
#include "Replies.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesu::fuzz::Client client;
  client.inbox.kesu_getMessageHeadersForType(
      kesu::KesuInAppMessageType::All, client.listen([](const kesu::Value& all) { return all.array() != nullptr; }));
  client.answer(data, size);
  return 0;
}
