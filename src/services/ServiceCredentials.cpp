#include "services/ServiceCredentials.h"

#include <string>
#include <string_view>
#include <utility>

#include "records/DefaultsKeys.h"
#include "records/RecordKeys.h"

namespace kesu {

ServiceCredentials storedCredentials(UserDefaults& defaults) {
  return {defaults.get(kAppKeyDefault), defaults.get(kInstanceIdDefault), defaults.get(kInstanceId2Default)};
}

bool isMissingOrEmpty(const Object& text) {
  const std::string* content = text ? text->text() : nullptr;
  return content == nullptr || content->empty();
}

Dictionary addKakAndKaid(const ServiceCredentials& who) {
  const std::pair<std::string_view, const Object&> members[] = {
      {k_KesuAppKey, who.kak}, {k_KesuAppInstanceId, who.kaid}, {k_KesuAppInstanceId2, who.kaid2}};
  Dictionary body;
  for (const auto& [key, text] : members) {
    if (!isMissingOrEmpty(text)) {
      body.set(key, *text);
    }
  }
  return body;
}

}  // namespace kesu
