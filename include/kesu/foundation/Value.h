#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include <kesu/Export.h>

namespace kesu {

class Value;

/// The null object: a value that is there and says "nothing". Not the same as an absent value (kesu::nil).
struct Null {
  friend bool operator==(const Null&, const Null&) = default;
};

/// A point in time, in seconds since 1970-01-01 00:00:00 UTC.
struct Date {
  double secondsSince1970 = 0.0;
  friend bool operator==(const Date&, const Date&) = default;
};

using Data = std::vector<std::uint8_t>;
using Array = std::vector<Value>;

/// Text-keyed collection of values that keeps the order in which its keys were first set.
///
/// A record is a Dictionary. Lookups are linear while it is small (a record has some 25 keys) and go through an index
/// once it is large, so that a host's 10,000 attributes stay cheap. Not thread-safe; copies are deep.
class KESU_API Dictionary {
 public:
  struct Entry;
  using Storage = std::vector<Entry>;
  using const_iterator = Storage::const_iterator;

  Dictionary();
  Dictionary(std::initializer_list<Entry> entries);
  Dictionary(const Dictionary& other);
  Dictionary(Dictionary&& other) noexcept;
  Dictionary& operator=(const Dictionary& other);
  Dictionary& operator=(Dictionary&& other) noexcept;
  ~Dictionary();

  /// Stores a value. A key that is already there keeps its place and gets the new value.
  void set(std::string_view key, Value value);

  /// The value under a key, or nullptr. Valid until the dictionary is changed.
  const Value* find(std::string_view key) const;
  Value* find(std::string_view key);

  /// The text under a key, or nullptr when the key is missing or holds something else.
  const std::string* findText(std::string_view key) const;

  bool contains(std::string_view key) const { return find(key) != nullptr; }

  /// Removes a key. Returns whether it was there.
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
  std::size_t position(std::string_view key) const;
  void rebuildIndex();

  Storage entries_;
  std::unordered_map<std::string, std::size_t> index_;  // Empty while the dictionary is small.
};

/// One value of a record, a property list or a JSON text: the null object, bool, integer, real, text, data, date,
/// array or dictionary. Copies are deep. Two values are equal when kind and content are.
class KESU_API Value {
 public:
  enum class Kind { Null, Bool, Integer, Real, Text, Data, Date, Array, Dictionary };

  Value() : content_(Null{}) {}
  Value(Null) : content_(Null{}) {}
  Value(bool flag) : content_(flag) {}
  Value(double number) : content_(number) {}
  template <typename Integer>
    requires(std::is_integral_v<Integer> && !std::is_same_v<Integer, bool>)
  Value(Integer number) : content_(static_cast<std::int64_t>(number)) {}
  Value(std::string text) : content_(std::move(text)) {}
  Value(std::string_view text) : content_(std::string(text)) {}
  Value(const char* text) : content_(std::string(text)) {}
  Value(kesu::Data data) : content_(std::move(data)) {}
  Value(kesu::Date date) : content_(date) {}
  Value(kesu::Array array) : content_(std::move(array)) {}
  Value(kesu::Dictionary dictionary) : content_(std::move(dictionary)) {}

  Kind kind() const { return static_cast<Kind>(content_.index()); }
  bool isNull() const { return kind() == Kind::Null; }

  /// The content when the value has that kind, else nullptr.
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

  /// The number as an integer: a real is truncated toward zero and held inside the range, a text is read up to its
  /// first character that is no digit, everything else counts 0.
  std::int64_t integerValue() const;

  /// The number as a real, by the same rules.
  double realValue() const;

  KESU_API friend bool operator==(const Value& left, const Value& right);

 private:
  std::variant<Null, bool, std::int64_t, double, std::string, kesu::Data, kesu::Date, kesu::Array, kesu::Dictionary>
      content_;
};

struct Dictionary::Entry {
  std::string key;
  Value value;
};

/// A host's nullable object argument: absent (kesu::nil) or any value.
class Object : public std::optional<Value> {
 public:
  using std::optional<Value>::optional;
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
