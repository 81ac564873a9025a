#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Platform.h>

#include <cstdint>
#include <string>

#include "device/KesuMetrics.h"

namespace kesu {

/// What a trait record is about; decides which blocks it carries. The numbers are the names by which the types are
/// known.
enum class TraitType : std::uint8_t {
  Full = 0,                ///< Installation record, daily refresh, push received.
  PushAndCarrier = 1,      ///< Device token and carrier only; nothing asks for it yet.
  LocaleChanged = 2,       ///< The locale block.
  ExplicitActivation = 3,  ///< Identifiers only.
  Identifiers = 4,         ///< Identifiers only; nothing asks for it yet.
  FirstLaunch = 5          ///< All blocks; the caller adds the calendar variants.
};

/// Adds the trait block of `type`: push identifiers and "kaid2" always, then by type the device token and carrier, the
/// locale, and integrity and provisioning. Locale facts that are missing become the null object. Any thread.
void addTraitData(Dictionary& record, TraitType type, const std::string& instanceId2, Platform& platform,
                  KesuMetrics& metrics);

}  // namespace kesu
