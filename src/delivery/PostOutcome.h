#pragma once

#include <kesu/platform/HttpClient.h>

namespace kesu {

/// Whether a record is sent for the first time or again.
enum class PostKind {
  First,  ///< A first attempt: stored if it cannot be delivered.
  Resend  ///< A stored record: its file is deleted once it is delivered.
};

/// The consequence of the end of a request.
enum class PostAction {
  None,         ///< Delivered, refused for good, or left in the store for the next pass.
  StoreRecord,  ///< Write the record to the store.
  DeleteFile    ///< Delivered; delete the file.
};

/// Decides the consequence of a reply. Pure.
///
/// Kept: the rules are lopsided on purpose. A first attempt is stored on any error, even beside a good status, unless
/// the collector refuses the record for good (400, 403). A re-send ends with any complete 2xx reply, whatever else went
/// wrong, and a refused re-send keeps its file.
PostAction actionAfter(PostKind kind, const HttpReply& reply);

/// Whether the collector has taken the record: a 2xx reply without error. Pure.
bool isDelivered(const HttpReply& reply);

}  // namespace kesu
