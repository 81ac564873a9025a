#include <kesu/events/KesuAccount.h>

#include "events/catalogue/EventBuilder.h"

namespace kesu {

void KesuAccount::postLoginOffered(const Attributes& attributes) {
  EventBuilder("AccountLoginOffered", attributes).post();
}

void KesuAccount::postLoginStarted(const Attributes& attributes) {
  EventBuilder("AccountLoginStarted", attributes).post();
}

void KesuAccount::postRegistrationOffered(const Attributes& attributes) {
  EventBuilder("AccountRegistrationOffered", attributes).post();
}

void KesuAccount::postRegistrationStarted(const Attributes& attributes) {
  EventBuilder("AccountRegistrationStarted", attributes).post();
}

void KesuAccount::postSocialLoginOffered(const Object& type, const Attributes& attributes) {
  EventBuilder("AccountSocialLoginOffered", attributes).object("type", type).post();
}

void KesuAccount::postSocialLoginStarted(const Object& type, const Attributes& attributes) {
  EventBuilder("AccountSocialLoginStarted", attributes).object("type", type).post();
}

void KesuAccount::postSocialLoginCompleted(const Object& type, const Attributes& attributes) {
  EventBuilder("AccountSocialLoginCompleted", attributes).object("type", type).post();
}

void KesuAccount::postRegistrationCompleted(const Attributes& attributes) {
  EventBuilder("AccountRegistrationCompleted", attributes).post();
}

void KesuAccount::postLoginCompleted(bool success, const Object& errCode, const Attributes& attributes) {
  EventBuilder("AccountLoginCompleted", attributes).flag("success", success).object("errCodeStr", errCode).post();
}

void KesuAccount::postLogoutCompleted(bool logoutExplicit, const Attributes& attributes) {
  EventBuilder("AccountLogoutCompleted", attributes).flag("logoutExplicit", logoutExplicit).post();
}

void KesuAccount::postPasswordResetRequested(const Attributes& attributes) {
  EventBuilder("AccountPasswordResetRequested", attributes).post();
}

void KesuAccount::postPasswordResetCompleted(const Attributes& attributes) {
  EventBuilder("AccountPasswordResetCompleted", attributes).post();
}

}  // namespace kesu
