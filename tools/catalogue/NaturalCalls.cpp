#include "NaturalCalls.h"

#include <kesu.h>

namespace kesu::catalogue {
namespace {

void callAd() {
  KesuAd::postAdRequested("a0", "a1", "a2", "a3");
  KesuAd::postAdReceived("a0", "a1", "a2", true);
  KesuAd::postAdClicked("a0", "a1", "a2", true, "a4");
}

void callAdvocacy() {
  KesuAdvocacy::postRequestForFeedback();
  KesuAdvocacy::postFeedbackProvided();
  KesuAdvocacy::postRequestRating();
}

void callAccount() {
  KesuAccount::postLoginOffered();
  KesuAccount::postLoginStarted();
  KesuAccount::postRegistrationOffered();
  KesuAccount::postRegistrationStarted();
  KesuAccount::postSocialLoginOffered("a0");
  KesuAccount::postSocialLoginStarted("a0");
  KesuAccount::postSocialLoginCompleted("a0");
  KesuAccount::postRegistrationCompleted();
  KesuAccount::postLoginCompleted(true, "a1");
  KesuAccount::postLogoutCompleted(true);
  KesuAccount::postPasswordResetRequested();
  KesuAccount::postPasswordResetCompleted();
}

void callMessaging() {
  KesuMessaging::postMessageSent("a0");
  KesuMessaging::postMessageSentOfType(40, "a1");
  KesuMessaging::postMessageReceived("a0");
  KesuMessaging::postMessageReceivedOfType(40, "a1");
  KesuMessaging::postMessageNewConversation("a0");
  KesuMessaging::postMessageVoiceCall("a0");
}

void callTasks() {
  KesuTasks::addToCalendarwithAttributes();
}

void callSocial() {
  KesuSocial::postSocialContentShareForNetworkName("a0", "a1", "a2");
  KesuSocial::postLiked("a0", "a1", "a2");
  KesuSocial::postFollowed("a0", "a1", "a2");
  KesuSocial::postSubscribed("a0", "a1", "a2");
  KesuSocial::postInvitedFriend("a0");
  KesuSocial::postFoundFriends("a0");
}

void callSupport() {
  KesuSupport::postRequestedPhoneCallback();
  KesuSupport::postLiveChatStartedWithTopic("a0");
  KesuSupport::postLiveChatEndedWithTopic("a0");
  KesuSupport::postTicketCreated("a0", "a1");
  KesuSupport::postFeedbackReceived("a0");
  KesuSupport::postQualityOfServiceRated("a0", "a1");
}

void callCommerceSupport() {
  KesuCommerceSupport::postLiveChatStartedWithTopic("a0", "a1");
  KesuCommerceSupport::postLiveChatEndedWithTopic("a0", "a1");
  KesuCommerceSupport::postTicketCreated("a0", "a1", "a2");
  KesuCommerceSupport::postFeedbackReceived("a0", "a1");
  KesuCommerceSupport::postQualityOfServiceRated("a0", "a1", "a2");
}

void callCommerceDiscovery() {
  KesuCommerceDiscovery::postSearched("a0", "a1");
  KesuCommerceDiscovery::postBrowsedCategory("a0");
  KesuCommerceDiscovery::postBrowsedDeals("a0");
  KesuCommerceDiscovery::postBrowsedRecommendations("a0");
  KesuCommerceDiscovery::postBrowsedPrevOrders("a0", "a1");
}

void callCommerceCuratedList() {
  KesuCommerceCuratedList::postCreated("a0", "a1");
  KesuCommerceCuratedList::postBrowsed("a0", "a1");
  KesuCommerceCuratedList::postAddedItem("a0", "a1", "a2");
  KesuCommerceCuratedList::postRemovedItem("a0", "a1", "a2");
  KesuCommerceCuratedList::postShared("a0", "a1");
  KesuCommerceCuratedList::postPublished("a0", "a1");
}

void callCommerceWishList() {
  KesuCommerceWishList::postCreated("a0", "a1");
  KesuCommerceWishList::postBrowsed("a0");
  KesuCommerceWishList::postAddedItem("a0", "a1", "a2");
  KesuCommerceWishList::postRemovedItem("a0", "a1", "a2");
  KesuCommerceWishList::postShared("a0");
}

void callCommerceBeacon() {
  KesuCommerceBeacon::postEnteredRegion("a0", "a1", "a2", "a3");
  KesuCommerceBeacon::postExitedRegion("a0", "a1", "a2", "a3");
  KesuCommerceBeacon::postTransactedInRegion("a0", "a1", "a2", "a3", "a4", "a5");
}

void callCommerceCart() {
  KesuCommerceCart::postAddItem("a0", "a1", "a2");
  KesuCommerceCart::postAddItemFromDeals("a0", "a1", "a2", "a3");
  KesuCommerceCart::postAddItemFromWishList("a0", "a1", "a2", "a3");
  KesuCommerceCart::postAddItemFromCuratedList("a0", "a1", "a2", "a3");
  KesuCommerceCart::postAddItemFromRecommendations("a0", "a1", "a2", "a3");
  KesuCommerceCart::postAddItemFromPreviousOrders("a0", "a1", "a2", "a3");
  KesuCommerceCart::postAddItemFromSearchResults("a0", "a1", "a2", "a3");
  KesuCommerceCart::postAddItemFromSubscriptionList("a0", "a1", "a2", "a3");
  KesuCommerceCart::postRemoveItemFromCart("a0", "a1", "a2");
  KesuCommerceCart::postView("a0");
  KesuCommerceCart::postShare("a0", "a1", "a2");
}

void callCommerceItem() {
  KesuCommerceItem::postViewedItem();
  KesuCommerceItem::postScannedItem();
  KesuCommerceItem::postViewedReviews();
  KesuCommerceItem::postViewedDetails();
  KesuCommerceItem::postViewedPrice();
  KesuCommerceItem::postItemShareItem();
  KesuCommerceItem::postItemRateOn5Scale("a0", "a1");
}

void callCommerceCheckout() {
  KesuCommerceCheckout::postCheckoutStarted();
  KesuCommerceCheckout::postCheckoutCompleted();
  KesuCommerceCheckout::postCheckoutAbandoned();
  KesuCommerceCheckout::postCheckoutFailed();
}

void callCommerceShipping() {
  KesuCommerceShipping::postShippingStarted();
  KesuCommerceShipping::postShippingCompleted();
  KesuCommerceShipping::postShippingAbandoned();
  KesuCommerceShipping::postShippingFailed();
}

void callCommerceBilling() {
  KesuCommerceBilling::postBillingStarted();
  KesuCommerceBilling::postBillingCompleted();
  KesuCommerceBilling::postBillingAbandoned();
  KesuCommerceBilling::postBillingFailed();
}

void callCommercePayment() {
  KesuCommercePayment::postPaymentStarted();
  KesuCommercePayment::postPaymentCompleted();
  KesuCommercePayment::postPaymentAbandoned();
  KesuCommercePayment::postPaymentFailed();
}

void callCommerceRevenue() {
  KesuCommerceRevenue::postRevenue("a0");
  KesuCommerceRevenue::postRevenue("a0", "a1");
  KesuCommerceRevenue::postRevenueUsingApplePay("a0");
  KesuCommerceRevenue::postRevenueUsingSamsungPay("a0");
  KesuCommerceRevenue::postRevenueUsingGooglePay("a0");
}

void callInAppPurchaseRevenue() {
  KesuInAppPurchaseRevenue::postPriceListViewViewed("a0");
  KesuInAppPurchaseRevenue::postBuyItem("a0", "a1", "a2");
  KesuInAppPurchaseRevenue::postBuyItemInUSD("a0", "a1");
  KesuInAppPurchaseRevenue::postBuyItem("a0", "a1", "a2", "a3", "a4", "a5", "a6", true, "a8");
}

void callGaming() {
  KesuGaming::postLevelStarted("a0");
  KesuGaming::postLevelEnded("a0", "a1", "a2");
  KesuGaming::postPowerUpConsumed("a0", "a1", "a2");
  KesuGaming::postInGameItemPurchased("a0", "a1", "a2");
  KesuGaming::postAchievementEarned("a0", "a1");
  KesuGaming::postSummaryViewed("a0", "a1");
  KesuGaming::postLeaderBoardViewed("a0", "a1");
  KesuGaming::postScorecardViewed("a0", "a1");
  KesuGaming::postHelpViewed("a0");
  KesuGaming::postTutorialViewed("a0");
  KesuGaming::postFriendChallenged();
  KesuGaming::postChallengeAccepted();
  KesuGaming::postChallengeDeclined();
  KesuGaming::postGameStart("a0");
  KesuGaming::postGameEnd("a0", "a1");
}

void callSceneFlow() {
  KesuSceneFlow::postSecondsOnScene("a0", 101.9);
}

void callHealthAndFitness() {
  KesuHealthAndFitness::postStarted();
  KesuHealthAndFitness::postEnded();
  KesuHealthAndFitness::postAchievementReceived();
  KesuHealthAndFitness::postStepGoalCompleted();
  KesuHealthAndFitness::postGoalCompleted();
  KesuHealthAndFitness::postChallengedFriend();
  KesuHealthAndFitness::postChallengeAccepted();
}

void callContent() {
  KesuContent::postViewed("a0", "a1", "a2");
  KesuContent::postSearched("a0");
  KesuContent::postRatedOn5PointScale("a0", "a1", "a2", 4.5);
  KesuContent::postRatedThumbsUp("a0", "a1", "a2");
  KesuContent::postRatedThumbsDown("a0", "a1", "a2");
}

void callMedia() {
  KesuMedia::postPlayedMedia("a0", "a1", "a2", "a3", "a4");
  KesuMedia::postSearched("a0");
  KesuMedia::postRatedOn5PointScale("a0", "a1", "a2", 4.5);
  KesuMedia::postRatedThumbsUp("a0", "a1", "a2");
  KesuMedia::postRatedThumbsDown("a0", "a1", "a2");
}

void callBitcoin() {
  KesuBitcoin::postSentBitcoins();
  KesuBitcoin::postRequestedBitcoins();
  KesuBitcoin::postReceivedBitcoins();
  KesuBitcoin::postViewedTransactions();
  KesuBitcoin::postImportedPrivateKey();
  KesuBitcoin::postScannedPrivateKey();
}

void callDrone() {
  KesuDrone::postPreflightCheckCompleted("a0", "a1", 42, 43, "a4", "a5");
  KesuDrone::postInflightCheckCompleted("a0", "a1", "a2", "a3", "a4", "a5");
  KesuDrone::postConnected();
  KesuDrone::postDisconnected("a0");
  KesuDrone::postAirborne("a0");
  KesuDrone::postLanded("a0");
  KesuDrone::postFlightPathCreated("a0");
  KesuDrone::postFlightPathUploaded("a0");
  KesuDrone::postFlightPathEdited("a0");
  KesuDrone::postFlightPathDeleted("a0");
  KesuDrone::postFlightPathCompleted("a0");
  KesuDrone::postFirstPersonViewEnabled("a0");
  KesuDrone::postFirstPersonViewDisabled("a0");
  KesuDrone::postStartedAerialVideo("a0");
  KesuDrone::postStartedAerialVideo("a0", "a1");
  KesuDrone::postStoppedAerialVideo("a0", "a1");
  KesuDrone::postTookAerialPicture("a0");
  KesuDrone::postStartedAerialTimelapse("a0", 41, 42);
  KesuDrone::postStoppedAerialTimelapse("a0");
  KesuDrone::postRequestedReturnToBase();
  KesuDrone::postSwitchedToHelicopterFlyingMode();
  KesuDrone::postSwitchedToAttitudeFlyingMode();
  KesuDrone::postSwitchedToGPSHoldFlyingMode();
  KesuDrone::postSwitchedToCustomFlyingMode(40);
  KesuDrone::postSetMaxAltitude(40);
  KesuDrone::postSetAutoReturnInSeconds(40);
  KesuDrone::postSetAutoReturnWhenLowMemory(40);
  KesuDrone::postSetAutoReturnWhenLowBattery(40);
}

void callWeatherAndForecast() {
  const KesuGeoPoint point = {37.774899F, -122.419403F};
  KesuWeatherAndForecast::postWeatherRequestedForType(40, 41);
  KesuWeatherAndForecast::postWeatherHistoricalRequest(100.9, 101.9);
  KesuWeatherAndForecast::postWeatherStationsRequestWithClusterData("a0", &point);
  KesuWeatherAndForecast::postWeatherMapLayersRequested("a0");
  KesuWeatherAndForecast::postWeatherRequestForUVIndexAtPoint(&point);
  KesuWeatherAndForecast::postWeatherResponseForType(40);
  KesuWeatherAndForecast::postWeatherResponseForHistoricalData();
  KesuWeatherAndForecast::postWeatherStationResponseData();
  KesuWeatherAndForecast::postWeatherMapLayersResponse();
  KesuWeatherAndForecast::postWeatherResponseForUVIndex();
  KesuWeatherAndForecast::postForecastRequestForKeywords("a0");
  KesuWeatherAndForecast::postForecastResponseForKeywords();
  KesuWeatherAndForecast::postForecastFetch(40);
  KesuWeatherAndForecast::postForecastFetchResponse();
}

void callSMS() {
  KesuSMS::postRegisteredDevice("a0", "a1");
  KesuSMS::postVerification("a0", "a1", "a2");
  KesuSMS::postUnsubscribeDevice("a0", "a1");
}

void callMessageApps() {
  KesuiMessageApps::postInsertMessageWithAttributes();
  KesuiMessageApps::postInsertStickerWithLocalizedDescription(true, true);
  KesuiMessageApps::postInsertTextWithText(true);
  KesuiMessageApps::postInsertAttachmentWithURL(true, true);
  KesuiMessageApps::postMessageStartSendingWithAttributes();
  KesuiMessageApps::postReceiveMessageWithAttributes();
  KesuiMessageApps::postCancelSendingMessageWithAttributes();
}

}  // namespace

void callEverythingNaturally() {
  callAd();
  callAdvocacy();
  callAccount();
  callMessaging();
  callTasks();
  callSocial();
  callSupport();
  callCommerceSupport();
  callCommerceDiscovery();
  callCommerceCuratedList();
  callCommerceWishList();
  callCommerceBeacon();
  callCommerceCart();
  callCommerceItem();
  callCommerceCheckout();
  callCommerceShipping();
  callCommerceBilling();
  callCommercePayment();
  callCommerceRevenue();
  callInAppPurchaseRevenue();
  callGaming();
  callSceneFlow();
  callHealthAndFitness();
  callContent();
  callMedia();
  callBitcoin();
  callDrone();
  callWeatherAndForecast();
  callSMS();
  callMessageApps();
}

}  // namespace kesu::catalogue
