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
class KESU_API Kesu {
 public:
  /// [Kesu -init] Always throws InternalInconsistencyException: the library is set up with initialize().
  Kesu();

  /// [Kesu initialize:] Sets the library up with the application key that the service assigned, showing level-0 log
  /// lines only (more with KESU_LOG_LEVEL in the environment). Main thread, once a process. Throws
  /// InternalInconsistencyException for a missing or blank key and for a second call, which leaves the first key in
  /// force. A key other than last time's makes this a new installation.
  static void initialize(const Object& key);

  /// [Kesu initialize:withLogThrottling:] The same with a log threshold (see logThrottling).
  static void initialize(const Object& key, std::int64_t logThrottling);

  /// [Kesu logThrottling:] Sets the log threshold: lines of at most this level are written. 0 errors, 2 warnings too, 3
  /// all; a negative level shows all as well. Any thread.
  static void logThrottling(std::int64_t level);

  /// [Kesu sharedKesu] The shared object, made (with its observers) at the first call. Main thread.
  static Kesu& sharedKesu();

  /// [Kesu isSDKInitialized] Whether initialize() has succeeded. Any thread.
  static bool isSDKInitialized();

  /// [Kesu timerReference] Seconds since 2016-01-27 07:53:20 UTC, for KesuCustomEvent::postTimedWithEventName. Any
  /// thread.
  static double timerReference();

  /// [Kesu IsProductionMode] False exactly when "devmode" is "true", in any letter case. Any thread.
  static bool IsProductionMode();

  /// [Kesu setUserIdentifer:] and [Kesu resetUserIdentifer] The same as KesuIdentity's.
  static void setUserIdentifer(const Object& identifier);
  static void resetUserIdentifer();

  /// [Kesu updateScreenFlowForScenesWithName:forSeconds:] Appends a scene and the seconds spent on it to the scene
  /// flow, which travels with the next end of a session. Any thread. Names that are missing or no UTF-8 and seconds
  /// that are no finite number are left out.
  static void updateScreenFlowForScenesWithName(const Object& name, double seconds);

  /// [Kesu hash:] SHA-256 of a text as 64 lower-case hexadecimal digits, and "##". Kept: as many UTF-8 bytes are
  /// digested as the text has UTF-16 units. Any thread.
  static std::string hash(const std::string& text);

  /// [Kesu setRemoteNotificationDeviceToken:] Reports the token by which this device gets push notifications; the one
  /// reported last is not reported again. An empty one is ignored. Any thread; returns before anything is sent.
  static void setRemoteNotificationDeviceToken(const Data& token);

  /// [Kesu processReceivedRemoteNotification:] Reports a push notification: its "mid" and "cid" travel with every full
  /// trait record from now on, and one is posted at once. Any thread.
  static void processReceivedRemoteNotification(const Dictionary& userInfo);

  /// [Kesu processReceivedRemoteNotificationWithId:withUserInfo:] The same, with the identifier that the host knows it
  /// by.
  static void processReceivedRemoteNotificationWithId(const Object& identifier, const Dictionary& userInfo);

  // In-app messages. Main thread. Before initialize() they throw InternalInconsistencyException, unless it says
  // otherwise.
  //
  // Handlers may be empty. They are called on the main thread, some before the operation returns, the others inside
  // pump(); what they refer to must live until then. Application::willTerminate() answers those that still wait as if
  // the service could not be reached; when a program just ends, nobody is told any more. A reply of the service that
  // carries both an error and content calls a handler twice (first as if nothing had come); a complete reply without a
  // body never does, and neither does a request that cannot be written as JSON.

  using CountHandler = std::function<void(std::int64_t count)>;
  /// Told an array or a dictionary as said below, or nil. Other kinds come through as the service sent them.
  using ObjectHandler = std::function<void(const Object& result)>;

  /// [Kesu countNewUnFetched:] How many messages the service has that were not fetched yet; 0 when it cannot say.
  static void countNewUnFetched(CountHandler handler);

  /// [Kesu getMessageHeadersForType:withCompletionHandler:] The headers (array of dictionaries with at least "mid" and
  /// "cid") of new messages; or of those known before the last fetch, at once ("" when none was, nil when nothing is
  /// kept); or of all, where "contentRead" tells which were read. Nil when they cannot be had, and for other types
  /// (which fetch all the same). New headers are kept on disk.
  static void getMessageHeadersForType(KesuInAppMessageType type, ObjectHandler handler);

  /// [Kesu getMessageBodyWithCampaignID:andMessageID:withCompletionHandler:] The body (dictionary) of one message, by
  /// "cid" and "mid" of its header; nil when it cannot be had. The message counts as read from now on, even then. The
  /// last 19 are answered at once; for any other a receipt goes to the collector, beside the request. Null is "" in the
  /// body and in the dictionaries directly in it.
  static void getMessageBodyWithCampaignID(const Object& campaignID, const Object& messageID, ObjectHandler handler);

