#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Platform.h>

#include <cstdint>
#include <string>

#include "device/KesuMetrics.h"

namespace kesu {

/// The occasion of a trait record, which decides the blocks that it carries. The numbers are those of the agreed types.
enum class TraitType : std::uint8_t {
  Full = 0,                ///< Installation record, daily refresh, push received.
  PushAndCarrier = 1,      ///< Device token and carrier only; no caller yet.
  LocaleChanged = 2,       ///< The locale block.
  ExplicitActivation = 3,  ///< Identifiers only.
  Identifiers = 4,         ///< Identifiers only; no caller yet.
  FirstLaunch = 5          ///< All blocks; the caller adds the calendar variants.
};

/// Adds the trait block of `type`: push identifiers and, once there is one, "kaid2" always, then by type device token
/// and carrier, locale, integrity and provisioning. Missing locale facts become the null object. Any thread.
void addTraitData(Dictionary& record, TraitType type, const std::string& instanceId2, Platform& platform,
                  KesuMetrics& metrics);

}  // namespace kesu
