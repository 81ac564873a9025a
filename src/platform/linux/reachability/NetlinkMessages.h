#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace kesu {

using ByteSpan = std::span<const std::uint8_t>;

/// One message of a netlink datagram, which must outlive it.
struct NetlinkMessage {
  std::uint16_t type = 0;
  std::uint16_t flags = 0;
  std::uint32_t sequence = 0;
  ByteSpan payload;
};

/// Calls `each` for every complete message of a datagram, in order, up to one that is cut off or has an impossible
/// length. Pure; safe on any bytes.
void forEachNetlinkMessage(ByteSpan datagram, const std::function<void(const NetlinkMessage&)>& each);

/// Calls `each` for every complete attribute (type without its flag bits, value). Pure; safe on any bytes.
void forEachNetlinkAttribute(ByteSpan attributes, const std::function<void(std::uint16_t type, ByteSpan value)>& each);

/// Reads a fixed structure from the front of `bytes`; nothing when there are too few. Works at any alignment.
template <typename Struct>
std::optional<Struct> readStruct(ByteSpan bytes) {
  if (bytes.size() < sizeof(Struct)) {
    return std::nullopt;
  }
  Struct result;
  std::memcpy(&result, bytes.data(), sizeof result);
  return result;
}

/// Returns the bytes after a structure of `size` bytes, where attributes begin; empty when there are none.
ByteSpan afterStruct(ByteSpan bytes, std::size_t size);

/// Builds one request message.
class NetlinkRequest {
 public:
  /// `flags` beside NLM_F_REQUEST, which is always set.
  NetlinkRequest(std::uint16_t type, std::uint16_t flags);

  /// Appends the fixed structure that follows the header of such a request.
  template <typename Struct>
  void addStruct(const Struct& value) {
    std::vector<std::uint8_t> bytes(sizeof value);
    std::memcpy(bytes.data(), &value, sizeof value);
    append(bytes);
  }

  /// Appends an attribute.
  void addAttribute(std::uint16_t type, ByteSpan value);

  /// Returns the message with its final length and this sequence number.
  ByteSpan finish(std::uint32_t sequence);

 private:
  void append(ByteSpan bytes);

  std::vector<std::uint8_t> bytes_;
};

}  // namespace kesu
