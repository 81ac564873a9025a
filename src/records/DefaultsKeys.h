#pragma once

#include <string_view>

/// Names of the entries in the user defaults. docs/disk.md lists writers and readers.
namespace kesu {

inline constexpr std::string_view kAppKeyDefault = "kesuSDKAPIKey";
inline constexpr std::string_view kInstanceIdDefault = "localKaid";
inline constexpr std::string_view kInstanceId2Default = "localKaid2";
inline constexpr std::string_view kLaunchCountDefault = "alc";

inline constexpr std::string_view kIdentityKey = "kesuIdentity";
inline constexpr std::string_view kAppSpecificUserId = "appSpecificUserId";
inline constexpr std::string_view kIdentityChanged = "kesuIdentityChanged";

// The last versions seen; each key is also the name of the event that reports a change.
inline constexpr std::string_view k_OSVersionChanged = "Kesu.OSVersionChanged";
inline constexpr std::string_view k_AppVersionChanged = "Kesu.AppVersionChanged";

// Activations and usage.
inline constexpr std::string_view kLaunchOrResumeDefault = "lrc";
inline constexpr std::string_view kSevenDaysDefault = "sevenDays";
inline constexpr std::string_view kUsageByDayDefault = "AppActivationUsage";
inline constexpr std::string_view kAggregateSecondsDefault = "asst";
inline constexpr std::string_view kLastSeenDefault = "lastSeen";

/// The current screen flow, in case the process dies; "" once sent.
inline constexpr std::string_view k_UnsentScreenFlowData = "UnsentScreens";

// Push notifications: the last device token and the identifiers of the last notification.
inline constexpr std::string_view k_DeviceTokenIdentifier = "deviceToken";
inline constexpr std::string_view k_PushMidKey = "push_mid_key";
inline constexpr std::string_view k_PushCidKey = "push_cid_key";
inline constexpr std::string_view kPushIdentifierDefault = "kesupushIdentifier";

/// The number of the last entry of the append log whose changes these values contain.
inline constexpr std::string_view kLastLoggedChangeDefault = "~logged";

inline constexpr std::string_view kNumberOfFilesDefault = "~numberOfFiles";
inline constexpr std::string_view kSaveTimeSuffix = "-secondsSince1970";

// Versions under which an unsent screen flow was gathered; the poster stamps them on the record that reports it.
inline constexpr std::string_view kFlowOsVersionDefault = "~sfosVersion";
inline constexpr std::string_view kFlowShortVersionDefault = "~sfappbundleShortVersion";
inline constexpr std::string_view kFlowBundleVersionDefault = "~sfappbundleVersion";

// In-app messages: headers, the headers before the last fetch, full messages that were read, and the bodies fetched
// last.
inline constexpr std::string_view kHeadersDefault = "midcidArray";
inline constexpr std::string_view kPreviousHeadersDefault = "PreviousMessages";
inline constexpr std::string_view kReadMessagesDefault = "GetAllMessagesRead";
inline constexpr std::string_view kBodiesDefault = "midcidResponse";
inline constexpr std::string_view kLastFetchDefault = "kesuInAppFetchAfterLastRequest";  ///< Kept: read, never written.

/// The personalization tags fetched last.
inline constexpr std::string_view kTagsDefault = "KesuPersonalizationIntelligence";

/// What a change of the application key clears, in this order.
/// Kept: "launchTimeCummulativeDataPoints" is spelled as installations in the field have it.
inline constexpr std::string_view kKeysClearedWithAppKey[] = {
    // Identity, launches and versions.
    "alc", "localKaid", "localKaid2", "lrc", "launchTimeDataPoints", "rv", "av", "ov",
    "launchTimeCummulativeDataPoints",
    // Usage in all.
    "appExceeds3dayUsage", "appExceeds5dayUsage", "appExceeds7dayUsage", "~a:u15m", "~a:u30m", "~a:u60m", "asst",
    // Usage within 3, 5 and 7 days.
    "~a:u5mo3D", "~a:u10mo3D", "~a:u15mo3D", "~a:u30mo3D", "~a:u5mo5D", "~a:u10mo5D", "~a:u15mo5D", "~a:u30mo5D",
    "~a:u5mo7D", "~a:u10mo7D", "~a:u15mo7D", "~a:u30mo7D", "AppActivationUsage",
    // Days of use.
    "~a:3UD", "~a:5UD", "~a:7UD", "~a:2DL7", "~a:3DL7", "sevenDays", "lastSeen"};

}  // namespace kesu
