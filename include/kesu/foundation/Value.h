#pragma once

#include <kesu/Export.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace kesu {

class Value;

/// The kind of a value. Use it as Value::Kind. (Declared before the types of the same names, which it would shadow.)
enum class ValueKind { Null, Bool, Integer, Real, Text, Data, Date, Array, Dictionary };

/// The null object: a value that means "nothing". Not the same as an absent value (kesu::nil).
struct Null {
  friend bool operator==(const Null&, const Null&) = default;
};

/// A point in time, in seconds since 1970-01-01 00:00:00 UTC.
struct Date {
  double secondsSince1970 = 0.0;
  friend bool operator==(const Date&, const Date&) = default;
};

using Data = std::vector<std::uint8_t>;

/// Values in order. Put an array into an array as Array{Value(inner)}: compilers differ on whether Array{inner} is a
/// copy.
using Array = std::vector<Value>;

/// Text-keyed collection of values that keeps the order in which its keys were first set.
///
/// A record is a Dictionary. Lookups are linear while it is small (a record has some 25 keys) and use an index once it
/// is large, so that a host's 10,000 attributes stay cheap. Not thread-safe; copies are deep. Two dictionaries are
/// equal when they have the same keys with equal values, in any order.
class KESU_API Dictionary {
 public:
  struct Entry;
  using Storage = std::vector<Entry>;
  using const_iterator = Storage::const_iterator;

  Dictionary();

  /// Sets the entries in order: of equal keys the last value wins and keeps the place of the first.
  Dictionary(std::initializer_list<Entry> entries);
  Dictionary(const Dictionary& other);
  Dictionary(Dictionary&& other) noexcept;
  Dictionary& operator=(const Dictionary& other);
  Dictionary& operator=(Dictionary&& other) noexcept;
  ~Dictionary();

  /// Stores a value. An existing key keeps its place and gets the new value.
  void set(std::string_view key, Value value);

  /// Finds the value under a key; null when there is none. Valid until the dictionary is changed.
  const Value* find(std::string_view key) const;
  Value* find(std::string_view key);

  /// Finds the text under a key; null when there is none or the value is of another kind.
  const std::string* findText(std::string_view key) const;

  bool contains(std::string_view key) const { return find(key) != nullptr; }

  /// Removes a key. Returns whether there was one.
  bool remove(std::string_view key);

  /// Removes every entry for which `drop(entry)` is true, in one pass.
  template <typename Predicate>
  void removeIf(Predicate drop);

  void clear();
  void reserve(std::size_t count);
  std::size_t size() const;
  bool empty() const { return size() == 0; }

  const_iterator begin() const;
  const_iterator end() const;

  KESU_API friend bool operator==(const Dictionary& left, const Dictionary& right);

 private:
  friend class Value;

  std::size_t position(std::string_view key) const;
  void addToIndex(std::size_t position);
  void rebuildIndex();

  Storage entries_;
  std::vector<std::uint32_t> index_;  // Hash slots: position + 1, or 0 when free. Empty while there are few entries.
};

template <typename Number>
concept UnsignedNumber = std::unsigned_integral<Number> && !std::same_as<Number, bool>;

/// One value of a record, a property list or a JSON text: the null object, bool, integer, real, text, data, date,
/// array or dictionary. Copies are deep. Two values are equal when kind and content are: the integer 4 is not the real
/// 4.0. Nesting may be as deep as memory allows: copying, comparing and destroying do not recurse. A moved-from value
/// may be destroyed or assigned to.
class KESU_API Value {
 public:
  using Kind = ValueKind;

  Value() : content_(Null{}) {}
  Value(Null) : content_(Null{}) {}
  Value(std::same_as<bool> auto flag) : content_(flag) {}  // Constrained, so that no pointer turns into a bool.
  Value(std::signed_integral auto number) : content_(static_cast<std::int64_t>(number)) {}
  Value(UnsignedNumber auto number) : content_(ofUnsigned(number)) {}  // Beyond the signed 64 bits it becomes a real.
  Value(std::floating_point auto number) : content_(static_cast<double>(number)) {}
  Value(std::string text) : content_(std::move(text)) {}
  Value(std::string_view text) : content_(std::string(text)) {}
  Value(const char* text);  // A null pointer gives the null object.
  Value(kesu::Data data) : content_(std::move(data)) {}
  Value(kesu::Date date) : content_(date) {}
  Value(kesu::Array array) : content_(std::move(array)) {}
  Value(kesu::Dictionary dictionary) : content_(std::move(dictionary)) {}

  Value(const Value& other);
  Value(Value&& other) noexcept;
  Value& operator=(const Value& other);
  Value& operator=(Value&& other) noexcept;
  ~Value() {
    if (isContainer()) {
      dismantle();
    }
  }

  Kind kind() const { return static_cast<Kind>(content_.index()); }
  bool isNull() const { return kind() == Kind::Null; }

  /// Returns the content when the value has that kind, else null.
  const bool* boolean() const { return std::get_if<bool>(&content_); }
  const std::int64_t* integer() const { return std::get_if<std::int64_t>(&content_); }
  const double* real() const { return std::get_if<double>(&content_); }
  const std::string* text() const { return std::get_if<std::string>(&content_); }
  const kesu::Data* data() const { return std::get_if<kesu::Data>(&content_); }
  const kesu::Date* date() const { return std::get_if<kesu::Date>(&content_); }
  const kesu::Array* array() const { return std::get_if<kesu::Array>(&content_); }
  kesu::Array* array() { return std::get_if<kesu::Array>(&content_); }
  const kesu::Dictionary* dictionary() const { return std::get_if<kesu::Dictionary>(&content_); }
  kesu::Dictionary* dictionary() { return std::get_if<kesu::Dictionary>(&content_); }

  /// Converts to an integer: a real is truncated toward zero and clamped to the range, a bool is 1 or 0, a text is read
  /// (after white space and a sign) up to its first character that is no digit, and clamped. Everything else is 0,
  /// not-a-number too.
  std::int64_t integerValue() const;

  /// Converts to a real by the same rules; a text may have a fraction and an exponent. A text whose number is out of
  /// the range of a double is 0.
  double realValue() const;

  KESU_API friend bool operator==(const Value& left, const Value& right);

 private:
  struct Tree;  // Walks over nested values. They keep a list of what is left to do instead of recursing.
  using Content = std::variant<Null, bool, std::int64_t, double, std::string, kesu::Data, kesu::Date, kesu::Array,
                               kesu::Dictionary>;

  static Content ofUnsigned(std::uint64_t number);
  bool isContainer() const { return kind() >= Kind::Array; }
  void dismantle();

  Content content_;
};

/// One key with its value.
struct Dictionary::Entry {
  std::string key;
  Value value;
};

/// A host's nullable object argument: absent (kesu::nil) or any value. A null text pointer is absent.
class Object : public std::optional<Value> {
 public:
  using std::optional<Value>::optional;
  Object() = default;
  Object(std::optional<Value> value) : std::optional<Value>(std::move(value)) {}
  Object(const char* text) : std::optional<Value>(text != nullptr ? std::optional<Value>(Value(text)) : std::nullopt) {}
};

/// "No object": what a host passes where an argument may be missing.
inline constexpr std::nullopt_t nil = std::nullopt;

/// The free attributes of an event. `{}` stands for none.
using Attributes = Dictionary;

template <typename Predicate>
void Dictionary::removeIf(Predicate drop) {
  if (std::erase_if(entries_, drop) > 0) {
    rebuildIndex();
  }
}

}  // namespace kesu
