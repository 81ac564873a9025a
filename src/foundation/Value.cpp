#include <kesu/foundation/Value.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <functional>
#include <limits>

#include "foundation/Text.h"

namespace kesu {
namespace {

// A linear search over this many keys costs no more than hashing one.
constexpr std::size_t kEntriesWithoutIndex = 32;
constexpr std::size_t kNowhere = std::numeric_limits<std::size_t>::max();

std::size_t hashOf(std::string_view key) {
  return std::hash<std::string_view>{}(key);
}

// What a number may begin with, without the white space and the plus sign that std::from_chars does not take.
std::string_view numberPart(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
    text.remove_prefix(1);
  }
  return text;
}

std::int64_t integerOfText(std::string_view text) {
  text = numberPart(text);
  std::int64_t number = 0;
  if (std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc::result_out_of_range) {
    number = text.front() == '-' ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
  }
  return number;
}

double realOfText(std::string_view text) {
  text = numberPart(text);
  const std::string_view magnitude = text.substr(text.starts_with('-') ? 1 : 0);
  if (magnitude.empty() || !(isDigit(magnitude[0]) || magnitude[0] == '.')) {
    return 0.0;  // std::from_chars would also take "inf" and "nan".
  }
  double number = 0.0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ec == std::errc() ? number : 0.0;
}

std::int64_t integerOfReal(double number) {
  constexpr double kBeyond = 9223372036854775808.0;  // 2^63
  if (std::isnan(number)) {
    return 0;
  }
  if (number >= kBeyond) {
    return std::numeric_limits<std::int64_t>::max();
  }
  return number < -kBeyond ? std::numeric_limits<std::int64_t>::min() : static_cast<std::int64_t>(number);
}

}  // namespace

Dictionary::Dictionary() = default;
Dictionary::Dictionary(const Dictionary& other) = default;
Dictionary::Dictionary(Dictionary&& other) noexcept = default;
Dictionary::~Dictionary() = default;

Dictionary::Dictionary(std::initializer_list<Entry> entries) {
  entries_.reserve(entries.size());
  for (const Entry& entry : entries) {
    set(entry.key, entry.value);
  }
}

// Both assignments take the other's content out first: it may be nested in what is about to be destroyed.
Dictionary& Dictionary::operator=(const Dictionary& other) {
  return *this = Dictionary(other);
}

Dictionary& Dictionary::operator=(Dictionary&& other) noexcept {
  Dictionary taken(std::move(other));
  entries_.swap(taken.entries_);
  index_.swap(taken.index_);
  return *this;
}

void Dictionary::set(std::string_view key, Value value) {
  if (Value* present = find(key)) {
    *present = std::move(value);
    return;
  }
  entries_.push_back(Entry{std::string(key), std::move(value)});
  addToIndex(entries_.size() - 1);
}

const Value* Dictionary::find(std::string_view key) const {
  const std::size_t found = position(key);
  return found == kNowhere ? nullptr : &entries_[found].value;
}

Value* Dictionary::find(std::string_view key) {
  const std::size_t found = position(key);
  return found == kNowhere ? nullptr : &entries_[found].value;
}

const std::string* Dictionary::findText(std::string_view key) const {
  const Value* value = find(key);
  return value == nullptr ? nullptr : value->text();
}

bool Dictionary::remove(std::string_view key) {
  const std::size_t found = position(key);
  if (found == kNowhere) {
    return false;
  }
  entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(found));
  rebuildIndex();
  return true;
}

void Dictionary::clear() {
  entries_.clear();
  index_.clear();
}

void Dictionary::reserve(std::size_t count) {
  entries_.reserve(count);
}

std::size_t Dictionary::size() const {
  return entries_.size();
}

Dictionary::const_iterator Dictionary::begin() const {
  return entries_.begin();
}

Dictionary::const_iterator Dictionary::end() const {
  return entries_.end();
}

