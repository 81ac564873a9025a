#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/messaging/KesuInAppMessageType.h>
#include <kesu/platform/BackgroundQueue.h>
#include <kesu/platform/UserDefaults.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "messaging/KesuInAppMessagesRequester.h"
#include "services/ServiceCredentials.h"

namespace kesu {

/// The messages of this installation: asks the service for what is new and keeps in the user defaults what was seen.
/// Nothing that is kept is ever cleared. Main thread; handlers are called there, some before the operation returns,
/// some twice (an error that comes with a reply) or never, as KesuInAppMessagesRequester says. An exit handler keeps
/// what still comes and calls nobody. Empty handlers are allowed.
///
/// What the service sends is kept without its null entries, at any depth, and without the control characters that no
/// property list can hold: the user defaults would refuse the whole list. New lists are handed over as they were sent.
/// Each key is written once an operation, however many messages a reply brings.
class KesuInbox {
 public:
  using CountHandler = std::function<void(std::int64_t count)>;
  using ObjectHandler = std::function<void(const Object& result)>;

  /// Together the four keys of the inbox may take this much before a warning (level 2, once a process) is logged.
  static constexpr std::size_t kWarningBytes = std::size_t{384} * 1024;

  KesuInbox(UserDefaults& defaults, KesuInAppMessagesRequester& requester)
      : defaults_(defaults), requester_(requester) {}

  /// Has the lists read into memory on the worker, since the first reading of a long one takes tens of milliseconds.
  void readAhead(BackgroundQueue& worker);

  /// [kesu_countNewUnFetched:] How many new messages the service has; 0 when it cannot say.
  void kesu_countNewUnFetched(CountHandler handler);

  /// [kesu_getTotalUnreadMessages:] Fetched headers whose message was not read, plus the new messages that the service
  /// counts. 0 without a request when the key or an identifier is missing.
  void kesu_getTotalUnreadMessages(CountHandler handler);

  /// [kesu_getMessageHeadersForType:withCompletionHandler:] Headers: those of new messages (Unread), those known before
  /// the last fetch (Read, at once and without a request; "" when there is none yet, nil when nothing is kept), or
  /// those known with the new ones behind (All). Other types fetch and get nil. New headers are kept, with
  /// "contentRead" false; the list is never trimmed. Entries that are no dictionary are not kept.
  void kesu_getMessageHeadersForType(KesuInAppMessageType type, ObjectHandler handler);

  /// [kesu_getMessagesForType:withCompletionHandler:] Full messages: the new ones (Unread), which are handed over and
  /// then kept as read; those kept as read (Read, at once); or an array of both lists (All). Other types never call the
  /// handler.
  void kesu_getMessagesForType(KesuInAppMessageType type, const ObjectHandler& handler);

  /// [kesu_getMessageWithContentID:andMessageID:withCompletionHandler:] The body of one message, from the last 19
  /// fetched when it is among them (at once, without request or receipt), else from the service; nil when it has none.
  /// In it, and in the dictionaries directly in it, null is "". The message counts as read from now on, whatever comes.
  void kesu_getMessageWithContentID(const Object& contentID, const Object& messageID, ObjectHandler handler);

  /// [kesu_previousReadMessages] The headers that were known before the last fetch; "" when there was none, nil when
  /// nothing is kept. Kept: hosts tell "none yet" by that text.
  Object kesu_previousReadMessages();

 private:
  void keepHeaders(KesuInAppMessageType type, const Object& reply, const ObjectHandler& handler);
  void getAllMessagesTypeUnread(const ObjectHandler& handler);
  void getAllMessagesTypeAll(const ObjectHandler& handler);
  void keepAsRead(const Value& payloadList);
  void updateDefaultsForReadMessage(const Object& messageID);
  void keepBody(const std::string& key, const Dictionary& body);
  Array storedArray(std::string_view key);
  void store(std::string_view key, Value value);
  void warnWhenLarge(std::string_view key, const Value& written);

  UserDefaults& defaults_;
  KesuInAppMessagesRequester& requester_;
  std::map<std::string_view, std::size_t> keptBytes_;  // Of the keys that were measured.
  bool warned_ = false;
};

}  // namespace kesu