  /// [Kesu getMessagesForType:withCompletionHandler:] Full messages (array of dictionaries): new ones, which count as
  /// read from then on; those that count as read, at once; or an array of both arrays, the new ones first (one that is
  /// missing is left out). Nil when there are none or they cannot be had. For other types the handler is never called.
  static void getMessagesForType(KesuInAppMessageType type, ObjectHandler handler);

  /// [Kesu previousReadMessages] The headers that were known before the last fetch; nil when there are none. Does not
  /// need initialize().
  static Object previousReadMessages();

  /// [Kesu registerForButtonClickOnInAppMessageWithSelector:forTarget:] Calls `handler` on the main thread whenever a
  /// button of an in-app message is pressed. Returns what NotificationCenter::removeObserver() takes (call it before
  /// what the handler refers to goes), 0 for an empty handler, which is not registered. Any thread; does not need
  /// initialize().
  static NotificationCenter::Token registerForButtonClickOnInAppMessageWithSelector(
      std::function<void(const KesuInAppStatus&)> handler);

  // The message popup. Main thread. It appears in the key window (see kesu::Overlay) once the messages are there; while
  // it is up, or on its way, further shows are ignored. Before initialize() these throw InternalInconsistencyException.

  /// Told about pressed buttons and about paging (index 10 or 11, status 3).
  using InAppHandler = std::function<void(const KesuInAppStatus& status)>;

  /// [Kesu
  /// showInAppNotificationUI:forDisplayMessages:msgNavBarButtonsTextColor:msgNavBarButtonsBgColor:msgNavBarBgColor:
  /// msgNavBarCounterTextColor:]
  /// Shows messages for a screen of the host (or null), which is told of pressed buttons if it is also a
  /// KesuInAppMessageDelegate. The screen is not owned and may be destroyed at any time. The colours are those of the
  /// bar with the arrows: of arrows and counter, of the arrows' faces, of the bar and of the counter; unset ones have
  /// their defaults. Kept: arrows are clear and the counter has the first colour, so that the second and the fourth
  /// have no visible effect. Other types show a popup without messages.
  static void showInAppNotificationUI(ViewController* controller, KesuInAppMessageType displayMessages,
                                      std::optional<Color> msgNavBarButtonsTextColor,
                                      std::optional<Color> msgNavBarButtonsBgColor,
                                      std::optional<Color> msgNavBarBgColor,
                                      std::optional<Color> msgNavBarCounterTextColor);

  /// [Kesu showUnreadInAppNotificationUI:] The same for unread messages: blue on a white bar.
  static void showUnreadInAppNotificationUI(ViewController* controller);

  /// [Kesu showInAppNotificationUIForDisplayMessages:navigationTextColor:withCompletionHandler:]
  /// Shows messages; `handler` (may be empty) is told of pressed buttons until the next show.
  static void showInAppNotificationUIForDisplayMessages(KesuInAppMessageType displayMessages,
                                                        std::optional<Color> navigationTextColor, InAppHandler handler);

  /// [Kesu showInAppNotificationUIForDisplayMessages:msgNavBarButtonsTextColor:msgNavBarButtonsBgColor:
  /// msgNavBarBgColor:msgNavBarCounterTextColor:withCompletionHandler:] The same with all colours.
  static void showInAppNotificationUIForDisplayMessages(KesuInAppMessageType displayMessages,
                                                        std::optional<Color> msgNavBarButtonsTextColor,
                                                        std::optional<Color> msgNavBarButtonsBgColor,
                                                        std::optional<Color> msgNavBarBgColor,
                                                        std::optional<Color> msgNavBarCounterTextColor,
                                                        InAppHandler handler);

  /// [Kesu showUnreadInAppNotificationUIWithCompletionHandler:] The same for unread messages: white on a dark bar.
  static void showUnreadInAppNotificationUIWithCompletionHandler(InAppHandler handler);

  /// [Kesu dismissInAppNotificationUI:] Closes the popup, or gives up what is on its way.
  static void dismissInAppNotificationUI(bool animated);

  /// [Kesu addBadge:] Adds a red badge with the number of new messages at the upper right corner of a view, once the
  /// service has told it; each call adds another one. Nothing happens for null (before initialize() either), and when
  /// the view has gone by then.
  static void addBadge(View* view);

  /// What the host changes about the popup (kesu/message_ui/KesuInAppOptions.h). Functions count from now on;
  /// insets and text scale from the next show on. Does not need initialize().
  static void setInAppOptions(KesuInAppOptions options);

 private:
  struct Shared {};
  explicit Kesu(Shared) {}
};

}  // namespace kesu
