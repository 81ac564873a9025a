#include "tools/loopback/Exchange.h"

#include <strings.h>

#include <algorithm>
#include <charconv>

namespace kesu::loopback {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kBlanks = " \t";

// Cuts what stands before `separator` off the text; all of it when there is none.
std::string_view cut(std::string_view& text, std::string_view separator) {
  const std::size_t end = text.find(separator);
  const std::string_view piece = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + separator.size());
  return piece;
}

std::string percentDecoded(std::string_view text, bool plusIsBlank) {
  std::string out;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char* const digits = text.data() + at + 1;
    unsigned value = 0;
    if (text[at] == '%' && at + 2 < text.size() && std::from_chars(digits, digits + 2, value, 16).ptr == digits + 2) {
      out += static_cast<char>(value);
      at += 2;
    } else {
      out += plusIsBlank && text[at] == '+' ? ' ' : text[at];
    }
  }
  return out;
}

Fields parseQuery(std::string_view text) {
  Fields fields;
  while (!text.empty()) {
    std::string_view value = cut(text, "&");
    const std::string_view name = cut(value, "=");
    fields.emplace_back(percentDecoded(name, true), percentDecoded(value, true));
  }
  return fields;
}

bool parseHeader(std::string_view line, Fields& headers) {
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos) {
    return false;
  }
  std::string_view value = line.substr(colon + 1);
  value.remove_prefix(std::min(value.find_first_not_of(kBlanks), value.size()));
  value.remove_suffix(value.size() - (value.find_last_not_of(kBlanks) + 1));
  headers.emplace_back(line.substr(0, colon), value);
  return true;
}

}  // namespace

std::string_view RequestHead::header(std::string_view name) const {
  for (const auto& [key, value] : headers) {
    if (equalIgnoringCase(key, name)) {
      return value;
    }
  }
  return {};
}

std::optional<std::string_view> RequestHead::parameter(std::string_view name) const {
  for (const auto& [key, value] : query) {
    if (key == name) {
      return value;
    }
  }
  return std::nullopt;
}

Reply Reply::closed() {
  Reply reply;
  reply.form = Form::Raw;
  return reply;
}

Reply Reply::error(int status, const std::string& text) {
  Reply reply;
  reply.status = status;
  reply.contentType = "text/plain; charset=utf-8";
  reply.body = text + "\n";
  return reply;
}

bool equalIgnoringCase(std::string_view one, std::string_view other) {
  return one.size() == other.size() && (one.empty() || strncasecmp(one.data(), other.data(), one.size()) == 0);
}

std::optional<RequestHead> parseHead(std::string bytes) {
  RequestHead head;
  std::string_view rest = bytes;
  std::string_view line = cut(rest, kLineEnd);
  head.method = cut(line, " ");
  head.target = cut(line, " ");
  if (head.method.empty() || head.target.empty() || !line.starts_with("HTTP/1.")) {
    return std::nullopt;
  }
  const bool isOld = line == "HTTP/1.0";
  for (line = cut(rest, kLineEnd); !line.empty(); line = cut(rest, kLineEnd)) {
    if (!parseHeader(line, head.headers)) {
      return std::nullopt;
    }
  }
  const std::string_view connection = head.header("Connection");
  head.isLast = isOld ? !equalIgnoringCase(connection, "keep-alive") : equalIgnoringCase(connection, "close");
  std::string_view query = head.target;
  head.path = percentDecoded(cut(query, "?"), false);
  head.query = parseQuery(query);
  head.head = std::move(bytes);
  return head;
}

std::string headOf(const Reply& reply, bool closes) {
  // The status is followed by a phrase for people, which may be empty.
  std::string head = "HTTP/1.1 " + std::to_string(reply.status) + (reply.status == 200 ? " OK" : " ");
  const auto add = [&head](std::string_view name, std::string_view value) {
    head.append(kLineEnd).append(name).append(": ").append(value);
  };
  for (const auto& [name, value] : reply.headers) {
    add(name, value);
  }
  if (!reply.contentType.empty()) {
    add("Content-Type", reply.contentType);
  }
  if (reply.stream && !reply.streamLength) {
    add("Transfer-Encoding", "chunked");
  } else if (reply.status != 204 && reply.status != 304) {
    add("Content-Length", std::to_string(reply.streamLength.value_or(reply.body.size())));
  }
  if (closes) {
    add("Connection", "close");
  }
  return head.append(kLineEnd).append(kLineEnd);
}

}  // namespace kesu::loopback
