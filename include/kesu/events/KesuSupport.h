#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Help for users: calls, chats, tickets, feedback.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuSupport {
 public:
  KesuSupport() = delete;

  /// [KesuSupport postRequestedPhoneCallback:] Event "SupportRequestedPhoneCallback", no keys of its own.
  static void postRequestedPhoneCallback(const Attributes& attributes = {});

  /// [KesuSupport postLiveChatStartedWithTopic:withAttributes:] Event "SupportLiveChatStarted".
  /// Keys: "topic" (object).
  static void postLiveChatStartedWithTopic(const Object& topic, const Attributes& attributes = {});

  /// [KesuSupport postLiveChatEndedWithTopic:withAttributes:] Event "LiveChatEnded".
  /// Keys: "topic" (object).
  static void postLiveChatEndedWithTopic(const Object& topic, const Attributes& attributes = {});

  /// [KesuSupport postTicketCreated:withTopic:withAttributes:] Event "SupportTicketCreated".
  /// Keys: "itemID", "topic" (object).
  static void postTicketCreated(const Object& itemID, const Object& topic, const Attributes& attributes = {});

  /// [KesuSupport postFeedbackReceived:withAttributes:] Event "SupportFeedbackReceived".
  /// Keys: "feedback" (object).
  static void postFeedbackReceived(const Object& feedback, const Attributes& attributes = {});

  /// [KesuSupport postQualityOfServiceRated:rateOn5Scale:withAttributes:] Event "SupportQualityOfService".
  /// Keys: "comment", "rating" (object).
  static void postQualityOfServiceRated(const Object& comment, const Object& rateOn5Scale,
                                        const Attributes& attributes = {});
};

}  // namespace kesu
