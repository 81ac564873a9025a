#include "platform/linux/http/HttpHeaderList.h"

#include <algorithm>
#include <string_view>

#include "foundation/Text.h"
#include "platform/linux/http/HttpHeaderLines.h"

namespace kesu {
namespace {

constexpr std::string_view kLength = "Content-Length";

bool isLengthLine(const std::string& line) {
  return equalsIgnoringCase(std::string_view(line).substr(0, line.find(':')), kLength);
}

}  // namespace

bool HttpHeaderList::update(const HttpRequest& request) {
  if (fits(request)) {
    writeLength(request.body.size());
    return false;
  }
  headers_ = request.headers;
  hasBody_ = carriesBody(request);
  lines_ = httpHeaderLines(request);
  lengthLine_ = static_cast<std::size_t>(std::find_if(lines_.begin(), lines_.end(), isLengthLine) - lines_.begin());
  const auto length = std::find_if(headers_.begin(), headers_.end(), [&](const auto& header) {
    return lengthLine_ < lines_.size() && equalsIgnoringCase(header.first, kLength);
  });
  lengthHeader_ = static_cast<std::size_t>(length - headers_.begin());
  nodes_.assign(lines_.size(), curl_slist());
  for (std::size_t index = 0; index < lines_.size(); ++index) {
    nodes_[index] = {lines_[index].data(), index + 1 < lines_.size() ? &nodes_[index + 1] : nullptr};
  }
  return true;
}

bool HttpHeaderList::fits(const HttpRequest& request) const {
  if (nodes_.empty() || request.headers.size() != headers_.size() || carriesBody(request) != hasBody_) {
    return false;
  }
  for (std::size_t index = 0; index < headers_.size(); ++index) {
    if (request.headers[index].first != headers_[index].first ||
        (index != lengthHeader_ && request.headers[index].second != headers_[index].second)) {
      return false;
    }
  }
  return true;
}

void HttpHeaderList::writeLength(std::size_t length) {
  if (lengthLine_ < lines_.size()) {
    std::string& line = lines_[lengthLine_];
    line.resize(line.find(':') + 2);
    line += std::to_string(length);
    nodes_[lengthLine_].data = line.data();
  }
}

}  // namespace kesu
