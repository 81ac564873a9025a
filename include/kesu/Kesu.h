#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>
#include <kesu/graphics/Color.h>
#include <kesu/messaging/KesuInAppMessageType.h>
#include <kesu/messaging/KesuInAppStatus.h>
#include <kesu/platform/NotificationCenter.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace kesu {

class View;
class ViewController;
struct KesuInAppOptions;

/// The entry of the library. A host calls initialize() once, early, on its main thread; from then on everything else
/// may be called. Nothing here waits for the network.
///
/// Before initialize(), events and messages throw. What a user, a push notification, an activation or a screen reports
/// is posted without key and identifiers of the installation, so that the collector cannot tell whose it is.
class KESU_API Kesu {
 public:
  /// Always throws InternalInconsistencyException: the library is set up with initialize(). [Kesu -init]
  Kesu();

  /// Sets the library up with the application key that the service assigned, showing level-0 log lines only (more with
  /// KESU_LOG_LEVEL in the environment). Main thread, once per process. Throws InternalInconsistencyException for a
  /// missing or blank key, and for a second call, which leaves the first key in force. A key other than that of the
  /// last run makes this a new installation. [Kesu initialize:]
  static void initialize(const Object& key);

  /// Sets the library up as above, with this log threshold (see logThrottling). [Kesu initialize:withLogThrottling:]
  static void initialize(const Object& key, std::int64_t logThrottling);

  /// Sets the log threshold: lines of at most this level are written. 0 shows errors, 2 warnings too, 3 everything; so
  /// does a negative level. Any thread. [Kesu logThrottling:]
  static void logThrottling(std::int64_t level);

  /// Returns the shared object, created (with its observers) at the first call. Main thread. [Kesu sharedKesu]
  static Kesu& sharedKesu();

  /// Returns whether initialize() has succeeded. Any thread. [Kesu isSDKInitialized]
  static bool isSDKInitialized();

  /// Returns the seconds since 2016-01-27 07:53:20 UTC, for KesuCustomEvent::postTimedWithEventName. Any thread.
  /// [Kesu timerReference]
  static double timerReference();

  /// Returns false exactly when "devmode" is "true", in any letter case. Any thread. [Kesu IsProductionMode]
  static bool IsProductionMode();

  /// Sets the host's identifier of its user, as KesuIdentity does. Any thread. [Kesu setUserIdentifer:]
  static void setUserIdentifer(const Object& identifier);

  /// Removes the host's identifier of its user, as KesuIdentity does. Any thread. [Kesu resetUserIdentifer]
  static void resetUserIdentifer();

  /// Appends a scene and the seconds spent on it to the scene flow, which travels with the next end of a session.
  /// Ignores names that are missing or not UTF-8, and seconds that are not finite. Any thread.
  /// [Kesu updateScreenFlowForScenesWithName:forSeconds:]
  static void updateScreenFlowForScenesWithName(const Object& name, double seconds);

  /// Returns the SHA-256 of a text as 64 lower-case hexadecimal digits, followed by "##". Kept: as many UTF-8 bytes are
  /// digested as the text has UTF-16 units. Any thread. [Kesu hash:]
  static std::string hash(const std::string& text);

  /// Reports the token by which this device receives push notifications. Ignores an empty one and the one reported
  /// last. Any thread; returns before anything is sent. Call it after initialize(): a token reported before is sent
  /// without the installation it belongs to, and ignored from then on. [Kesu setRemoteNotificationDeviceToken:]
  static void setRemoteNotificationDeviceToken(const Data& token);

  /// Reports a push notification: its "mid" and "cid" travel with every full trait record from now on, and one is
  /// posted at once. Any thread. [Kesu processReceivedRemoteNotification:]
  static void processReceivedRemoteNotification(const Dictionary& userInfo);

  /// Reports a push notification as above, with the identifier by which the host knows it.
  /// [Kesu processReceivedRemoteNotificationWithId:withUserInfo:]
  static void processReceivedRemoteNotificationWithId(const Object& identifier, const Dictionary& userInfo);

  // In-app messages. Main thread. Before initialize() they throw InternalInconsistencyException, unless documented
  // otherwise.
  //
  // Handlers may be empty. They are called on the main thread, some before the operation returns, the others inside
  // pump(); what they refer to must live until then. Application::willTerminate() answers pending ones as if the
  // service could not be reached; at the exit of a program that does not call it, handlers are not called. A reply of
  // the service that carries both an error and content calls a handler twice (first as if the request had failed); a
  // complete reply without a body never does, and neither does a request that cannot be written as JSON.

  using CountHandler = std::function<void(std::int64_t count)>;
  /// Receives an array or a dictionary as documented below, or nil. Other kinds arrive as the service sent them.
  using ObjectHandler = std::function<void(const Object& result)>;

  /// Fetches the number of messages that were not fetched yet; 0 when the service cannot be asked.
  /// [Kesu countNewUnFetched:]
  static void countNewUnFetched(CountHandler handler);

  /// Fetches message headers (array of dictionaries with at least "mid" and "cid"). Unread: the new ones. Read: those
  /// known before the last fetch, synchronously ("" when there were none, nil when nothing is kept). All: both, where
  /// "contentRead" says which were read. Nil when they cannot be fetched, and for other types (which fetch all the
  /// same). New headers are kept on disk. [Kesu getMessageHeadersForType:withCompletionHandler:]
  static void getMessageHeadersForType(KesuInAppMessageType type, ObjectHandler handler);

