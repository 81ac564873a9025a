#include "tools/loopback/Exchange.h"

#include <strings.h>

namespace kesu::loopback {

std::string_view Request::header(std::string_view name) const {
  for (const auto& [key, value] : headers) {
    if (key.size() == name.size() && strncasecmp(key.data(), name.data(), name.size()) == 0) {
      return value;
    }
  }
  return {};
}

std::optional<std::string_view> Request::parameter(std::string_view name) const {
  for (const auto& [key, value] : query) {
    if (key == name) {
      return value;
    }
  }
  return std::nullopt;
}

Reply Reply::closed() {
  Reply reply;
  reply.close = true;
  return reply;
}

Reply Reply::error(int status, const std::string& text) {
  Reply reply;
  reply.status = status;
  reply.contentType = "text/plain; charset=utf-8";
  reply.body = text + "\n";
  return reply;
}

}  // namespace kesu::loopback
