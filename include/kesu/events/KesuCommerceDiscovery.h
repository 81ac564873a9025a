#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// How customers find goods: search, categories, deals, recommendations, earlier orders.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuCommerceDiscovery {
 public:
  KesuCommerceDiscovery() = delete;

  /// [KesuCommerceDiscovery postSearched:withLatency:withAttributes:] Event "DiscoverySearch".
  /// Keys: "searchString", "latency" (object).
  static void postSearched(const Object& searchString, const Object& latency, const Attributes& attributes = {});

  /// [KesuCommerceDiscovery postBrowsedCategory:withAttributes:] Event "DiscoveryBrowsedCategory".
  /// Keys: "category" (object).
  static void postBrowsedCategory(const Object& category, const Attributes& attributes = {});

  /// [KesuCommerceDiscovery postBrowsedDeals:withAttributes:] Event "DiscoveryBrowsedDeals".
  /// Keys: "uniqueDealID" (object).
  static void postBrowsedDeals(const Object& uniqueDealID, const Attributes& attributes = {});

  /// [KesuCommerceDiscovery postBrowsedRecommendations:withAttributes:] Event "DiscoveryBrowsedRecommendations".
  /// Keys: "uniqueRecommendationID" (object).
  static void postBrowsedRecommendations(const Object& uniqueRecommendationID, const Attributes& attributes = {});

  /// [KesuCommerceDiscovery postBrowsedPrevOrders:withEnd:withAttributes:] Event "DiscoveryBrowsedPrevOrders".
  /// Keys: "rangeStart", "rangeEnd" (object).
  static void postBrowsedPrevOrders(const Object& rangeStart, const Object& end, const Attributes& attributes = {});
};

}  // namespace kesu
