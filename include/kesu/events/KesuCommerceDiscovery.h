#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// How customers find goods: search, categories, deals, recommendations, earlier orders.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuCommerceDiscovery {
 public:
  KesuCommerceDiscovery() = delete;

  /// Posts event "DiscoverySearch": the user searched for goods. Keys: "searchString", "latency" (object).
  /// [KesuCommerceDiscovery postSearched:withLatency:withAttributes:]
  static void postSearched(const Object& searchString, const Object& latency, const Attributes& attributes = {});

  /// Posts event "DiscoveryBrowsedCategory": a category was browsed. Keys: "category" (object).
  /// [KesuCommerceDiscovery postBrowsedCategory:withAttributes:]
  static void postBrowsedCategory(const Object& category, const Attributes& attributes = {});

  /// Posts event "DiscoveryBrowsedDeals": a deal was browsed. Keys: "uniqueDealID" (object).
  /// [KesuCommerceDiscovery postBrowsedDeals:withAttributes:]
  static void postBrowsedDeals(const Object& uniqueDealID, const Attributes& attributes = {});

  /// Posts event "DiscoveryBrowsedRecommendations": recommendations were browsed. Keys: "uniqueRecommendationID"
  /// (object). [KesuCommerceDiscovery postBrowsedRecommendations:withAttributes:]
  static void postBrowsedRecommendations(const Object& uniqueRecommendationID, const Attributes& attributes = {});

  /// Posts event "DiscoveryBrowsedPrevOrders": earlier orders were browsed. Keys: "rangeStart", "rangeEnd" (object).
  /// [KesuCommerceDiscovery postBrowsedPrevOrders:withEnd:withAttributes:]
  static void postBrowsedPrevOrders(const Object& rangeStart, const Object& end, const Attributes& attributes = {});
};

}  // namespace kesu
