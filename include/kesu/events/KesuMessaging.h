#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

#include <cstdint>

namespace kesu {

/// Messages and calls between users.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuMessaging {
 public:
  KesuMessaging() = delete;

  /// Posts event "MessageSent": a message was sent. Keys: "type" = "0"; "uniqueId" (object).
  /// [KesuMessaging postMessageSent:withAttributes:]
  static void postMessageSent(const Object& uniqueId, const Attributes& attributes = {});

  /// Posts event "MessageSent": a message of a type was sent. Keys: "type" (integer); "uniqueId" (object).
  /// [KesuMessaging postMessageSentOfType:withUniqueId:withAttributes:]
  static void postMessageSentOfType(std::int64_t type, const Object& uniqueId, const Attributes& attributes = {});

  /// Posts event "MessageReceived": a message was received. Keys: "type" = "0"; "uniqueId" (object).
  /// [KesuMessaging postMessageReceived:withAttributes:]
  static void postMessageReceived(const Object& uniqueId, const Attributes& attributes = {});

  /// Posts event "MessageReceived": a message of a type was received. Keys: "type" (integer); "uniqueId" (object).
  /// [KesuMessaging postMessageReceivedOfType:withUniqueId:withAttributes:]
  static void postMessageReceivedOfType(std::int64_t type, const Object& uniqueId, const Attributes& attributes = {});

  /// Posts event "MessageNewConversation": a conversation was started. Keys: "uniqueId" (object).
  /// [KesuMessaging postMessageNewConversation:withAttributes:]
  static void postMessageNewConversation(const Object& uniqueId, const Attributes& attributes = {});

  /// Posts event "MessageVoiceCall": a voice call was made. Keys: "uniqueId" (object).
  /// [KesuMessaging postMessageVoiceCall:withAttributes:]
  static void postMessageVoiceCall(const Object& uniqueId, const Attributes& attributes = {});
};

}  // namespace kesu
