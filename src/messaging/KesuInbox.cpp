#include "messaging/KesuInbox.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "foundation/Afterwards.h"
#include "foundation/Describe.h"
#include "foundation/Keepable.h"
#include "messaging/KeptSize.h"
#include "messaging/MessageHeader.h"
#include "platform/OrderlyEnd.h"
#include "records/DefaultsKeys.h"
#include "services/MessageKeys.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr std::string_view kInboxKeys[] = {kHeadersDefault, kPreviousHeadersDefault, kReadMessagesDefault,
                                           kBodiesDefault};
constexpr std::size_t kBodiesLimit = 20;  // Kept: so many are one too many; 19 stay.

const Value* member(const Object& reply, std::string_view key) {
  const Dictionary* dictionary = reply ? reply->dictionary() : nullptr;
  return dictionary != nullptr ? dictionary->find(key) : nullptr;
}

std::int64_t countIn(const Object& reply) {
  const Value* count = member(reply, kMessageCountKey);
  return count != nullptr ? count->integerValue() : 0;
}

Object copyOf(const Value* value) {
  return value != nullptr ? Object(*value) : Object();
}

// A copy of a header or message that the user defaults accept, marked; nothing for what is no dictionary.
std::optional<Value> marked(const Value& message, bool isRead) {
  if (message.dictionary() == nullptr) {
    return std::nullopt;
  }
  Value copy = keepableCopy(message);
  copy.dictionary()->set(kContentRead, isRead);
  return copy;
}

std::size_t appendMarked(Array& kept, const Value* list, bool isRead) {
  const Array* messages = list != nullptr ? list->array() : nullptr;
  if (messages == nullptr) {
    return 0;
  }
  const std::size_t before = kept.size();
  for (const Value& message : *messages) {
    if (auto copy = marked(message, isRead)) {
      kept.push_back(std::move(*copy));
    }
  }
  return kept.size() - before;
}

std::string identifierText(const Object& identifier) {
  return identifier ? describe(*identifier) : std::string();
}

// Kept: null becomes "" at this level only, and not in arrays; hosts test for "" where the service sends null. Deeper
// ones are left out when the body is kept.
Dictionary withoutNulls(const Dictionary& dictionary) {
  Dictionary copy;
  copy.reserve(dictionary.size());
  for (const auto& [key, value] : dictionary) {
    copy.set(key, value.isNull() ? Value("") : value);
  }
  return copy;
}

Dictionary bodyWithoutNulls(const Dictionary& body) {
  Dictionary copy = withoutNulls(body);
  for (const auto& [key, value] : body) {
    if (const Dictionary* inner = value.dictionary()) {
      copy.set(key, withoutNulls(*inner));
    }
  }
  return copy;
}

// The value under `key` in the first of the one-entry dictionaries that has it.
Object keptBody(const Array& bodies, const std::string& key) {
  for (const Value& entry : bodies) {
    const Dictionary* dictionary = entry.dictionary();
    if (const Value* body = dictionary != nullptr ? dictionary->find(key) : nullptr) {
      return *body;
    }
  }
  return nil;
}

// Handlers of the host may be empty, and what they use may be destroyed when an exit handler runs.
template <typename Handler, typename Argument>
void call(const Handler& handler, Argument&& argument) {
  if (handler && !isEndingAtExit()) {
    handler(std::forward<Argument>(argument));
  }
}

}  // namespace

void KesuInbox::readAhead(BackgroundQueue& worker) {
  worker.post([&defaults = defaults_] {
    for (const std::string_view key : kInboxKeys) {
      defaults.get(key);
    }
  });
}

void KesuInbox::kesu_countNewUnFetched(CountHandler handler) {
  requester_.unreadMessagesCountWithCount(
      storedCredentials(defaults_),
      [handler = std::move(handler)](const Object& reply) { call(handler, countIn(reply)); });
}

