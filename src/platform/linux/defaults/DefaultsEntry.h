#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/defaults/ArrayParts.h"
#include "platform/linux/defaults/DefaultsWriter.h"

namespace kesu {

/// One user default in memory, and what the file does not have yet of it. Guarded by its owner.
struct DefaultsEntry {
  /// In the order in which one covers the other.
  enum class Unsaved {
    Nothing,  ///< The file has it all.
    Suffix,   ///< The text has grown past `savedSize`.
    Parts,    ///< `parts` of the array are others.
    All       ///< Another value or none.
  };

  bool isPresent = false;  ///< False: removed, and kept only until the file knows.
  bool isUnread = false;   ///< The value, an array or dictionary, is in the file only. Nothing is unsaved then.
  bool isText = false;
  Value value;       ///< Unless it is a text or unread.
  std::string text;  ///< A text that grows in place.
  std::string list;  ///< The property list of `value` until it is saved, when it is a dictionary or a short array.
  ArrayParts parts;  ///< Of a long array: the parts that are not saved.
  Unsaved unsaved = Unsaved::Nothing;
  std::size_t savedSize = 0;

  /// A copy of the value. Nothing when it is unread.
  std::optional<Value> copy() const;

  /// Whether it is that value, so that nothing is to be written.
  bool holds(const Value& other) const;

  /// Lets go of everything but `unsaved`.
  void empty();

  /// Takes the value that the file has.
  void fill(Value saved);

  /// Takes a new value with its property list, "" when it is no array or dictionary. The entry was emptied before.
  void put(Value changed, std::string changedList);

  /// Takes a long array in place of the value, and the parts in which it differs from it.
  void putParts(Value array, ArrayParts changed);

  /// What brings the file up to the entry, which counts as saved from now on. `key` must outlive the change.
  StoreChange takeChange(std::string_view key);
};

}  // namespace kesu
