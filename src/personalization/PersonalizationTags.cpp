#include "personalization/PersonalizationTags.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "foundation/Json.h"
#include "foundation/Keepable.h"
#include "platform/OrderlyEnd.h"
#include "records/DefaultsKeys.h"
#include "services/MessageKeys.h"
#include "services/ServiceCredentials.h"

namespace kesu {
namespace {

constexpr LogPlace kReplyPlace{"KesuPersonalizationIntelligence", 159};

std::atomic<PersonalizationTags::Provider> providerOfTags{nullptr};

// The list in a reply, which contains it as JSON within a JSON text; nothing unless there is a tag in it.
std::optional<Value> tagsIn(const Object& reply) {
  const Dictionary* outer = reply ? reply->dictionary() : nullptr;
  const std::string* json = outer != nullptr ? outer->findText(kTagsKey) : nullptr;
  const std::optional<Value> parsed = json != nullptr && !json->empty() ? parseJson(*json) : std::nullopt;
  const Dictionary* inner = parsed ? parsed->dictionary() : nullptr;
  const Value* tags = inner != nullptr ? inner->find(kTagsKey) : nullptr;
  const bool hasTags = tags != nullptr && tags->array() != nullptr && !tags->array()->empty();
  return hasTags ? std::optional(*tags) : std::nullopt;
}

bool contains(const Array& tags, const Value& tag) {
  return std::find(tags.begin(), tags.end(), tag) != tags.end();
}

}  // namespace

void PersonalizationTags::getTags(ServiceReplyHandler completion) {
  const Dictionary body = addKakAndKaid(storedCredentials(defaults_));
  postInternalWithDictionary(
      body, [this, completion = std::move(completion)](const Object& reply) { finish(reply, completion); });
}

void PersonalizationTags::finish(const Object& reply, const ServiceReplyHandler& completion) {
  const Object tags = tagsIn(reply);
  if (tags) {
    // Nulls cannot be kept. The completion receives the list as sent, and an emptied one replaces nothing.
    Value kept = keepableCopy(*tags);
    if (!kept.array()->empty()) {
      defaults_.set(kTagsDefault, std::move(kept));
      defaults_.synchronize();
    }
  }
  if (completion && !isEndingAtExit()) {  // In an exit handler, what a completion uses may be destroyed already.
    completion(tags);
  }
}

Array PersonalizationTags::storedTags() {
  std::optional<Value> stored = defaults_.get(kTagsDefault);
  Array* tags = stored ? stored->array() : nullptr;
  return tags != nullptr ? std::move(*tags) : Array();
}

bool PersonalizationTags::isTagSet(const Object& tag) {
  return !isMissingOrEmpty(tag) && contains(storedTags(), *tag);
}

bool PersonalizationTags::areAnyTagsSet(const Array& tags) {
  const Array stored = storedTags();
  return std::any_of(tags.begin(), tags.end(), [&stored](const Value& tag) { return contains(stored, tag); });
}

bool PersonalizationTags::areAllTagsSet(const Array& tags) {
  const Array stored = storedTags();
  return !tags.empty() &&
         std::all_of(tags.begin(), tags.end(), [&stored](const Value& tag) { return contains(stored, tag); });
}

std::string PersonalizationTags::url() {
  const char* path =
      settings_.isProductionMode() ? "/api/user-personalization/gettags" : "/api/devmode/user-personalization/gettags";
  return "https://" + settings_.messagingHost() + path;
}

std::optional<HttpRequest> PersonalizationTags::requestFromDictionary(const Dictionary& body) {
  return jsonRequest(body, "PUT", url());
}

void PersonalizationTags::postInternalWithDictionary(const Dictionary& body, ServiceReplyHandler handler) {
  if (auto request = requestFromDictionary(body)) {
    sendServiceRequest(http_, std::move(*request), kReplyPlace, std::move(handler));
  }
}

PersonalizationTags& PersonalizationTags::shared() {
  return providerOfTags.load(std::memory_order_acquire)();
}

void PersonalizationTags::setProvider(Provider provider) {
  providerOfTags.store(provider, std::memory_order_release);
}

}  // namespace kesu
