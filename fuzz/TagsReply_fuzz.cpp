#include "Replies.h"
#include "personalization/PersonalizationTags.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesu::fuzz::Client client;
  kesu::PersonalizationTags tags(client.platform.http, client.platform.defaults, client.settings);
  tags.getTags(
      client.listen([](const kesu::Value& list) { return list.array() != nullptr && !list.array()->empty(); }));
  client.answer(data, size);
  return 0;
}
