#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kesu {

/// One change of the user defaults, for UserDefaults::apply(). Keys and suffixes are not copied.
struct DefaultsChange {
  enum class Kind {
    Set,     ///< As set().
    Append,  ///< Appends the suffix to the text under the key, which starts empty and replaces a value of another kind.
             ///< The cost does not depend on the length of the text.
    Remove,  ///< As remove().
    Raise    ///< Stores an integer, unless a greater one is there or comes from a file that is joined later.
  };

  static DefaultsChange set(std::string_view key, Value value) { return {Kind::Set, key, std::move(value), {}}; }
  static DefaultsChange append(std::string_view key, std::string_view suffix) {
    return {Kind::Append, key, {}, suffix};
  }
  static DefaultsChange raise(std::string_view key, std::int64_t value) { return {Kind::Raise, key, value, {}}; }
  static DefaultsChange remove(std::string_view key) { return {Kind::Remove, key, {}, {}}; }

  Kind kind = Kind::Set;
  std::string_view key;
  Value value;              ///< Of Kind::Set and Kind::Raise.
  std::string_view suffix;  ///< Of Kind::Append.
};

/// The application's persistent key/value store.
///
/// Reads are served from memory. Writes are in memory at once and in the file after synchronize(): they then survive
/// the death of the process, and the caller does not wait for the disk. Callable from any thread; each operation is
/// atomic. Values must be property-list values (no null object anywhere); others are refused. No operation throws: a
/// store that cannot be written continues in memory and logs once.
///
/// A store that cannot be read yet continues in memory as well, until isLoaded(). Then a value of the file replaces one
/// that was set meanwhile; what was appended meanwhile is appended behind the file's text; a key that only memory has
/// stays.
class KESU_API UserDefaults {
 public:
  virtual ~UserDefaults() = default;

  /// Copies the value under `key`; nothing when there is none. A text that was appended to is returned whole.
  virtual std::optional<Value> get(std::string_view key) = 0;

  /// Whether there is a value under `key`. Does not copy it.
  virtual bool contains(std::string_view key) = 0;

  /// Stores a value. Returns false, and keeps the old value, when it is no property-list value.
  virtual bool set(std::string_view key, Value value) = 0;

  /// Removes a key with all that was appended to it.
  virtual void remove(std::string_view key) = 0;

  /// Makes several changes in one step: no synchronize() of another thread writes some of them without the others.
  /// A change that set() would refuse is left out. Touches no file, unless the store was not opened before or has an
  /// array or dictionary that was not read yet.
  virtual void apply(std::span<const DefaultsChange> changes) = 0;

  /// Returns all keys that have a value, in no particular order.
  virtual std::vector<std::string> keys() = 0;

  /// Writes all changes to the file in one transaction. Returns false when the file cannot be written.
  virtual bool synchronize() = 0;

  /// Moves what synchronize() has written from the journal into the store. May wait for the disk: call it on a
  /// background thread, or when the application enters the background or ends. Returns whether all of it is on the
  /// disk.
  virtual bool checkpoint() = 0;

  /// Whether the values of earlier runs were read, or there is proof that there are none. Never returns to false. True
  /// as well without a place on disk.
  virtual bool isLoaded() = 0;

  /// Calls `done` once, when isLoaded() has become true: inside this call, or later on the thread whose operation read
  /// the file, without a lock and before anything is written to it: changes made in there are in one transaction with
  /// those that were made before the file was read. Never calls it when that does not happen.
  virtual void whenLoaded(std::function<void()> done) = 0;

  // Shorthands over get().
  std::string text(std::string_view key);      ///< "" when there is no text.
  std::int64_t integer(std::string_view key);  ///< Value::integerValue() of the value; 0 when there is none.
  double real(std::string_view key);           ///< Value::realValue() of the value; 0 when there is none.
  bool boolean(std::string_view key);          ///< True for true, a number that is not 0, or "1"/"true"/"YES".
};

}  // namespace kesu
