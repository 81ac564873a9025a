#pragma once

/// The catalogue: predefined events of many kinds of applications, one class a field. Each operation posts one event of
/// a fixed name to the table of events (KesuSMS: to the table of SMS records). The record holds the host's attributes,
/// the keys that the operation writes, and the name under "~e"; the later of them wins where two have the same key.
/// Kept: names and keys, the misspelt ones too, are the contract with the collector.
///
/// What the comments of the operations call the kinds of keys (every value but the first two is a text):
///
///   object           the argument as it is, whatever its kind; "" when it is missing (kesu::nil)
///   as is            the same, but a missing argument leaves the key out, and a host attribute of that name too
///   number           the argument's decimal text, such as 4 or 4.5; a text as it is, a bool as 1 or 0; "" when it is
///                    missing or none of these
///   decimal          the decimal text of an integer
///   integer          the same of its low 32 bits, read as a signed number
///   seconds          seconds as a whole number, cut toward zero; held inside the range of a 32-bit number, and 0 for
///                    not-a-number
///   degrees          latitude ("lat") or longitude ("long") of a point, six decimals
///   flag             "1" for true, "0" for false
///   "1" when true    "1" for true; for false nothing is written, and a host attribute stays
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
