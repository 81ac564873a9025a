#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/defaults/ArrayParts.h"
#include "platform/linux/defaults/DefaultsWriter.h"

namespace kesu {

/// One user default in memory, and which part of it the file does not have yet. Guarded by its owner.
struct DefaultsEntry {
  /// Each covers those before it.
  enum class Unsaved {
    Nothing,  ///< The file has it all.
    Suffix,   ///< The text has grown past `savedSize`.
    Parts,    ///< `parts` of the array have changed.
    All       ///< Another value or none.
  };

  bool isPresent = false;  ///< False: removed, and kept only until the file was written.
  bool isUnread = false;   ///< The value, an array or dictionary, is in the file only. Nothing is unsaved then.
  bool isText = false;
  bool isRaised = false;  ///< An integer that only grows, also when a file is joined.
  Value value;            ///< Unless it is a text or unread.
  std::string text;       ///< A text that grows in place.
  std::string list;       ///< The property list of `value` until it is saved, when it is a dictionary or a short array.
  ArrayParts parts;       ///< Of a long array: the parts that are not saved.
  Unsaved unsaved = Unsaved::Nothing;
  std::size_t savedSize = 0;
  std::size_t grownSize = 0;  ///< Bytes at the end of the text that were appended by this process.

  /// A copy of the value. Nothing when it is unread.
  std::optional<Value> copy() const;

  /// Whether the value is equal, so that nothing is to be written.
  bool equals(const Value& other) const;

  /// Whether it is an integer, and not below the other one.
  bool isAtLeast(const Value& other) const;

  /// Drops everything but `unsaved`.
  void empty();

  /// Sets the value that the file has.
  void fill(Value saved);

  /// Takes over the value of a file that was not known when this one was written. Of this one, what was appended stays:
  /// behind the file's text, or, as an append does, in place of a value of another kind.
  void moveOnto(DefaultsEntry saved);

  /// Sets a new value with its property list, "" when it is no array or dictionary. The entry was emptied before.
  void put(Value changed, std::string changedList);

  /// Replaces the value by a long array; `changed` are the parts in which they differ.
  void putParts(Value array, ArrayParts changed);

  /// Returns the change that brings the file up to the entry, which counts as saved from now on. `key` must outlive the
  /// change.
  StoreChange takeChange(std::string_view key);
};

}  // namespace kesu
