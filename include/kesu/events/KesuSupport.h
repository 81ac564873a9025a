#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Help for users: calls, chats, tickets, feedback.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuSupport {
 public:
  KesuSupport() = delete;

  /// Posts event "SupportRequestedPhoneCallback": the user asked to be called back. No keys of its own.
  /// [KesuSupport postRequestedPhoneCallback:]
  static void postRequestedPhoneCallback(const Attributes& attributes = {});

  /// Posts event "SupportLiveChatStarted": a live chat was started. Keys: "topic" (object).
  /// [KesuSupport postLiveChatStartedWithTopic:withAttributes:]
  static void postLiveChatStartedWithTopic(const Object& topic, const Attributes& attributes = {});

  /// Posts event "LiveChatEnded": a live chat ended. Keys: "topic" (object).
  /// [KesuSupport postLiveChatEndedWithTopic:withAttributes:]
  static void postLiveChatEndedWithTopic(const Object& topic, const Attributes& attributes = {});

  /// Posts event "SupportTicketCreated": a ticket was created. Keys: "itemID", "topic" (object).
  /// [KesuSupport postTicketCreated:withTopic:withAttributes:]
  static void postTicketCreated(const Object& itemID, const Object& topic, const Attributes& attributes = {});

  /// Posts event "SupportFeedbackReceived": feedback was received. Keys: "feedback" (object).
  /// [KesuSupport postFeedbackReceived:withAttributes:]
  static void postFeedbackReceived(const Object& feedback, const Attributes& attributes = {});

  /// Posts event "SupportQualityOfService": the user rated the service. Keys: "comment", "rating" (object).
  /// [KesuSupport postQualityOfServiceRated:rateOn5Scale:withAttributes:]
  static void postQualityOfServiceRated(const Object& comment, const Object& rateOn5Scale,
                                        const Attributes& attributes = {});
};

}  // namespace kesu
