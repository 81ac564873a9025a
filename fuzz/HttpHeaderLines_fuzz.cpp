// Fuzzes: platform/linux/http
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Require.h"
#include "foundation/Text.h"
#include "platform/linux/http/HttpHeaderLines.h"
#include "platform/linux/http/HttpHeaderList.h"

namespace {

using kesu::fuzz::require;

using namespace std::string_view_literals;

constexpr char kSeparator = '\xFF';

std::string next(std::string_view& input) {
  const std::size_t end = std::min(input.find(kSeparator), input.size());
  std::string field(input.substr(0, end));
  input.remove_prefix(std::min(end + 1, input.size()));
  return field;
}

// Method, body, then names and values.
kesu::HttpRequest requestOf(std::string_view input) {
  kesu::HttpRequest request;
  request.method = kesu::cleanMethod(next(input));
  request.body = next(input);
  while (!input.empty()) {
    std::string name = next(input);
    request.headers.emplace_back(std::move(name), next(input));
  }
  return request;
}

bool isRemoval(std::string_view line) {
  return line == "Expect:" || line == "Accept:" || line == "Content-Type:";
}

void checkLines(const kesu::HttpRequest& request) {
  std::size_t lengths = 0;
  for (const std::string& line : kesu::httpHeaderLines(request)) {
    const std::string_view name = std::string_view(line).substr(0, line.find_first_of(":;"));
    require(line.find_first_of("\r\n\0"sv) == std::string::npos);
    require(line.front() != ':' && !kesu::equalsIgnoringCase(name, "Host"));
    require(isRemoval(line) || !kesu::equalsIgnoringCase(name, "Expect"));
    if (kesu::equalsIgnoringCase(name, "Content-Length") && line.find(':') == name.size()) {
      ++lengths;
      require(line.ends_with(": " + std::to_string(request.body.size())));
    }
  }
  require(lengths <= (kesu::carriesBody(request) ? 1U : 0U));
  static_cast<void>(kesu::acceptsGzip(request));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const kesu::HttpRequest request = requestOf({reinterpret_cast<const char*>(data), size});
  require(request.method.find_first_of(" \r\n\0"sv) == std::string::npos && !request.method.empty());
  checkLines(request);
  // A list that is used again is that of a new one.
  kesu::HttpHeaderList list;
  list.update(request);
  kesu::HttpRequest longer = request;
  longer.body += "x";
  list.update(longer);
  const curl_slist* node = list.get();
  for (const std::string& line : kesu::httpHeaderLines(longer)) {
    require(node != nullptr && line == node->data);
    node = node->next;
  }
  require(node == nullptr);
  return 0;
}
