#pragma once

#include <kesu/platform/UserDefaults.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "outbox/PendingRecord.h"

/// The bytes of the outbox's entries in the append log. docs/outbox.md describes them. Pure; any thread.
namespace kesu {

/// Nesting beyond this is not logged; such a record cannot be sent either (kJsonDepthLimit).
inline constexpr std::size_t kLoggedDepthLimit = 512;

/// One entry: changes of the user defaults, a record, or both.
struct OutboxEntry {
  struct Change {
    DefaultsChange::Kind kind = DefaultsChange::Kind::Set;
    std::string key;
    Value value;
  };

  std::vector<Change> changes;
  std::optional<PendingRecord> record;
};

/// Appends the changes to `bytes`, as the first part of an entry. Returns false when a value is nested too deeply.
bool appendChanges(std::string& bytes, std::span<const DefaultsChange> changes);

/// Replaces one attribute of a record on its way into an entry, or adds it behind the others: the caller's dictionary
/// need not be copied for it.
struct Replacement {
  std::string_view key;
  const Value* value = nullptr;  ///< Null removes the attribute.
};

/// Appends a record as the second and last part of an entry; its entries are `entries`, not those of `frame`. Returns
/// false when they are nested too deeply.
bool appendRecord(std::string& bytes, const PendingRecord& frame, const Dictionary& entries,
                  const std::optional<Replacement>& replacement = std::nullopt);

/// Appends a dictionary. Returns false when it is nested too deeply.
bool appendDictionary(std::string& bytes, const Dictionary& dictionary);

/// Reads a whole entry back; nothing for anything else.
std::optional<OutboxEntry> readEntry(std::string_view bytes);

/// Reads what appendDictionary() wrote; nothing for anything else.
std::optional<Dictionary> readDictionary(std::string_view bytes);

}  // namespace kesu
