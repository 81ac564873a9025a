#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Registration for text messages. The records go to the table of SMS records, not to the table of events.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuSMS {
 public:
  KesuSMS() = delete;

  /// [KesuSMS postRegisteredDevice:withCountryCode:withAttributes:] Event "KesuSMSRegister".
  /// Keys: "phoneNumber", "countryCode" (as is); "a" = "r".
  static void postRegisteredDevice(const Object& phoneNumber, const Object& countryCode,
                                   const Attributes& attributes = {});

  /// [KesuSMS postVerification:withVerificationCode:withCountryCode:withAttributes:] Event "KesuSMSVerification".
  /// Keys: "phoneNumber", "verificationCode", "countryCode" (as is); "a" = "v".
  static void postVerification(const Object& phoneNumber, const Object& verificationCode, const Object& countryCode,
                               const Attributes& attributes = {});

  /// [KesuSMS postUnsubscribeDevice:withCountryCode:withAttributes:] Event "KesuSMSUnSubscribe".
  /// Keys: "phoneNumber", "countryCode" (as is); "a" = "u".
  static void postUnsubscribeDevice(const Object& phoneNumber, const Object& countryCode,
                                    const Attributes& attributes = {});
};

}  // namespace kesu
