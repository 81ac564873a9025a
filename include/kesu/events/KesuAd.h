#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Advertisements: requested, received, clicked.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuAd {
 public:
  KesuAd() = delete;

  /// Posts event "AdRequested": an advertisement was requested. Keys: "adNetwork", "appScreen", "size", "type"
  /// (object). [KesuAd postAdRequested:fromAppScreen:withAdSize:adType:withAttributes:]
  static void postAdRequested(const Object& adNetwork, const Object& appScreen, const Object& adSize,
                              const Object& adType, const Attributes& attributes = {});

  /// Posts event "AdReceived": an answer to a request for an advertisement arrived. Keys: "adNetwork", "appScreen",
  /// "resultCode" (object); "success" (flag).
  /// [KesuAd postAdReceived:fromAppScreen:withResultCode:isSuccess:withAttributes:]
  static void postAdReceived(const Object& adNetwork, const Object& appScreen, const Object& resultCode, bool isSuccess,
                             const Attributes& attributes = {});
  static void postAdReceived(const Object&, const Object&, const Object&, const char*, const Attributes& = {}) = delete;

  /// Posts event "AdClicked": an advertisement was clicked. Keys: "adNetwork", "appScreen", "adCode" (object);
  /// "success" (flag); "errorCode" (object).
  /// [KesuAd postAdClicked:fromAppScreen:adCode:isSuccess:withErrorCode:withAttributes:]
  static void postAdClicked(const Object& adNetwork, const Object& appScreen, const Object& adCode, bool isSuccess,
                            const Object& errorCode, const Attributes& attributes = {});
  static void postAdClicked(const Object&, const Object&, const Object&, const char*, const Object&,
                            const Attributes& = {}) = delete;
};

}  // namespace kesu
