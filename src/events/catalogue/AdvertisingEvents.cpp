#include <kesu/events/KesuAd.h>
#include <kesu/events/KesuAdvocacy.h>

#include "events/catalogue/EventBuilder.h"

namespace kesu {

void KesuAd::postAdRequested(const Object& adNetwork, const Object& appScreen, const Object& adSize,
                             const Object& adType, const Attributes& attributes) {
  EventBuilder("AdRequested", attributes)
      .object("adNetwork", adNetwork)
      .object("appScreen", appScreen)
      .object("size", adSize)
      .object("type", adType)
      .post();
}

void KesuAd::postAdReceived(const Object& adNetwork, const Object& appScreen, const Object& resultCode, bool isSuccess,
                            const Attributes& attributes) {
  EventBuilder("AdReceived", attributes)
      .object("adNetwork", adNetwork)
      .object("appScreen", appScreen)
      .object("resultCode", resultCode)
      .flag("success", isSuccess)
      .post();
}

void KesuAd::postAdClicked(const Object& adNetwork, const Object& appScreen, const Object& adCode, bool isSuccess,
                           const Object& errorCode, const Attributes& attributes) {
  EventBuilder("AdClicked", attributes)
      .object("adNetwork", adNetwork)
      .object("appScreen", appScreen)
      .object("adCode", adCode)
      .flag("success", isSuccess)
      .object("errorCode", errorCode)
      .post();
}

void KesuAdvocacy::postRequestForFeedback(const Attributes& attributes) {
  EventBuilder("AdvocacyRequestForFeedback", attributes).post();
}

void KesuAdvocacy::postFeedbackProvided(const Attributes& attributes) {
  EventBuilder("AdvocacyFeedbackProvided", attributes).post();
}

void KesuAdvocacy::postRequestRating(const Attributes& attributes) {
  EventBuilder("AdvocacyRequestRating", attributes).post();
}

}  // namespace kesu