void KesuInbox::kesu_getTotalUnreadMessages(CountHandler handler) {
  const ServiceCredentials who = storedCredentials(defaults_);
  if (!who.kak || isMissingOrEmpty(who.kaid) || isMissingOrEmpty(who.kaid2)) {
    call(handler, 0);
    return;
  }
  const Array headers = storedArray(kHeadersDefault);
  // Counted before the request, as the headers are now.
  const auto unread =
      headers.size() - static_cast<std::size_t>(std::count_if(headers.begin(), headers.end(), isContentRead));
  requester_.unreadMessagesCountWithCount(who, [unread, handler = std::move(handler)](const Object& reply) {
    const std::int64_t fetched = countIn(reply);
    std::int64_t sum = 0;
    // A service may send any number.
    const bool overflows = __builtin_add_overflow(static_cast<std::int64_t>(unread), fetched, &sum);
    call(handler, overflows ? fetched : sum);
  });
}

void KesuInbox::kesu_getMessageHeadersForType(KesuInAppMessageType type, ObjectHandler handler) {
  // Before the request: the previous headers are those that were known until this fetch.
  if (auto headers = defaults_.get(kHeadersDefault)) {
    store(kPreviousHeadersDefault, std::move(*headers));
    defaults_.synchronize();
  }
  if (type == KesuInAppMessageType::Read) {
    call(handler, kesu_previousReadMessages());
    return;
  }
  requester_.unreadMessagesData(storedCredentials(defaults_),
                                [this, type, handler = std::move(handler)](const Object& reply) {
                                  if (reply && reply->dictionary() != nullptr) {
                                    keepHeaders(type, reply, handler);
                                  } else {
                                    call(handler, Object());
                                  }
                                });
}

void KesuInbox::keepHeaders(KesuInAppMessageType type, const Object& reply, const ObjectHandler& handler) {
  const Value* list = member(reply, kHeaderListKey);
  Array merged = storedArray(kHeadersDefault);
  const bool isChanged = appendMarked(merged, list, false) > 0;
  Object all = type == KesuInAppMessageType::All ? Object(Value(merged)) : Object();
  // Kept: the list is not trimmed at 20 entries, however it grows.
  if (isChanged) {
    store(kHeadersDefault, std::move(merged));
    if (!defaults_.contains(kPreviousHeadersDefault)) {
      store(kPreviousHeadersDefault, "");
    }
    defaults_.synchronize();
  }
  switch (type) {
    case KesuInAppMessageType::Unread:
      call(handler, copyOf(list));
      return;
    case KesuInAppMessageType::All:
      call(handler, std::move(all));
      return;
    case KesuInAppMessageType::Read:
      break;
  }
  call(handler, Object());
}

void KesuInbox::kesu_getMessagesForType(KesuInAppMessageType type, ObjectHandler handler) {
  switch (type) {
    case KesuInAppMessageType::Unread:
      getAllMessagesTypeUnread(std::move(handler));
      return;
    case KesuInAppMessageType::Read:
      call(handler, Object(defaults_.get(kReadMessagesDefault)));
      return;
    case KesuInAppMessageType::All:
      getAllMessagesTypeAll(std::move(handler));
      return;
  }
}

void KesuInbox::getAllMessagesTypeUnread(ObjectHandler handler) {
  requester_.getAllMessages(storedCredentials(defaults_), [this, handler = std::move(handler)](const Object& reply) {
    const Value* payloadList = member(reply, kMessageListKey);
    afterwards([&] { call(handler, copyOf(payloadList)); },
               [&] {
                 if (payloadList != nullptr) {
                   keepAsRead(*payloadList);
                 }
               });
  });
}

// What was read is looked up before the fetch, so that the messages of its reply are not in both lists.
void KesuInbox::getAllMessagesTypeAll(ObjectHandler handler) {
  Array both;
  if (auto read = defaults_.get(kReadMessagesDefault)) {
    both.push_back(std::move(*read));
  }
  getAllMessagesTypeUnread([both = std::move(both), handler = std::move(handler)](const Object& unread) {
    Array lists = both;
    if (unread) {
      lists.insert(lists.begin(), *unread);
    }
    call(handler, Object(Value(std::move(lists))));
  });
}