std::size_t Dictionary::position(std::string_view key) const {
  if (index_.empty()) {
    const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& e) { return e.key == key; });
    return found == entries_.end() ? kNowhere : static_cast<std::size_t>(found - entries_.begin());
  }
  const std::size_t mask = index_.size() - 1;
  for (std::size_t slot = hashOf(key) & mask; index_[slot] != 0; slot = (slot + 1) & mask) {
    if (entries_[index_[slot] - 1].key == key) {
      return index_[slot] - 1;
    }
  }
  return kNowhere;
}

void Dictionary::addToIndex(std::size_t position) {
  if (entries_.size() <= kEntriesWithoutIndex) {
    return;
  }
  if (entries_.size() * 2 > index_.size()) {
    rebuildIndex();
    return;
  }
  const std::size_t mask = index_.size() - 1;
  std::size_t slot = hashOf(entries_[position].key) & mask;
  while (index_[slot] != 0) {
    slot = (slot + 1) & mask;
  }
  index_[slot] = static_cast<std::uint32_t>(position + 1);
}

// At most half of the slots are ever used, so that probing stays short and always ends.
void Dictionary::rebuildIndex() {
  if (entries_.size() <= kEntriesWithoutIndex) {
    index_.clear();
    return;
  }
  index_.assign(std::bit_ceil(entries_.size()) * 4, 0);
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    addToIndex(i);
  }
}

bool operator==(const Dictionary& left, const Dictionary& right) {
  return left.size() == right.size() && std::all_of(left.begin(), left.end(), [&](const Dictionary::Entry& entry) {
           const Value* other = right.find(entry.key);
           return other != nullptr && *other == entry.value;
         });
}

struct Value::Tree {
  struct Copy {
    const Value* from;
    Value* to;
  };
  struct Comparison {
    const Value* left;
    const Value* right;
  };

  static void copy(const Value& from, Value& to) {
    std::vector<Copy> work{{&from, &to}};
    while (!work.empty()) {
      const Copy next = work.back();
      work.pop_back();
      if (const kesu::Array* array = next.from->array()) {
        copyArray(*array, next.to->content_.emplace<kesu::Array>(), work);
      } else if (const kesu::Dictionary* dictionary = next.from->dictionary()) {
        copyDictionary(*dictionary, next.to->content_.emplace<kesu::Dictionary>(), work);
      }
    }
  }

  // The room is reserved first, since the work list points into it.
  static void copyArray(const kesu::Array& from, kesu::Array& to, std::vector<Copy>& work) {
    to.reserve(from.size());
    for (const Value& child : from) {
      copyChild(child, to.emplace_back(), work);
    }
  }

  static void copyDictionary(const kesu::Dictionary& from, kesu::Dictionary& to, std::vector<Copy>& work) {
    to.entries_.reserve(from.size());
    for (const kesu::Dictionary::Entry& entry : from) {
      to.entries_.push_back({entry.key, Value()});
      copyChild(entry.value, to.entries_.back().value, work);
    }
    to.index_ = from.index_;
  }

  static void copyChild(const Value& from, Value& to, std::vector<Copy>& work) {
    if (from.isContainer()) {
      work.push_back({&from, &to});
    } else {
      to.content_ = from.content_;
    }
  }

  // Recurses as long as the nesting is that of ordinary data, which takes half of the time.
  static bool equal(const Value& left, const Value& right, int depth = 0) {
    constexpr int kOrdinaryDepth = 32;  // Records nest some 5 deep; 32 frames are a few kilobytes of any stack.
    if (left.kind() != right.kind() || !left.isContainer()) {
      return left.content_ == right.content_;
    }
    if (depth == kOrdinaryDepth) {
      return equalAtAnyDepth(left, right);
    }
    const auto same = [depth](const Value& a, const Value& b) { return equal(a, b, depth + 1); };
    if (const kesu::Array* array = left.array()) {
      return std::equal(array->begin(), array->end(), right.array()->begin(), right.array()->end(), same);
    }
    const kesu::Dictionary& other = *right.dictionary();
    return left.dictionary()->size() == other.size() &&
           std::all_of(left.dictionary()->begin(), left.dictionary()->end(), [&](const auto& entry) {
             const Value* value = other.find(entry.key);
             return value != nullptr && same(entry.value, *value);
           });
  }

