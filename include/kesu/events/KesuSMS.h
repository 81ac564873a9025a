#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Registration for text messages. The records go to the table of SMS records, not to the table of events.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuSMS {
 public:
  KesuSMS() = delete;

  /// Posts event "KesuSMSRegister": the user registered a device for text messages. Keys: "phoneNumber", "countryCode"
  /// (as is); "a" = "r". [KesuSMS postRegisteredDevice:withCountryCode:withAttributes:]
  static void postRegisteredDevice(const Object& phoneNumber, const Object& countryCode,
                                   const Attributes& attributes = {});

  /// Posts event "KesuSMSVerification": the user entered the code that verifies a device. Keys: "phoneNumber",
  /// "verificationCode", "countryCode" (as is); "a" = "v".
  /// [KesuSMS postVerification:withVerificationCode:withCountryCode:withAttributes:]
  static void postVerification(const Object& phoneNumber, const Object& verificationCode, const Object& countryCode,
                               const Attributes& attributes = {});

  /// Posts event "KesuSMSUnSubscribe": the user unsubscribed a device from text messages. Keys: "phoneNumber",
  /// "countryCode" (as is); "a" = "u". [KesuSMS postUnsubscribeDevice:withCountryCode:withAttributes:]
  static void postUnsubscribeDevice(const Object& phoneNumber, const Object& countryCode,
                                    const Attributes& attributes = {});
};

}  // namespace kesu
