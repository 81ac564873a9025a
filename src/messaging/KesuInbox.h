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

/// Keeps the messages of this installation: asks the service for new ones and stores in the user defaults what was
/// seen. Nothing that is stored is ever cleared. Main thread; handlers are called there, some before the operation
/// returns, some twice (an error that comes with a reply) or never, as KesuInAppMessagesRequester says. During an exit
/// handler replies are stored, but no handler is called. Empty handlers are allowed.
///
/// What the service sends is stored without its null entries, at any depth, and without the control characters that a
/// property list cannot represent: the user defaults would refuse the whole list. Handlers receive new lists as they
/// were sent. Each key is written once per operation, however many messages a reply has.
class KesuInbox {
 public:
  using CountHandler = std::function<void(std::int64_t count)>;
  using ObjectHandler = std::function<void(const Object& result)>;

  /// The size of the inbox's four keys above which a warning (level 2, once per process) is logged: the user defaults
  /// are read and written as a whole.
  static constexpr std::size_t kWarningBytes = std::size_t{384} * 1024;

  KesuInbox(UserDefaults& defaults, KesuInAppMessagesRequester& requester)
      : defaults_(defaults), requester_(requester) {}

  /// Reads the lists into memory on the worker: the first reading of a long one takes tens of milliseconds.
  void readAhead(BackgroundQueue& worker);

  /// Asks how many new messages the service has; 0 when the request fails. [kesu_countNewUnFetched:]
  void kesu_countNewUnFetched(CountHandler handler);

  /// Gets headers: those of new messages (Unread), those known before the last fetch (Read, called synchronously and
  /// without a request; "" when there is none yet, nil when nothing is stored), or those known followed by the new ones
  /// (All). Other types fetch and get nil. New headers are stored, with "contentRead" false; the list is never trimmed.
  /// Entries that are no dictionary are not stored. [kesu_getMessageHeadersForType:withCompletionHandler:]
  void kesu_getMessageHeadersForType(KesuInAppMessageType type, ObjectHandler handler);

  /// Gets full messages: the new ones (Unread), which are stored as read after the handler was called; those stored as
  /// read (Read, called synchronously); or an array of both lists (All). Other types never call the handler.
  /// [kesu_getMessagesForType:withCompletionHandler:]
  void kesu_getMessagesForType(KesuInAppMessageType type, ObjectHandler handler);

  /// Gets the body of one message, from the last 19 fetched when it is among them (called synchronously, without
  /// request or receipt), else from the service; nil when it has none. In it, and in the dictionaries directly in it,
  /// null is
  /// "". The message counts as read from now on, even if the request fails.
  /// [kesu_getMessageWithContentID:andMessageID:withCompletionHandler:]
  void kesu_getMessageWithContentID(const Object& contentID, const Object& messageID, ObjectHandler handler);

  /// Returns the headers that were known before the last fetch; "" when there was none, nil when nothing is stored.
  /// [kesu_previousReadMessages]
  /// Kept: hosts recognise "none yet" by that text.
  Object kesu_previousReadMessages();

  // Owed to the agreed interface; no caller inside the library.

  /// Adds the fetched headers whose message was not read and the new messages that the service counts. 0 without a
  /// request when the key or an identifier is missing. [kesu_getTotalUnreadMessages:]
  void kesu_getTotalUnreadMessages(CountHandler handler);

 private:
  void keepHeaders(KesuInAppMessageType type, const Object& reply, const ObjectHandler& handler);
  void getAllMessagesTypeUnread(ObjectHandler handler);
  void getAllMessagesTypeAll(ObjectHandler handler);
  void keepAsRead(const Value& payloadList);
  void updateDefaultsForReadMessage(const Object& messageID);
  void keepBody(const std::string& key, const Value& body);
  Array storedArray(std::string_view key);
  void store(std::string_view key, Value value);
  void warnWhenLarge(std::string_view key, const Value& written);

  UserDefaults& defaults_;
  KesuInAppMessagesRequester& requester_;
  std::map<std::string_view, std::size_t> keptBytes_;  // Size of each key that was measured.
  bool warned_ = false;
};

}  // namespace kesu