  static bool equalAtAnyDepth(const Value& left, const Value& right) {
    std::vector<Comparison> work;
    bool same = equalChild(left, right, work);
    while (same && !work.empty()) {
      const Comparison next = work.back();
      work.pop_back();
      same = next.left->array() != nullptr ? equalArray(*next.left->array(), *next.right->array(), work)
                                           : equalDictionary(*next.left->dictionary(), *next.right->dictionary(), work);
    }
    return same;
  }

  static bool equalArray(const kesu::Array& left, const kesu::Array& right, std::vector<Comparison>& work) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&work](const Value& a, const Value& b) { return equalChild(a, b, work); });
  }

  static bool equalDictionary(const kesu::Dictionary& left, const kesu::Dictionary& right,
                              std::vector<Comparison>& work) {
    return left.size() == right.size() && std::all_of(left.begin(), left.end(), [&](const auto& entry) {
             const Value* other = right.find(entry.key);
             return other != nullptr && equalChild(entry.value, *other, work);
           });
  }

  static bool equalChild(const Value& left, const Value& right, std::vector<Comparison>& work) {
    if (left.kind() != right.kind()) {
      return false;
    }
    if (left.isContainer()) {
      work.push_back({&left, &right});
      return true;
    }
    return left.content_ == right.content_;
  }

  static bool isFilledContainer(const Value& value) {
    return (value.array() != nullptr && !value.array()->empty()) ||
           (value.dictionary() != nullptr && !value.dictionary()->empty());
  }

  // Moves the filled containers that lie directly in `value` to the list; what remains in it is flat.
  static void takeContainers(Value& value, std::vector<Value>& taken) {
    const auto take = [&taken](Value& child) {
      if (isFilledContainer(child)) {
        taken.push_back(std::move(child));
      }
    };
    if (kesu::Array* array = value.array()) {
      std::for_each(array->begin(), array->end(), take);
    } else if (kesu::Dictionary* dictionary = value.dictionary()) {
      for (kesu::Dictionary::Entry& entry : dictionary->entries_) {
        take(entry.value);
      }
    }
  }
};

Value::Value(const char* text) : content_(Null{}) {
  if (text != nullptr) {
    content_.emplace<std::string>(text);
  }
}

Value::Value(const Value& other) : content_(other.isContainer() ? Content(Null{}) : other.content_) {
  if (other.isContainer()) {
    Tree::copy(other, *this);
  }
}

Value::Value(Value&& other) noexcept = default;

// Both assignments take the other's content out first: it may be nested in what is about to be destroyed.
Value& Value::operator=(const Value& other) {
  return *this = Value(other);
}

Value& Value::operator=(Value&& other) noexcept {
  Value taken(std::move(other));
  content_.swap(taken.content_);
  return *this;
}

Value::Content Value::ofUnsigned(std::uint64_t number) {
  return std::in_range<std::int64_t>(number) ? Content(static_cast<std::int64_t>(number))
                                             : Content(static_cast<double>(number));
}

void Value::dismantle() {
  std::vector<Value> deeper;
  Tree::takeContainers(*this, deeper);
  while (!deeper.empty()) {
    Value next = std::move(deeper.back());
    deeper.pop_back();
    Tree::takeContainers(next, deeper);
  }
}

std::int64_t Value::integerValue() const {
  switch (kind()) {
    case Kind::Bool:
      return *boolean() ? 1 : 0;
    case Kind::Integer:
      return *integer();
    case Kind::Real:
      return integerOfReal(*real());
    case Kind::Text:
      return integerOfText(*text());
    case Kind::Null:
    case Kind::Data:
    case Kind::Date:
    case Kind::Array:
    case Kind::Dictionary:
      return 0;
  }
  return 0;
}

double Value::realValue() const {
  if (const double* number = real()) {
    return *number;
  }
  if (const std::string* digits = text()) {
    return realOfText(*digits);
  }
  return static_cast<double>(integerValue());
}

bool operator==(const Value& left, const Value& right) {
  return Value::Tree::equal(left, right);
}

}  // namespace kesu
