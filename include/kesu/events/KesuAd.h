#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Advertisements: asked for, received, clicked.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuAd {
 public:
  KesuAd() = delete;

  /// [KesuAd postAdRequested:fromAppScreen:withAdSize:adType:withAttributes:] Event "AdRequested".
  /// Keys: "adNetwork", "appScreen", "size", "type" (object).
  static void postAdRequested(const Object& adNetwork, const Object& appScreen, const Object& adSize,
                              const Object& adType, const Attributes& attributes = {});

  /// [KesuAd postAdReceived:fromAppScreen:withResultCode:isSuccess:withAttributes:] Event "AdReceived".
  /// Keys: "adNetwork", "appScreen", "resultCode" (object); "success" (flag). A text does not pass for a flag.
  static void postAdReceived(const Object& adNetwork, const Object& appScreen, const Object& resultCode, bool isSuccess,
                             const Attributes& attributes = {});
  static void postAdReceived(const Object&, const Object&, const Object&, const char*, const Attributes& = {}) = delete;

  /// [KesuAd postAdClicked:fromAppScreen:adCode:isSuccess:withErrorCode:withAttributes:] Event "AdClicked".
  /// Keys: "adNetwork", "appScreen", "adCode" (object); "success" (flag); "errorCode" (object). A text does not pass
  /// for a flag.
  static void postAdClicked(const Object& adNetwork, const Object& appScreen, const Object& adCode, bool isSuccess,
                            const Object& errorCode, const Attributes& attributes = {});
  static void postAdClicked(const Object&, const Object&, const Object&, const char*, const Object&,
                            const Attributes& = {}) = delete;
};

}  // namespace kesu
