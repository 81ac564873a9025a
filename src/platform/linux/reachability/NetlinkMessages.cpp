#include "platform/linux/reachability/NetlinkMessages.h"

#include <linux/netlink.h>

#include <algorithm>

namespace kesu {
namespace {

constexpr std::size_t kAlignment = 4;
constexpr std::uint16_t kAttributeTypeMask = 0x3fff;  // Without the bits for "nested" and "network byte order".

std::size_t aligned(std::size_t size) {
  return (size + kAlignment - 1) / kAlignment * kAlignment;
}

ByteSpan dropAligned(ByteSpan bytes, std::size_t size) {
  return bytes.subspan(std::min(aligned(size), bytes.size()));
}

}  // namespace

void forEachNetlinkMessage(ByteSpan datagram, const std::function<void(const NetlinkMessage&)>& each) {
  while (const auto header = readStruct<nlmsghdr>(datagram)) {
    if (header->nlmsg_len < sizeof *header || header->nlmsg_len > datagram.size()) {
      return;
    }
    const ByteSpan payload = datagram.first(header->nlmsg_len).subspan(sizeof *header);
    each({header->nlmsg_type, header->nlmsg_flags, header->nlmsg_seq, payload});
    datagram = dropAligned(datagram, header->nlmsg_len);
  }
}

void forEachNetlinkAttribute(ByteSpan attributes, const std::function<void(std::uint16_t, ByteSpan)>& each) {
  while (const auto header = readStruct<nlattr>(attributes)) {
    if (header->nla_len < sizeof *header || header->nla_len > attributes.size()) {
      return;
    }
    each(static_cast<std::uint16_t>(header->nla_type & kAttributeTypeMask),
         attributes.first(header->nla_len).subspan(sizeof *header));
    attributes = dropAligned(attributes, header->nla_len);
  }
}

ByteSpan afterStruct(ByteSpan bytes, std::size_t size) {
  return dropAligned(bytes, size);
}

NetlinkRequest::NetlinkRequest(std::uint16_t type, std::uint16_t flags) {
  nlmsghdr header{};
  header.nlmsg_type = type;
  header.nlmsg_flags = static_cast<std::uint16_t>(flags | NLM_F_REQUEST);
  addStruct(header);
}

void NetlinkRequest::addAttribute(std::uint16_t type, ByteSpan value) {
  nlattr header{};
  header.nla_type = type;
  header.nla_len = static_cast<std::uint16_t>(sizeof header + value.size());
  addStruct(header);
  append(value);
}

ByteSpan NetlinkRequest::finish(std::uint32_t sequence) {
  nlmsghdr header{};
  std::memcpy(&header, bytes_.data(), sizeof header);
  header.nlmsg_len = static_cast<std::uint32_t>(bytes_.size());
  header.nlmsg_seq = sequence;
  std::memcpy(bytes_.data(), &header, sizeof header);
  return bytes_;
}

void NetlinkRequest::append(ByteSpan bytes) {
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
  bytes_.resize(aligned(bytes_.size()));
}

}  // namespace kesu
