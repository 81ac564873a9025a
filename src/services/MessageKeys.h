#pragma once

#include <string_view>

/// Keys of what the messaging service and we send each other, and of the records that answer a message. They are the
/// wire contract: hosts, the service and the collector know them.
namespace kesu {

// A header: which message, of which campaign. Also in requests, in records about a message and in push notifications.
inline constexpr std::string_view kMessageIdKey = "mid";
inline constexpr std::string_view kCampaignIdKey = "cid";

// Replies: what each request asks for.
inline constexpr std::string_view kMessageCountKey = "count";
inline constexpr std::string_view kHeaderListKey = "metadatalist";
inline constexpr std::string_view kMessageListKey = "payloadlist";
inline constexpr std::string_view kPayloadKey = "payload";
inline constexpr std::string_view kTagsKey = "tags";

// The payload of a message body.
inline constexpr std::string_view kMessageTextKey = "msg";
inline constexpr std::string_view kMessageTitleKey = "title";
inline constexpr std::string_view kTemplateIdKey = "templateId";
inline constexpr std::string_view kTemplateDataKey = "templateData";  // A text that holds JSON itself.

// Template data.
inline constexpr std::string_view kImageUrlKey = "imageSourceURL";
inline constexpr std::string_view kImageWidthKey = "imageWidth";
inline constexpr std::string_view kImageHeightKey = "imageHeight";
inline constexpr std::string_view kInlineImageKey = "optionalBase64Image";
inline constexpr std::string_view kTitleColorKey = "titleColor";
inline constexpr std::string_view kMessageColorKey = "msgColor";
inline constexpr std::string_view kCanvasColorKey = "canvas_bgColor";
inline constexpr std::string_view kButtonsKey = "buttons";

// The records about a message: it was fetched, or one of its buttons was pressed.
inline constexpr std::string_view kActionKey = "action";
inline constexpr std::string_view kActionDelivered = "delivered";
inline constexpr std::string_view kActionPressed = "cta";
inline constexpr std::string_view kButtonIdKey = "btnId";
inline constexpr std::string_view kButtonNameKey = "btnName";

}  // namespace kesu
