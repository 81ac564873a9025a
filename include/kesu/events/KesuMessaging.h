#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

#include <cstdint>

namespace kesu {

/// Messages and calls between users.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuMessaging {
 public:
  KesuMessaging() = delete;

  /// [KesuMessaging postMessageSent:withAttributes:] Event "MessageSent".
  /// Keys: "type" = "0"; "uniqueId" (object).
  static void postMessageSent(const Object& uniqueId, const Attributes& attributes = {});

  /// [KesuMessaging postMessageSentOfType:withUniqueId:withAttributes:] Event "MessageSent".
  /// Keys: "type" (integer); "uniqueId" (object).
  static void postMessageSentOfType(std::int64_t type, const Object& uniqueId, const Attributes& attributes = {});

  /// [KesuMessaging postMessageReceived:withAttributes:] Event "MessageReceived".
  /// Keys: "type" = "0"; "uniqueId" (object).
  static void postMessageReceived(const Object& uniqueId, const Attributes& attributes = {});

  /// [KesuMessaging postMessageReceivedOfType:withUniqueId:withAttributes:] Event "MessageReceived".
  /// Keys: "type" (integer); "uniqueId" (object).
  static void postMessageReceivedOfType(std::int64_t type, const Object& uniqueId, const Attributes& attributes = {});

  /// [KesuMessaging postMessageNewConversation:withAttributes:] Event "MessageNewConversation".
  /// Keys: "uniqueId" (object).
  static void postMessageNewConversation(const Object& uniqueId, const Attributes& attributes = {});

  /// [KesuMessaging postMessageVoiceCall:withAttributes:] Event "MessageVoiceCall".
  /// Keys: "uniqueId" (object).
  static void postMessageVoiceCall(const Object& uniqueId, const Attributes& attributes = {});
};

}  // namespace kesu
