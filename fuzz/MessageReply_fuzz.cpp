// Fuzzes: messaging
#include "Replies.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesu::fuzz::Client client;
  client.inbox.kesu_getMessageWithContentID(
      "c", "m", client.listen([](const kesu::Value& body) { return body.dictionary() != nullptr; }));
  client.answer(data, size);
  return 0;
}
