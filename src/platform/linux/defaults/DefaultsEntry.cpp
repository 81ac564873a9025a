#include "platform/linux/defaults/DefaultsEntry.h"

#include <bit>
#include <cstdint>
#include <utility>

namespace kesu {
namespace {

// Equal, and for reals the same bits: -0.0 replaces 0.0.
bool isSame(const Value& left, const Value& right) {
  const double* leftReal = left.real();
  const double* rightReal = right.real();
  if (leftReal != nullptr && rightReal != nullptr) {
    return std::bit_cast<std::uint64_t>(*leftReal) == std::bit_cast<std::uint64_t>(*rightReal);
  }
  return left == right;
}

}  // namespace

std::optional<Value> DefaultsEntry::copy() const {
  if (isUnread) {
    return std::nullopt;
  }
  return isText ? Value(text) : value;
}

bool DefaultsEntry::equals(const Value& other) const {
  const std::string* otherText = other.text();
  return !isUnread && (isText ? otherText != nullptr && *otherText == text : isSame(value, other));
}

bool DefaultsEntry::isAtLeast(const Value& other) const {
  const std::int64_t* number = value.integer();
  return number != nullptr && (other.integer() == nullptr || *number >= *other.integer());
}

void DefaultsEntry::empty() {
  isPresent = isUnread = isText = isRaised = false;
  value = Value();
  std::string().swap(text);  // With its room: a flow may have been long.
  list.clear();
  parts.clear();
  savedSize = grownSize = 0;
}

void DefaultsEntry::fill(Value saved) {
  isPresent = true;
  isUnread = false;
  isText = saved.text() != nullptr;
  text = isText ? *saved.text() : std::string();
  savedSize = text.size();
  value = isText ? Value() : std::move(saved);
}

void DefaultsEntry::moveOnto(DefaultsEntry saved) {
  if (isRaised && isAtLeast(saved.value)) {
    return;
  }
  if (grownSize == 0) {
    saved.isRaised = isRaised;
    *this = std::move(saved);
  } else if (saved.isText) {
    text.replace(0, text.size() - grownSize, saved.text);
    savedSize = saved.text.size();
    unsaved = Unsaved::Suffix;
  }
}

void DefaultsEntry::put(Value changed, std::string changedList) {
  isPresent = true;
  isText = changed.text() != nullptr;
  if (isText) {
    text = *changed.text();
  } else {
    value = std::move(changed);
  }
  list = std::move(changedList);
}

void DefaultsEntry::putParts(Value array, ArrayParts changed) {
  isPresent = true;
  changed.merge(parts);
  parts = std::move(changed);
  parts.erase(parts.lower_bound(partCount(*array.array())), parts.end());
  value = std::move(array);
}

StoreChange DefaultsEntry::takeChange(std::string_view key) {
  StoreChange change;
  change.key = key;
  if (unsaved == Unsaved::Suffix) {
    change.kind = StoreChange::Kind::Append;
    change.text = text.substr(savedSize);
  } else if (isPresent && isLongArray(value)) {
    change.kind = StoreChange::Kind::PutParts;
    change.isWhole = unsaved == Unsaved::All;
    change.partCount = partCount(*value.array());
    change.parts = std::exchange(parts, {});
    if (change.isWhole && change.parts.size() < change.partCount) {
      change.parts = changedParts(*value.array(), nullptr).value_or(ArrayParts());
    }
  } else if (isPresent) {
    change.kind = StoreChange::Kind::Put;
    change.value = isText ? Value(text) : value;
    change.text = std::exchange(list, {});
  } else {
    change.kind = StoreChange::Kind::Remove;
  }
  savedSize = text.size();
  unsaved = Unsaved::Nothing;
  return change;
}

}  // namespace kesu
