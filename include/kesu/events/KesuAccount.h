#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Accounts: registration, login, logout, passwords.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuAccount {
 public:
  KesuAccount() = delete;

  /// [KesuAccount postLoginOffered:] Event "AccountLoginOffered", no keys of its own.
  static void postLoginOffered(const Attributes& attributes = {});

  /// [KesuAccount postLoginStarted:] Event "AccountLoginStarted", no keys of its own.
  static void postLoginStarted(const Attributes& attributes = {});

  /// [KesuAccount postRegistrationOffered:] Event "AccountRegistrationOffered", no keys of its own.
  static void postRegistrationOffered(const Attributes& attributes = {});

  /// [KesuAccount postRegistrationStarted:] Event "AccountRegistrationStarted", no keys of its own.
  static void postRegistrationStarted(const Attributes& attributes = {});

  /// [KesuAccount postSocialLoginOffered:withAttributes:] Event "AccountSocialLoginOffered".
  /// Keys: "type" (object).
  static void postSocialLoginOffered(const Object& type, const Attributes& attributes = {});

  /// [KesuAccount postSocialLoginStarted:withAttributes:] Event "AccountSocialLoginStarted".
  /// Keys: "type" (object).
  static void postSocialLoginStarted(const Object& type, const Attributes& attributes = {});

  /// [KesuAccount postSocialLoginCompleted:withAttributes:] Event "AccountSocialLoginCompleted".
  /// Keys: "type" (object).
  static void postSocialLoginCompleted(const Object& type, const Attributes& attributes = {});

  /// [KesuAccount postRegistrationCompleted:] Event "AccountRegistrationCompleted", no keys of its own.
  static void postRegistrationCompleted(const Attributes& attributes = {});

  /// [KesuAccount postLoginCompleted:withErrCode:withAttributes:] Event "AccountLoginCompleted".
  /// Keys: "success" (flag); "errCodeStr" (object). A text does not pass for a flag.
  static void postLoginCompleted(bool success, const Object& errCode, const Attributes& attributes = {});
  static void postLoginCompleted(const char*, const Object&, const Attributes& = {}) = delete;

  /// [KesuAccount postLogoutCompleted:withAttributes:] Event "AccountLogoutCompleted".
  /// Keys: "logoutExplicit" (flag). A text does not pass for a flag.
  static void postLogoutCompleted(bool logoutExplicit, const Attributes& attributes = {});
  static void postLogoutCompleted(const char*, const Attributes& = {}) = delete;

  /// [KesuAccount postPasswordResetRequested:] Event "AccountPasswordResetRequested", no keys of its own.
  static void postPasswordResetRequested(const Attributes& attributes = {});

  /// [KesuAccount postPasswordResetCompleted:] Event "AccountPasswordResetCompleted", no keys of its own.
  static void postPasswordResetCompleted(const Attributes& attributes = {});
};

}  // namespace kesu
