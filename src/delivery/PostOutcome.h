#pragma once

#include <kesu/platform/HttpClient.h>

namespace kesu {

/// Whether a record is sent for the first time or comes back from the store.
enum class PostKind {
  First,  ///< A first attempt: what cannot be delivered is stored.
  Resend  ///< A stored record on another try: what is delivered loses its file.
};

/// What follows from the end of a request.
enum class PostAction {
  None,         ///< Nothing: delivered at once, refused for good, or left in the store for the next pass.
  StoreRecord,  ///< Write the record to the store.
  DeleteFile    ///< The record is delivered; its file goes.
};

/// Decides what follows from a reply. Pure.
///
/// Kept: the rules are lopsided on purpose. A first attempt is stored on any error, also on one beside a good status,
/// unless the collector refuses the record for good (400, 403). A re-send ends with any complete 2xx reply, whatever
/// else went wrong, and a refused re-send keeps its file.
PostAction actionAfter(PostKind kind, const HttpReply& reply);

}  // namespace kesu
