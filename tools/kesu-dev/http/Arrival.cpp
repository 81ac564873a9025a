#include "tools/kesu-dev/http/Arrival.h"

#include <utility>

#include "tools/kesu-dev/base/Fields.h"
#include "tools/kesu-dev/base/Text.h"

namespace kesu::dev {

StoredRecord arrivalOf(const loopback::Request& request, const std::string& body) {
  Dictionary headers;
  for (const auto& [name, value] : request.headers) {
    headers.set(validUtf8(name), validUtf8(value));
  }
  StoredRecord record;
  record.arrivedMs = nowMilliseconds();
  record.path = request.path;
  record.headers = jsonText(headers);
  record.body = body;
  return record;
}

loopback::Reply jsonReply(const Dictionary& body, int status) {
  loopback::Reply reply;
  reply.status = status;
  reply.body = jsonText(body);
  return reply;
}

loopback::Reply reasonsReply(const std::vector<std::string>& reasons, int status) {
  return jsonReply({{"ok", false}, {"reasons", listOf(reasons)}}, status);
}

}  // namespace kesu::dev
