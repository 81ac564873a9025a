#include <kesu/personalization/KesuPersonalizationIntelligence.h>

#include <utility>

#include "personalization/PersonalizationTags.h"

namespace kesu {

KesuPersonalizationIntelligence& KesuPersonalizationIntelligence::sharedInstance() {
  static KesuPersonalizationIntelligence shared;
  return shared;
}

void KesuPersonalizationIntelligence::getTags(TagsHandler completion) {
  PersonalizationTags::shared().getTags(std::move(completion));
}

bool KesuPersonalizationIntelligence::isTagSet(const Object& tag) {
  return PersonalizationTags::shared().isTagSet(tag);
}

bool KesuPersonalizationIntelligence::areAnyTagsSet(const Array& tags) {
  return PersonalizationTags::shared().areAnyTagsSet(tags);
}

bool KesuPersonalizationIntelligence::areAllTagsSet(const Array& tags) {
  return PersonalizationTags::shared().areAllTagsSet(tags);
}

}  // namespace kesu