void KesuInbox::keepAsRead(const Value& payloadList) {
  Array read = storedArray(kReadMessagesDefault);
  // Kept: this list is not trimmed either.
  if (appendMarked(read, &payloadList, true) > 0) {
    store(kReadMessagesDefault, std::move(read));
    defaults_.synchronize();
  }
}

void KesuInbox::kesu_getMessageWithContentID(const Object& contentID, const Object& messageID, ObjectHandler handler) {
  updateDefaultsForReadMessage(messageID);
  const std::string key = identifierText(messageID) + identifierText(contentID);
  if (!isMissingOrEmpty(contentID) && !isMissingOrEmpty(messageID)) {
    if (const Object body = keptBody(storedArray(kBodiesDefault), key)) {
      call(handler, body);
      return;
    }
  }
  requester_.messageWithMid(messageID, contentID, storedCredentials(defaults_),
                            [this, key, handler = std::move(handler)](const Object& reply) {
                              const Dictionary* body = reply ? reply->dictionary() : nullptr;
                              if (body == nullptr) {
                                call(handler, Object());
                                return;
                              }
                              // The form that the next call finds.
                              Value kept = keepableCopy(bodyWithoutNulls(*body));
                              keepBody(key, kept);
                              call(handler, Object(std::move(kept)));
                            });
}

void KesuInbox::updateDefaultsForReadMessage(const Object& messageID) {
  std::optional<Value> stored = defaults_.get(kHeadersDefault);
  Array* headers = stored ? stored->array() : nullptr;
  if (headers == nullptr) {
    return;
  }
  const auto isMeant = [&messageID](const Value& header) {
    const Dictionary* dictionary = header.dictionary();
    const Value* mid = dictionary != nullptr ? dictionary->find(kMessageIdKey) : nullptr;
    return mid != nullptr && messageID && *mid == *messageID;
  };
  const auto header = std::find_if(headers->begin(), headers->end(), isMeant);
  if (header != headers->end()) {
    header->dictionary()->set(kContentRead, true);
  }
  // Kept: written also when no header matched.
  store(kHeadersDefault, std::move(*stored));
  defaults_.synchronize();
}

void KesuInbox::keepBody(const std::string& key, const Value& body) {
  Array bodies = storedArray(kBodiesDefault);
  // Newest first: the last one is dropped, and the first with a key is found.
  bodies.insert(bodies.begin(), Dictionary{{key, body}});
  if (bodies.size() >= kBodiesLimit) {
    bodies.pop_back();
  }
  store(kBodiesDefault, std::move(bodies));
  defaults_.synchronize();
}

Object KesuInbox::kesu_previousReadMessages() {
  return defaults_.get(kPreviousHeadersDefault);
}

// Empty where nothing, or no array, is kept.
Array KesuInbox::storedArray(std::string_view key) {
  std::optional<Value> value = defaults_.get(key);
  Array* array = value ? value->array() : nullptr;
  return array != nullptr ? std::move(*array) : Array();
}

void KesuInbox::store(std::string_view key, Value value) {
  warnWhenLarge(key, value);
  defaults_.set(key, std::move(value));
}

// Measures each key once and then only what is written: measuring all of them each time would cost as much as storing.
void KesuInbox::warnWhenLarge(std::string_view key, const Value& written) {
  if (warned_) {
    return;
  }
  keptBytes_[key] = keptSize(written);
  std::size_t sum = 0;
  for (const std::string_view each : kInboxKeys) {
    const auto [known, isNew] = keptBytes_.try_emplace(each, 0);
    const std::optional<Value> value = isNew && sum <= kWarningBytes ? defaults_.get(each) : std::nullopt;
    known->second = value ? keptSize(*value) : known->second;
    sum += known->second;
  }
  warned_ = sum > kWarningBytes;
  if (warned_) {
    KESU_LOG(2, "The inbox takes %zu kB in the user defaults; nothing in it is ever removed.", sum / 1024);
  }
}

}  // namespace kesu
