#include <kesu/events/KesuCommerceBeacon.h>
#include <kesu/events/KesuCommerceDiscovery.h>
#include <kesu/events/KesuCommerceItem.h>

#include "events/catalogue/EventBuilder.h"

namespace kesu {
namespace {

EventBuilder beaconEvent(std::string_view event, const Object& uuid, const Object& major, const Object& minor,
                         const Object& region, const Attributes& attributes) {
  return EventBuilder(event, attributes)
      .object("iBeaconUUID", uuid)
      .object("iBeaconMajor", major)
      .object("iBeaconMinor", minor)
      .object("uniqueRegionIdentifier", region);
}

}  // namespace

void KesuCommerceDiscovery::postSearched(const Object& searchString, const Object& latency,
                                         const Attributes& attributes) {
  EventBuilder("DiscoverySearch", attributes).object("searchString", searchString).object("latency", latency).post();
}

void KesuCommerceDiscovery::postBrowsedCategory(const Object& category, const Attributes& attributes) {
  EventBuilder("DiscoveryBrowsedCategory", attributes).object("category", category).post();
}

void KesuCommerceDiscovery::postBrowsedDeals(const Object& uniqueDealID, const Attributes& attributes) {
  EventBuilder("DiscoveryBrowsedDeals", attributes).object("uniqueDealID", uniqueDealID).post();
}

void KesuCommerceDiscovery::postBrowsedRecommendations(const Object& uniqueRecommendationID,
                                                       const Attributes& attributes) {
  EventBuilder("DiscoveryBrowsedRecommendations", attributes)
      .object("uniqueRecommendationID", uniqueRecommendationID)
      .post();
}

void KesuCommerceDiscovery::postBrowsedPrevOrders(const Object& rangeStart, const Object& end,
                                                  const Attributes& attributes) {
  EventBuilder("DiscoveryBrowsedPrevOrders", attributes)
      .object("rangeStart", rangeStart)
      .object("rangeEnd", end)
      .post();
}

void KesuCommerceBeacon::postEnteredRegion(const Object& iBeaconUUID, const Object& beaconMajor,
                                           const Object& beaconMinor, const Object& uniqueRegionIdentifier,
                                           const Attributes& attributes) {
  beaconEvent("BeaconEnteredRegion", iBeaconUUID, beaconMajor, beaconMinor, uniqueRegionIdentifier, attributes).post();
}

void KesuCommerceBeacon::postExitedRegion(const Object& iBeaconUUID, const Object& beaconMajor,
                                          const Object& beaconMinor, const Object& uniqueRegionIdentifier,
                                          const Attributes& attributes) {
  beaconEvent("BeaconExitedRegion", iBeaconUUID, beaconMajor, beaconMinor, uniqueRegionIdentifier, attributes).post();
}

void KesuCommerceBeacon::postTransactedInRegion(const Object& iBeaconUUID, const Object& beaconMajor,
                                                const Object& beaconMinor, const Object& uniqueRegionIdentifier,
                                                const Object& proximity, const Object& actionId,
                                                const Attributes& attributes) {
  beaconEvent("BeaconTransactedRegion", iBeaconUUID, beaconMajor, beaconMinor, uniqueRegionIdentifier, attributes)
      .object("proximity", proximity)
      .object("actionId", actionId)
      .post();
}

void KesuCommerceItem::postViewedItem(const Attributes& attributes) {
  EventBuilder("ItemView", attributes).post();
}

void KesuCommerceItem::postScannedItem(const Attributes& attributes) {
  EventBuilder("ItemScanned", attributes).post();
}

void KesuCommerceItem::postViewedReviews(const Attributes& attributes) {
  EventBuilder("ItemViewedReviews", attributes).post();
}

void KesuCommerceItem::postViewedDetails(const Attributes& attributes) {
  EventBuilder("ItemViewedDetails", attributes).post();
}

void KesuCommerceItem::postViewedPrice(const Attributes& attributes) {
  EventBuilder("ItemViewedPrice", attributes).post();
}

void KesuCommerceItem::postItemShareItem(const Attributes& attributes) {
  EventBuilder("ItemShare", attributes).post();
}

void KesuCommerceItem::postItemRateOn5Scale(const Object& itemSKU, const Object& rating, const Attributes& attributes) {
  EventBuilder("ItemRate", attributes).object("itemSKU", itemSKU).object("rating", rating).post();
}

}  // namespace kesu
