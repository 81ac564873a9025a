#pragma once

/// The catalogue: predefined events for many kinds of applications, one class per field. Each operation posts one event
/// of a fixed name to the table of events (KesuSMS: to the table of SMS records). The record has the host's attributes,
/// the keys that the operation writes, and the name under "~e"; where two have the same key, the later one wins.
/// Kept: names and keys, the misspelt ones too, are the contract with the collector.
///
/// Every operation may be called on any thread, copies its arguments and attributes, and returns before anything is
/// sent. Before Kesu::initialize it throws InternalInconsistencyException and records nothing. KesuSceneFlow, which
/// posts no event, says itself what holds for it.
///
/// A pointer converts to bool, so a text in place of a flag would count as true: the forms that take one are deleted.
///
/// The comments of the operations name the keys and the kind of each. Every value but the first two is a text:
///
///   object           the argument as it is, whatever its kind; "" when it is missing (kesu::nil)
///   as is            the same, but a missing argument leaves the key out and removes a host attribute of that name
///   number           the argument's decimal text, such as 4 or 4.5; a text as it is, a bool as 1 or 0; "" when it is
///                    missing or none of these
///   decimal          the decimal text of an integer
///   integer          the decimal text of an integer's low 32 bits, read as a signed number
///   seconds          whole seconds, truncated toward zero, as an integer: dates past 2038 wrap; 0 for not-a-number
///   degrees          latitude ("lat") or longitude ("long") of a point, six decimals
///   flag             "1" for true, "0" for false
///   "1" when true    "1" for true; false writes nothing, and a host attribute of that name stays
///   "key" = "value"  always this text
#include <kesu/events/KesuAccount.h>
#include <kesu/events/KesuAd.h>
#include <kesu/events/KesuAdvocacy.h>
#include <kesu/events/KesuBitcoin.h>
#include <kesu/events/KesuCommerceBeacon.h>
#include <kesu/events/KesuCommerceBilling.h>
#include <kesu/events/KesuCommerceCart.h>
#include <kesu/events/KesuCommerceCheckout.h>
#include <kesu/events/KesuCommerceCuratedList.h>
#include <kesu/events/KesuCommerceDiscovery.h>
#include <kesu/events/KesuCommerceItem.h>
#include <kesu/events/KesuCommercePayment.h>
#include <kesu/events/KesuCommerceRevenue.h>
#include <kesu/events/KesuCommerceShipping.h>
#include <kesu/events/KesuCommerceSupport.h>
#include <kesu/events/KesuCommerceWishList.h>
#include <kesu/events/KesuContent.h>
#include <kesu/events/KesuDrone.h>
#include <kesu/events/KesuGaming.h>
#include <kesu/events/KesuGeoPoint.h>
#include <kesu/events/KesuHealthAndFitness.h>
#include <kesu/events/KesuInAppPurchaseRevenue.h>
#include <kesu/events/KesuMedia.h>
#include <kesu/events/KesuMessaging.h>
#include <kesu/events/KesuSMS.h>
#include <kesu/events/KesuSceneFlow.h>
#include <kesu/events/KesuSocial.h>
#include <kesu/events/KesuSupport.h>
#include <kesu/events/KesuTasks.h>
#include <kesu/events/KesuWeatherAndForecast.h>
#include <kesu/events/KesuiMessageApps.h>
