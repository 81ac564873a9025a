#include <kesu/events/KesuCommerceSupport.h>
#include <kesu/events/KesuSupport.h>

#include "events/catalogue/EventBuilder.h"

namespace kesu {

void KesuSupport::postRequestedPhoneCallback(const Attributes& attributes) {
  EventBuilder("SupportRequestedPhoneCallback", attributes).post();
}

void KesuSupport::postLiveChatStartedWithTopic(const Object& topic, const Attributes& attributes) {
  EventBuilder("SupportLiveChatStarted", attributes).object("topic", topic).post();
}

void KesuSupport::postLiveChatEndedWithTopic(const Object& topic, const Attributes& attributes) {
  EventBuilder("LiveChatEnded", attributes).object("topic", topic).post();  // Kept: without "Support".
}

void KesuSupport::postTicketCreated(const Object& itemID, const Object& topic, const Attributes& attributes) {
  EventBuilder("SupportTicketCreated", attributes).object("itemID", itemID).object("topic", topic).post();
}

void KesuSupport::postFeedbackReceived(const Object& feedback, const Attributes& attributes) {
  EventBuilder("SupportFeedbackReceived", attributes).object("feedback", feedback).post();
}

void KesuSupport::postQualityOfServiceRated(const Object& comment, const Object& rateOn5Scale,
                                            const Attributes& attributes) {
  EventBuilder("SupportQualityOfService", attributes).object("comment", comment).object("rating", rateOn5Scale).post();
}

void KesuCommerceSupport::postLiveChatStartedWithTopic(const Object& topic, const Object& orderNumber,
                                                       const Attributes& attributes) {
  EventBuilder("CommerceSupportLiveChatStarted", attributes)
      .object("topic", topic)
      .object("orderNumber", orderNumber)
      .post();
}

void KesuCommerceSupport::postLiveChatEndedWithTopic(const Object& topic, const Object& orderNumber,
                                                     const Attributes& attributes) {
  EventBuilder("CommerceSupportLiveChatEnded", attributes)
      .object("topic", topic)
      .object("orderNumber", orderNumber)
      .post();
}

void KesuCommerceSupport::postTicketCreated(const Object& itemID, const Object& topic, const Object& orderNumber,
                                            const Attributes& attributes) {
  EventBuilder("CommerceSupportTicketCreated", attributes)
      .object("itemID", itemID)
      .object("topic", topic)
      .object("orderNumber", orderNumber)
      .post();
}

void KesuCommerceSupport::postFeedbackReceived(const Object& feedback, const Object& orderNumber,
                                               const Attributes& attributes) {
  EventBuilder("CommerceSupportFeedbackReceived", attributes)
      .object("feedback", feedback)
      .object("orderNumber", orderNumber)
      .post();
}

void KesuCommerceSupport::postQualityOfServiceRated(const Object& comment, const Object& orderNumber,
                                                    const Object& rateOn5Scale, const Attributes& attributes) {
  EventBuilder("CommerceSupportQualityOfService", attributes)
      .object("comment", comment)
      .object("orderNumber", orderNumber)
      .object("rating", rateOn5Scale)
      .post();
}

}  // namespace kesu
