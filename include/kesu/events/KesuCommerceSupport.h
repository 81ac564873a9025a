#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Help for customers about an order: chats, tickets, feedback.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuCommerceSupport {
 public:
  KesuCommerceSupport() = delete;

  /// [KesuCommerceSupport postLiveChatStartedWithTopic:withOrderNumber:withAttributes:]
  /// Event "CommerceSupportLiveChatStarted". Keys: "topic", "orderNumber" (object).
  static void postLiveChatStartedWithTopic(const Object& topic, const Object& orderNumber,
                                           const Attributes& attributes = {});

  /// [KesuCommerceSupport postLiveChatEndedWithTopic:withOrderNumber:withAttributes:]
  /// Event "CommerceSupportLiveChatEnded". Keys: "topic", "orderNumber" (object).
  static void postLiveChatEndedWithTopic(const Object& topic, const Object& orderNumber,
                                         const Attributes& attributes = {});

  /// [KesuCommerceSupport postTicketCreated:withTopic:withOrderNumber:withAttributes:]
  /// Event "CommerceSupportTicketCreated". Keys: "itemID", "topic", "orderNumber" (object).
  static void postTicketCreated(const Object& itemID, const Object& topic, const Object& orderNumber,
                                const Attributes& attributes = {});

  /// [KesuCommerceSupport postFeedbackReceived:withOrderNumber:withAttributes:]
  /// Event "CommerceSupportFeedbackReceived". Keys: "feedback", "orderNumber" (object).
  static void postFeedbackReceived(const Object& feedback, const Object& orderNumber,
                                   const Attributes& attributes = {});

  /// [KesuCommerceSupport postQualityOfServiceRated:withOrderNumber:rateOn5Scale:withAttributes:]
  /// Event "CommerceSupportQualityOfService". Keys: "comment", "orderNumber", "rating" (object).
  static void postQualityOfServiceRated(const Object& comment, const Object& orderNumber, const Object& rateOn5Scale,
                                        const Attributes& attributes = {});
};

}  // namespace kesu
