#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// What a messages extension inserts, sends and receives. The flags say whether the user supplied a thing; the thing
/// itself is never sent.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuiMessageApps {
 public:
  KesuiMessageApps() = delete;

  /// [KesuiMessageApps postInsertMessageWithAttributes:] Event "iMessageAppsInsertMessage", no keys of its own.
  static void postInsertMessageWithAttributes(const Attributes& attributes = {});

  /// [KesuiMessageApps postInsertStickerWithLocalizedDescription:withStickerImageFileURLString:withAttributes:]
  /// Event "iMessageAppsInsertSticker". Keys: "descriptionProvided", "URLstringProvided" ("1" when true). A text does
  /// not pass for a flag.
  static void postInsertStickerWithLocalizedDescription(bool localizedDescription, bool stickerImageFileURLString,
                                                        const Attributes& attributes = {});
  static void postInsertStickerWithLocalizedDescription(const char*, bool, const Attributes& = {}) = delete;
  static void postInsertStickerWithLocalizedDescription(bool, const char*, const Attributes& = {}) = delete;

  /// [KesuiMessageApps postInsertTextWithText:withAttributes:] Event "iMessageAppsInsertText".
  /// Keys: "textProvided" ("1" when true). A text does not pass for a flag.
  static void postInsertTextWithText(bool text, const Attributes& attributes = {});
  static void postInsertTextWithText(const char*, const Attributes& = {}) = delete;

  /// [KesuiMessageApps postInsertAttachmentWithURL:withAlternateFileName:withAttributes:]
  /// Event "iMessageAppsInsertAttachment". Keys: "URLProvided", "fileNameProvided" ("1" when true). A text does not
  /// pass for a flag.
  static void postInsertAttachmentWithURL(bool url, bool alternateFileName, const Attributes& attributes = {});
  static void postInsertAttachmentWithURL(const char*, bool, const Attributes& = {}) = delete;
  static void postInsertAttachmentWithURL(bool, const char*, const Attributes& = {}) = delete;

  /// [KesuiMessageApps postMessageStartSendingWithAttributes:]
  /// Event "iMessageAppsStartSendingMessage", no keys of its own.
  static void postMessageStartSendingWithAttributes(const Attributes& attributes = {});

  /// [KesuiMessageApps postReceiveMessageWithAttributes:] Event "iMessageAppsReveiveMessage", no keys of its own.
  static void postReceiveMessageWithAttributes(const Attributes& attributes = {});

  /// [KesuiMessageApps postCancelSendingMessageWithAttributes:]
  /// Event "iMessageAppsCancelSendingMessage", no keys of its own.
  static void postCancelSendingMessageWithAttributes(const Attributes& attributes = {});
};

}  // namespace kesu
