#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kesu {

/// The application's persistent key/value store.
///
/// Reads answer from memory. Writes are in memory at once and on disk after synchronize(), which survives the death of
/// the process right afterwards and costs the caller no wait for the disk. Callable from any thread; single operations
/// are atomic. Values must be property-list values (no null object anywhere); others are refused. No operation throws:
/// where the store cannot be written, it goes on in memory and logs once.
class KESU_API UserDefaults {
 public:
  virtual ~UserDefaults() = default;

  /// A copy of the value under `key`, or nothing. A text that grew by appendString() comes back whole.
  virtual std::optional<Value> get(std::string_view key) = 0;

  /// Whether there is a value under `key`, found without copying it.
  virtual bool contains(std::string_view key) = 0;

  /// Stores a value. False when it is no property-list value; the old value then stays.
  virtual bool set(std::string_view key, Value value) = 0;

  /// Removes a key with all that was appended to it.
  virtual void remove(std::string_view key) = 0;

  /// Appends to the text under `key` (which starts empty, also when the key held another kind of value). Costs the same
  /// however long the text has grown. As durable as set().
  virtual void appendString(std::string_view key, std::string_view suffix) = 0;

  /// The text under `key`, which is removed in the same step; nothing when the key holds no text.
  virtual std::optional<std::string> takeString(std::string_view key) = 0;

  /// All keys that hold a value, in no particular order.
  virtual std::vector<std::string> keys() = 0;

  /// Hands everything written so far to the system in one transaction. False when the store cannot be written.
  virtual bool synchronize() = 0;

  /// Moves what synchronize() has written from the journal into the store. May wait for the disk: background thread, or
  /// when the application goes to the background or ends.
  virtual void checkpoint() = 0;

  // Shorthands over get().
  std::string text(std::string_view key);      ///< The text under `key`, "" when there is none.
  std::int64_t integer(std::string_view key);  ///< Value::integerValue of what is there, else 0.
  double real(std::string_view key);           ///< Value::realValue of what is there, else 0.
  bool boolean(std::string_view key);          ///< True for true, a number that is not 0, or "1"/"true"/"YES".
};

}  // namespace kesu