  /// Fetches the body (dictionary) of one message, by "cid" and "mid" of its header; nil when it cannot be fetched. The
  /// message counts as read from now on, even then. The last 19 are answered synchronously; any other also sends a
  /// receipt to the collector. Null is "" in the body and in the dictionaries directly in it.
  /// [Kesu getMessageBodyWithCampaignID:andMessageID:withCompletionHandler:]
  static void getMessageBodyWithCampaignID(const Object& campaignID, const Object& messageID, ObjectHandler handler);

  /// Fetches full messages (array of dictionaries). Unread: new ones, which count as read from then on. Read: those
  /// that count as read, synchronously. All: an array of both arrays, the new ones first (a missing one is left out).
  /// Nil when there are none or they cannot be fetched. For other types the handler is never called.
  /// [Kesu getMessagesForType:withCompletionHandler:]
  static void getMessagesForType(KesuInAppMessageType type, ObjectHandler handler);

  /// Returns the headers that were known before the last fetch; nil when there are none. Does not need initialize().
  /// [Kesu previousReadMessages]
  static Object previousReadMessages();

  /// Calls `handler` on the main thread whenever a button of an in-app message is pressed. Returns the token for
  /// NotificationCenter::removeObserver(), which must be called before what the handler refers to is destroyed; returns
  /// 0 for an empty handler, which is not registered. Any thread; does not need initialize().
  /// [Kesu registerForButtonClickOnInAppMessageWithSelector:forTarget:]
  static NotificationCenter::Token registerForButtonClickOnInAppMessageWithSelector(
      std::function<void(const KesuInAppStatus&)> handler);

  // The message popup. Main thread. It appears in the key window (see kesu::Overlay) once the messages have arrived;
  // while it is up or on its way, further shows are ignored. Before initialize() these throw
  // InternalInconsistencyException, unless documented otherwise.

  /// Receives pressed buttons and paging (index 10 or 11, status 3).
  using InAppHandler = std::function<void(const KesuInAppStatus& status)>;

  /// Shows messages for a screen of the host (or null); a screen that is also a KesuInAppMessageDelegate receives
  /// pressed buttons. The screen is not owned and may be destroyed at any time. The colours apply to the bar with the
  /// arrows: arrows and counter, the arrows' faces, the bar, the counter; unset ones have their defaults. Other types
  /// show a popup without messages.
  /// Kept: arrows are clear and the counter has the first colour, so that the second and fourth have no visible effect.
  /// [Kesu showInAppNotificationUI:forDisplayMessages:msgNavBarButtonsTextColor:msgNavBarButtonsBgColor:
  /// msgNavBarBgColor:msgNavBarCounterTextColor:]
  static void showInAppNotificationUI(ViewController* controller, KesuInAppMessageType displayMessages,
                                      std::optional<Color> msgNavBarButtonsTextColor,
                                      std::optional<Color> msgNavBarButtonsBgColor,
                                      std::optional<Color> msgNavBarBgColor,
                                      std::optional<Color> msgNavBarCounterTextColor);

  /// Shows unread messages for a screen of the host as above, in blue on a white bar.
  /// [Kesu showUnreadInAppNotificationUI:]
  static void showUnreadInAppNotificationUI(ViewController* controller);

  /// Shows messages; `handler` (may be empty) receives pressed buttons until the next show.
  /// [Kesu showInAppNotificationUIForDisplayMessages:navigationTextColor:withCompletionHandler:]
  static void showInAppNotificationUIForDisplayMessages(KesuInAppMessageType displayMessages,
                                                        std::optional<Color> navigationTextColor, InAppHandler handler);

  /// Shows messages as above, with all colours.
  /// [Kesu showInAppNotificationUIForDisplayMessages:msgNavBarButtonsTextColor:msgNavBarButtonsBgColor:
  /// msgNavBarBgColor:msgNavBarCounterTextColor:withCompletionHandler:]
  static void showInAppNotificationUIForDisplayMessages(KesuInAppMessageType displayMessages,
                                                        std::optional<Color> msgNavBarButtonsTextColor,
                                                        std::optional<Color> msgNavBarButtonsBgColor,
                                                        std::optional<Color> msgNavBarBgColor,
                                                        std::optional<Color> msgNavBarCounterTextColor,
                                                        InAppHandler handler);

  /// Shows unread messages, in white on a dark bar. [Kesu showUnreadInAppNotificationUIWithCompletionHandler:]
  static void showUnreadInAppNotificationUIWithCompletionHandler(InAppHandler handler);

  /// Closes the popup, or abandons a show that is on its way. [Kesu dismissInAppNotificationUI:]
  static void dismissInAppNotificationUI(bool animated);

  /// Adds a red badge with the number of new messages at the upper right corner of a view, once the service has
  /// replied; each call adds another one. Ignores null (before initialize() too) and a view that was destroyed
  /// meanwhile. [Kesu addBadge:]
  static void addBadge(View* view);

  /// Sets what the host changes about the popup (kesu/message_ui/KesuInAppOptions.h). Functions apply at once; insets
  /// and text scale from the next show on. Does not need initialize().
  static void setInAppOptions(KesuInAppOptions options);

 private:
  struct Shared {};
  explicit Kesu(Shared) {}
};

}  // namespace kesu
