#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Help for customers about an order: chats, tickets, feedback.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuCommerceSupport {
 public:
  KesuCommerceSupport() = delete;

  /// Posts event "CommerceSupportLiveChatStarted": a live chat about an order was started. Keys: "topic", "orderNumber"
  /// (object). [KesuCommerceSupport postLiveChatStartedWithTopic:withOrderNumber:withAttributes:]
  static void postLiveChatStartedWithTopic(const Object& topic, const Object& orderNumber,
                                           const Attributes& attributes = {});

  /// Posts event "CommerceSupportLiveChatEnded": a live chat about an order ended. Keys: "topic", "orderNumber"
  /// (object). [KesuCommerceSupport postLiveChatEndedWithTopic:withOrderNumber:withAttributes:]
  static void postLiveChatEndedWithTopic(const Object& topic, const Object& orderNumber,
                                         const Attributes& attributes = {});

  /// Posts event "CommerceSupportTicketCreated": a ticket about an order was created. Keys: "itemID", "topic",
  /// "orderNumber" (object). [KesuCommerceSupport postTicketCreated:withTopic:withOrderNumber:withAttributes:]
  static void postTicketCreated(const Object& itemID, const Object& topic, const Object& orderNumber,
                                const Attributes& attributes = {});

  /// Posts event "CommerceSupportFeedbackReceived": feedback about an order was received. Keys: "feedback",
  /// "orderNumber" (object). [KesuCommerceSupport postFeedbackReceived:withOrderNumber:withAttributes:]
  static void postFeedbackReceived(const Object& feedback, const Object& orderNumber,
                                   const Attributes& attributes = {});

  /// Posts event "CommerceSupportQualityOfService": the user rated the service for an order. Keys: "comment",
  /// "orderNumber", "rating" (object).
  /// [KesuCommerceSupport postQualityOfServiceRated:withOrderNumber:rateOn5Scale:withAttributes:]
  static void postQualityOfServiceRated(const Object& comment, const Object& orderNumber, const Object& rateOn5Scale,
                                        const Attributes& attributes = {});
};

}  // namespace kesu
