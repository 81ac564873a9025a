#pragma once

#include <kesu/records/Constants.h>  // The name of an event.

#include <string_view>

/// Keys of records, including those that are removed before sending. They are the wire contract with the collector;
/// misspellings are part of it.
namespace kesu {

// Removed by the poster, never sent in the body.
inline constexpr std::string_view k_destinationKeyInDictionary = "dest";
inline constexpr std::string_view k_keyFilename = "fnk";

// Headers of a collector request.
inline constexpr std::string_view k_TableName = "t";
inline constexpr std::string_view k_FullVersionKeyForHeader = "v";

// Common columns.
inline constexpr std::string_view k_KesuAppKey = "kak";
inline constexpr std::string_view k_FullVersionKeyForBody = "~v";
inline constexpr std::string_view k_KesuAppInstanceId = "kaid";
inline constexpr std::string_view k_KesuAppInstanceId2 = "kaid2";
inline constexpr std::string_view k_AgentCollectionEpoch = "ace";
inline constexpr std::string_view k_AgentSentEpoch = "ase";
inline constexpr std::string_view k_CommonMsgId = "msg_id";
inline constexpr std::string_view k_DeviceProduct = "prd";
inline constexpr std::string_view kUserIdentifierKey = "~uid";
inline constexpr std::string_view k_LocalDeviceTime = "ldt";
inline constexpr std::string_view k_CFBundleVersion = "rv";
inline constexpr std::string_view k_CFBundleShortVersionString = "av";
inline constexpr std::string_view k_OsVersion = "ov";
inline constexpr std::string_view kLongitudeKey = "long";
inline constexpr std::string_view kLatitudeKey = "lat";
inline constexpr std::string_view kAltitudeKey = "alt";

// The installation record.
inline constexpr std::string_view kVendorIdentifierKey = "idv";
inline constexpr std::string_view kDeviceNameKey = "dn";
inline constexpr std::string_view kApplicationNameKey = "an";
inline constexpr std::string_view kPackageKey = "pkg";
inline constexpr std::string_view k_CarrierName = "cn";
inline constexpr std::string_view kScreenWidthKey = "sw";
inline constexpr std::string_view kScreenHeightKey = "sh";
inline constexpr std::string_view kMemoryKey = "mem";
inline constexpr std::string_view kProcessorsKey = "np";
inline constexpr std::string_view kActiveProcessorsKey = "nap";
inline constexpr std::string_view kProcessorSpeedKey = "pspd";
inline constexpr std::string_view kBusSpeedKey = "bspd";

// The trait block.
inline constexpr std::string_view k_RepairProcessing = "~x";
inline constexpr std::string_view k_KesuPushNotificationKey = "pn";
inline constexpr std::string_view k_CarrierIsoCountryCode = "ccc";
inline constexpr std::string_view k_CarrierMccMnc = "cmm";
inline constexpr std::string_view k_LocaleRegion = "lrg";
inline constexpr std::string_view k_LocaleCountry = "lco";
inline constexpr std::string_view k_LocaleLanguage = "lan";
inline constexpr std::string_view k_AppLanguage = "al";
inline constexpr std::string_view k_LocalePreferredLanguage = "lpl";
inline constexpr std::string_view k_LocaleCalendar = "lca";
inline constexpr std::string_view k_IsRooted = "jb";
inline constexpr std::string_view k_ProvisioningMode = "pm";
inline constexpr std::string_view k_ProvisionedFromAppStore = "pas";
inline constexpr std::string_view k_FullTrait = "~ft";

/// The name of the carrier where there is none.
inline constexpr std::string_view kNoCarrier = "N/A for tvOS";

// Events, state changes and flows.
inline constexpr std::string_view kLevelAttributeKey = "Level";
inline constexpr std::string_view kElapsedSecondsKey = "elapsedSeconds";
inline constexpr std::string_view kExplicitActivationKey = "~a:Activation";
inline constexpr std::string_view k_Reachability = "~r";
inline constexpr std::string_view k_EventFlow = "~ef";
inline constexpr std::string_view k_SceneFlow = "~uf";
inline constexpr std::string_view k_CrashedOrForcedQuitTimestamp = "~cfqt";
inline constexpr std::string_view k_ScreenFlow = "~sf";
inline constexpr std::string_view k_NewState = "~ns";
inline constexpr std::string_view k_LaunchDetail = "~ld";
inline constexpr std::string_view k_TerminatedFrom = "~tf";
inline constexpr std::string_view k_StateDetail = "~sd";
inline constexpr std::string_view k_BatteryLevel = "bl";
inline constexpr std::string_view k_BatteryState = "bs";
inline constexpr std::string_view k_Orientation = "~o";
inline constexpr std::string_view k_UserMEM = "umem";
inline constexpr std::string_view k_CurrentWifiSSID = "cssid";
inline constexpr std::string_view k_CurrentWifiBSSID = "cbssid";
inline constexpr std::string_view k_Uptime = "~u";

// Calendar variants.
inline constexpr std::string_view k_LocalHour = "~lh";
inline constexpr std::string_view k_Hour = "~h";
inline constexpr std::string_view k_Day = "~d";
inline constexpr std::string_view k_localTimezoneName = "ltz";
inline constexpr std::string_view k_Month = "~m";
inline constexpr std::string_view k_Quarter = "~q";
inline constexpr std::string_view k_Week = "~w";

}  // namespace kesu
