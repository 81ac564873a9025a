// Fuzzes: messaging
#include "Replies.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesu::fuzz::Client client;
  client.inbox.kesu_countNewUnFetched([&client](std::int64_t) { ++client.told; });
  client.answer(data, size);
  return 0;
}
