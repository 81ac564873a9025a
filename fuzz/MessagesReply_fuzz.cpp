// Fuzzes: messaging
#include "Replies.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesu::fuzz::Client client;
  client.inbox.kesu_getMessagesForType(kesu::KesuInAppMessageType::Unread,
                                       client.listen([](const kesu::Value&) { return true; }));
  client.answer(data, size);
  return 0;
}
