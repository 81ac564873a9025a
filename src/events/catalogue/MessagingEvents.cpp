#include <kesu/events/KesuMessaging.h>
#include <kesu/events/KesuSMS.h>
#include <kesu/events/KesuiMessageApps.h>

#include "events/catalogue/EventBuilder.h"

namespace kesu {
namespace {

constexpr std::int64_t kPlainMessage = 0;

}  // namespace

void KesuMessaging::postMessageSent(const Object& uniqueId, const Attributes& attributes) {
  postMessageSentOfType(kPlainMessage, uniqueId, attributes);
}

void KesuMessaging::postMessageSentOfType(std::int64_t type, const Object& uniqueId, const Attributes& attributes) {
  EventBuilder("MessageSent", attributes).integer("type", type).object("uniqueId", uniqueId).post();
}

void KesuMessaging::postMessageReceived(const Object& uniqueId, const Attributes& attributes) {
  postMessageReceivedOfType(kPlainMessage, uniqueId, attributes);
}

void KesuMessaging::postMessageReceivedOfType(std::int64_t type, const Object& uniqueId, const Attributes& attributes) {
  EventBuilder("MessageReceived", attributes).integer("type", type).object("uniqueId", uniqueId).post();
}

void KesuMessaging::postMessageNewConversation(const Object& uniqueId, const Attributes& attributes) {
  EventBuilder("MessageNewConversation", attributes).object("uniqueId", uniqueId).post();
}

void KesuMessaging::postMessageVoiceCall(const Object& uniqueId, const Attributes& attributes) {
  EventBuilder("MessageVoiceCall", attributes).object("uniqueId", uniqueId).post();
}

void KesuSMS::postRegisteredDevice(const Object& phoneNumber, const Object& countryCode, const Attributes& attributes) {
  EventBuilder("KesuSMSRegister", attributes)
      .asIs("phoneNumber", phoneNumber)
      .asIs("countryCode", countryCode)
      .constant("a", "r")
      .postToTableM();
}

void KesuSMS::postVerification(const Object& phoneNumber, const Object& verificationCode, const Object& countryCode,
                               const Attributes& attributes) {
  EventBuilder("KesuSMSVerification", attributes)
      .asIs("phoneNumber", phoneNumber)
      .asIs("verificationCode", verificationCode)
      .asIs("countryCode", countryCode)
      .constant("a", "v")
      .postToTableM();
}

void KesuSMS::postUnsubscribeDevice(const Object& phoneNumber, const Object& countryCode,
                                    const Attributes& attributes) {
  EventBuilder("KesuSMSUnSubscribe", attributes)
      .asIs("phoneNumber", phoneNumber)
      .asIs("countryCode", countryCode)
      .constant("a", "u")
      .postToTableM();
}

void KesuiMessageApps::postInsertMessageWithAttributes(const Attributes& attributes) {
  EventBuilder("iMessageAppsInsertMessage", attributes).post();
}

void KesuiMessageApps::postInsertStickerWithLocalizedDescription(bool localizedDescription,
                                                                 bool stickerImageFileURLString,
                                                                 const Attributes& attributes) {
  EventBuilder("iMessageAppsInsertSticker", attributes)
      .whenTrue("descriptionProvided", localizedDescription)
      .whenTrue("URLstringProvided", stickerImageFileURLString)
      .post();
}

void KesuiMessageApps::postInsertTextWithText(bool text, const Attributes& attributes) {
  EventBuilder("iMessageAppsInsertText", attributes).whenTrue("textProvided", text).post();
}

void KesuiMessageApps::postInsertAttachmentWithURL(bool url, bool alternateFileName, const Attributes& attributes) {
  EventBuilder("iMessageAppsInsertAttachment", attributes)
      .whenTrue("URLProvided", url)
      .whenTrue("fileNameProvided", alternateFileName)
      .post();
}

void KesuiMessageApps::postMessageStartSendingWithAttributes(const Attributes& attributes) {
  EventBuilder("iMessageAppsStartSendingMessage", attributes).post();
}

void KesuiMessageApps::postReceiveMessageWithAttributes(const Attributes& attributes) {
  EventBuilder("iMessageAppsReveiveMessage", attributes).post();
}

void KesuiMessageApps::postCancelSendingMessageWithAttributes(const Attributes& attributes) {
  EventBuilder("iMessageAppsCancelSendingMessage", attributes).post();
}

}  // namespace kesu
