#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// How the billing step went.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuCommerceBilling {
 public:
  KesuCommerceBilling() = delete;

  /// [KesuCommerceBilling postBillingStarted:] Event "BillingStarted", no keys of its own.
  static void postBillingStarted(const Attributes& attributes = {});

  /// [KesuCommerceBilling postBillingCompleted:] Event "BillingCompleted", no keys of its own.
  static void postBillingCompleted(const Attributes& attributes = {});

  /// [KesuCommerceBilling postBillingAbandoned:] Event "BillingAbandoned", no keys of its own.
  static void postBillingAbandoned(const Attributes& attributes = {});

  /// [KesuCommerceBilling postBillingFailed:] Event "BillingFailed", no keys of its own.
  static void postBillingFailed(const Attributes& attributes = {});
};

}  // namespace kesu
