#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// What a messages extension inserts, sends and receives. The flags say whether the user supplied a thing; the thing
/// itself is never sent.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuiMessageApps {
 public:
  KesuiMessageApps() = delete;

  /// Posts event "iMessageAppsInsertMessage": a message was inserted. No keys of its own.
  /// [KesuiMessageApps postInsertMessageWithAttributes:]
  static void postInsertMessageWithAttributes(const Attributes& attributes = {});

  /// Posts event "iMessageAppsInsertSticker": a sticker was inserted. Keys: "descriptionProvided", "URLstringProvided"
  /// ("1" when true).
  /// [KesuiMessageApps postInsertStickerWithLocalizedDescription:withStickerImageFileURLString:withAttributes:]
  static void postInsertStickerWithLocalizedDescription(bool localizedDescription, bool stickerImageFileURLString,
                                                        const Attributes& attributes = {});
  static void postInsertStickerWithLocalizedDescription(const char*, bool, const Attributes& = {}) = delete;
  static void postInsertStickerWithLocalizedDescription(bool, const char*, const Attributes& = {}) = delete;

  /// Posts event "iMessageAppsInsertText": a text was inserted. Keys: "textProvided" ("1" when true).
  /// [KesuiMessageApps postInsertTextWithText:withAttributes:]
  static void postInsertTextWithText(bool text, const Attributes& attributes = {});
  static void postInsertTextWithText(const char*, const Attributes& = {}) = delete;

  /// Posts event "iMessageAppsInsertAttachment": an attachment was inserted. Keys: "URLProvided", "fileNameProvided"
  /// ("1" when true). [KesuiMessageApps postInsertAttachmentWithURL:withAlternateFileName:withAttributes:]
  static void postInsertAttachmentWithURL(bool url, bool alternateFileName, const Attributes& attributes = {});
  static void postInsertAttachmentWithURL(const char*, bool, const Attributes& = {}) = delete;
  static void postInsertAttachmentWithURL(bool, const char*, const Attributes& = {}) = delete;

  /// Posts event "iMessageAppsStartSendingMessage": the user started to send a message. No keys of its own.
  /// [KesuiMessageApps postMessageStartSendingWithAttributes:]
  static void postMessageStartSendingWithAttributes(const Attributes& attributes = {});

  /// Posts event "iMessageAppsReveiveMessage": a message was received. No keys of its own.
  /// [KesuiMessageApps postReceiveMessageWithAttributes:]
  static void postReceiveMessageWithAttributes(const Attributes& attributes = {});

  /// Posts event "iMessageAppsCancelSendingMessage": the user cancelled a message. No keys of its own.
  /// [KesuiMessageApps postCancelSendingMessageWithAttributes:]
  static void postCancelSendingMessageWithAttributes(const Attributes& attributes = {});
};

}  // namespace kesu
