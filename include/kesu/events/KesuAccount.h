#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Accounts: registration, login, logout, passwords.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuAccount {
 public:
  KesuAccount() = delete;

  /// Posts event "AccountLoginOffered": a login was offered. No keys of its own. [KesuAccount postLoginOffered:]
  static void postLoginOffered(const Attributes& attributes = {});

  /// Posts event "AccountLoginStarted": a login was started. No keys of its own. [KesuAccount postLoginStarted:]
  static void postLoginStarted(const Attributes& attributes = {});

  /// Posts event "AccountRegistrationOffered": a registration was offered. No keys of its own.
  /// [KesuAccount postRegistrationOffered:]
  static void postRegistrationOffered(const Attributes& attributes = {});

  /// Posts event "AccountRegistrationStarted": a registration was started. No keys of its own.
  /// [KesuAccount postRegistrationStarted:]
  static void postRegistrationStarted(const Attributes& attributes = {});

  /// Posts event "AccountSocialLoginOffered": a login through a social network was offered. Keys: "type" (object).
  /// [KesuAccount postSocialLoginOffered:withAttributes:]
  static void postSocialLoginOffered(const Object& type, const Attributes& attributes = {});

  /// Posts event "AccountSocialLoginStarted": a login through a social network was started. Keys: "type" (object).
  /// [KesuAccount postSocialLoginStarted:withAttributes:]
  static void postSocialLoginStarted(const Object& type, const Attributes& attributes = {});

  /// Posts event "AccountSocialLoginCompleted": a login through a social network was completed. Keys: "type" (object).
  /// [KesuAccount postSocialLoginCompleted:withAttributes:]
  static void postSocialLoginCompleted(const Object& type, const Attributes& attributes = {});

  /// Posts event "AccountRegistrationCompleted": a registration was completed. No keys of its own.
  /// [KesuAccount postRegistrationCompleted:]
  static void postRegistrationCompleted(const Attributes& attributes = {});

  /// Posts event "AccountLoginCompleted": a login ended, with or without success. Keys: "success" (flag); "errCodeStr"
  /// (object). [KesuAccount postLoginCompleted:withErrCode:withAttributes:]
  static void postLoginCompleted(bool success, const Object& errCode, const Attributes& attributes = {});
  static void postLoginCompleted(const char*, const Object&, const Attributes& = {}) = delete;

  /// Posts event "AccountLogoutCompleted": the user was logged out. Keys: "logoutExplicit" (flag).
  /// [KesuAccount postLogoutCompleted:withAttributes:]
  static void postLogoutCompleted(bool logoutExplicit, const Attributes& attributes = {});
  static void postLogoutCompleted(const char*, const Attributes& = {}) = delete;

  /// Posts event "AccountPasswordResetRequested": a new password was requested. No keys of its own.
  /// [KesuAccount postPasswordResetRequested:]
  static void postPasswordResetRequested(const Attributes& attributes = {});

  /// Posts event "AccountPasswordResetCompleted": a new password was set. No keys of its own.
  /// [KesuAccount postPasswordResetCompleted:]
  static void postPasswordResetCompleted(const Attributes& attributes = {});
};

}  // namespace kesu
