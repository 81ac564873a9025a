#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// The billing step of a checkout: started, completed, abandoned or failed.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuCommerceBilling {
 public:
  KesuCommerceBilling() = delete;

  /// Posts event "BillingStarted": the billing step was started. No keys of its own.
  /// [KesuCommerceBilling postBillingStarted:]
  static void postBillingStarted(const Attributes& attributes = {});

  /// Posts event "BillingCompleted": the billing step was completed. No keys of its own.
  /// [KesuCommerceBilling postBillingCompleted:]
  static void postBillingCompleted(const Attributes& attributes = {});

  /// Posts event "BillingAbandoned": the billing step was abandoned. No keys of its own.
  /// [KesuCommerceBilling postBillingAbandoned:]
  static void postBillingAbandoned(const Attributes& attributes = {});

  /// Posts event "BillingFailed": the billing step failed. No keys of its own. [KesuCommerceBilling postBillingFailed:]
  static void postBillingFailed(const Attributes& attributes = {});
};

}  // namespace kesu
