#include "CatalogueTable.h"

#include <kesu/events/Catalogue.h>

#include "TableBuilder.h"

namespace kesu::catalogue {
namespace {

void addAdvertising(TableBuilder& table) {
  table.startClass("KesuAd");
  table.add("postAdRequested:fromAppScreen:withAdSize:adType:withAttributes:", &KesuAd::postAdRequested);
  table.add("postAdReceived:fromAppScreen:withResultCode:isSuccess:withAttributes:",
            choose<const Object&, const Object&, const Object&, bool, const Attributes&>(&KesuAd::postAdReceived));
  table.add("postAdClicked:fromAppScreen:adCode:isSuccess:withErrorCode:withAttributes:",
            choose<const Object&, const Object&, const Object&, bool, const Object&, const Attributes&>(
                &KesuAd::postAdClicked));
  table.startClass("KesuAdvocacy");
  table.add("postRequestForFeedback:", &KesuAdvocacy::postRequestForFeedback);
  table.add("postFeedbackProvided:", &KesuAdvocacy::postFeedbackProvided);
  table.add("postRequestRating:", &KesuAdvocacy::postRequestRating);
}

void addAccounts(TableBuilder& table) {
  table.startClass("KesuAccount");
  table.add("postLoginOffered:", &KesuAccount::postLoginOffered);
  table.add("postLoginStarted:", &KesuAccount::postLoginStarted);
  table.add("postRegistrationOffered:", &KesuAccount::postRegistrationOffered);
  table.add("postRegistrationStarted:", &KesuAccount::postRegistrationStarted);
  table.add("postSocialLoginOffered:withAttributes:", &KesuAccount::postSocialLoginOffered);
  table.add("postSocialLoginStarted:withAttributes:", &KesuAccount::postSocialLoginStarted);
  table.add("postSocialLoginCompleted:withAttributes:", &KesuAccount::postSocialLoginCompleted);
  table.add("postRegistrationCompleted:", &KesuAccount::postRegistrationCompleted);
  table.add("postLoginCompleted:withErrCode:withAttributes:",
            choose<bool, const Object&, const Attributes&>(&KesuAccount::postLoginCompleted));
  table.add("postLogoutCompleted:withAttributes:", choose<bool, const Attributes&>(&KesuAccount::postLogoutCompleted));
  table.add("postPasswordResetRequested:", &KesuAccount::postPasswordResetRequested);
  table.add("postPasswordResetCompleted:", &KesuAccount::postPasswordResetCompleted);
}

void addMessages(TableBuilder& table) {
  table.startClass("KesuMessaging");
  table.add("postMessageSent:withAttributes:", &KesuMessaging::postMessageSent);
  table.add("postMessageSentOfType:withUniqueId:withAttributes:", &KesuMessaging::postMessageSentOfType);
  table.add("postMessageReceived:withAttributes:", &KesuMessaging::postMessageReceived);
  table.add("postMessageReceivedOfType:withUniqueId:withAttributes:", &KesuMessaging::postMessageReceivedOfType);
  table.add("postMessageNewConversation:withAttributes:", &KesuMessaging::postMessageNewConversation);
  table.add("postMessageVoiceCall:withAttributes:", &KesuMessaging::postMessageVoiceCall);
  table.startClass("KesuSMS");
  table.add("postRegisteredDevice:withCountryCode:withAttributes:", &KesuSMS::postRegisteredDevice);
  table.add("postVerification:withVerificationCode:withCountryCode:withAttributes:", &KesuSMS::postVerification);
  table.add("postUnsubscribeDevice:withCountryCode:withAttributes:", &KesuSMS::postUnsubscribeDevice);
  table.startClass("KesuiMessageApps");
  table.add("postInsertMessageWithAttributes:", &KesuiMessageApps::postInsertMessageWithAttributes);
  table.add("postInsertStickerWithLocalizedDescription:withStickerImageFileURLString:withAttributes:",
            choose<bool, bool, const Attributes&>(&KesuiMessageApps::postInsertStickerWithLocalizedDescription));
  table.add("postInsertTextWithText:withAttributes:",
            choose<bool, const Attributes&>(&KesuiMessageApps::postInsertTextWithText));
  table.add("postInsertAttachmentWithURL:withAlternateFileName:withAttributes:",
            choose<bool, bool, const Attributes&>(&KesuiMessageApps::postInsertAttachmentWithURL));
  table.add("postMessageStartSendingWithAttributes:", &KesuiMessageApps::postMessageStartSendingWithAttributes);
  table.add("postReceiveMessageWithAttributes:", &KesuiMessageApps::postReceiveMessageWithAttributes);
  table.add("postCancelSendingMessageWithAttributes:", &KesuiMessageApps::postCancelSendingMessageWithAttributes);
}

void addSocial(TableBuilder& table) {
  table.startClass("KesuTasks");
  table.add("addToCalendarwithAttributes:", &KesuTasks::addToCalendarwithAttributes);
  table.startClass("KesuSocial");
  table.add("postSocialContentShareForNetworkName:forContentReference:category:withAttributes:",
            &KesuSocial::postSocialContentShareForNetworkName);
  table.add("postLiked:forContentReference:category:withAttributes:", &KesuSocial::postLiked);
  table.add("postFollowed:forContentReference:category:withAttributes:", &KesuSocial::postFollowed);
  table.add("postSubscribed:forContentReference:category:withAttributes:", &KesuSocial::postSubscribed);
  table.add("postInvitedFriend:withAttributes:", &KesuSocial::postInvitedFriend);
  table.add("postFoundFriends:withAtrributes:", &KesuSocial::postFoundFriends);
}

void addSupport(TableBuilder& table) {
  table.startClass("KesuSupport");
  table.add("postRequestedPhoneCallback:", &KesuSupport::postRequestedPhoneCallback);
  table.add("postLiveChatStartedWithTopic:withAttributes:", &KesuSupport::postLiveChatStartedWithTopic);
  table.add("postLiveChatEndedWithTopic:withAttributes:", &KesuSupport::postLiveChatEndedWithTopic);
  table.add("postTicketCreated:withTopic:withAttributes:", &KesuSupport::postTicketCreated);
  table.add("postFeedbackReceived:withAttributes:", &KesuSupport::postFeedbackReceived);
  table.add("postQualityOfServiceRated:rateOn5Scale:withAttributes:", &KesuSupport::postQualityOfServiceRated);
  table.startClass("KesuCommerceSupport");
  table.add("postLiveChatStartedWithTopic:withOrderNumber:withAttributes:",
            &KesuCommerceSupport::postLiveChatStartedWithTopic);
  table.add("postLiveChatEndedWithTopic:withOrderNumber:withAttributes:",
            &KesuCommerceSupport::postLiveChatEndedWithTopic);
  table.add("postTicketCreated:withTopic:withOrderNumber:withAttributes:", &KesuCommerceSupport::postTicketCreated);
  table.add("postFeedbackReceived:withOrderNumber:withAttributes:", &KesuCommerceSupport::postFeedbackReceived);
  table.add("postQualityOfServiceRated:withOrderNumber:rateOn5Scale:withAttributes:",
            &KesuCommerceSupport::postQualityOfServiceRated);
}

void addShopping(TableBuilder& table) {
  table.startClass("KesuCommerceDiscovery");
  table.add("postSearched:withLatency:withAttributes:", &KesuCommerceDiscovery::postSearched);
  table.add("postBrowsedCategory:withAttributes:", &KesuCommerceDiscovery::postBrowsedCategory);
  table.add("postBrowsedDeals:withAttributes:", &KesuCommerceDiscovery::postBrowsedDeals);
  table.add("postBrowsedRecommendations:withAttributes:", &KesuCommerceDiscovery::postBrowsedRecommendations);
  table.add("postBrowsedPrevOrders:withEnd:withAttributes:", &KesuCommerceDiscovery::postBrowsedPrevOrders);
  table.startClass("KesuCommerceBeacon");
  table.add("postEnteredRegion:withBeaconMajor:withBeaconMinor:withUniqueRegionIdentifier:withAttributes:",
            &KesuCommerceBeacon::postEnteredRegion);
  table.add("postExitedRegion:withBeaconMajor:withBeaconMinor:withUniqueRegionIdentifier:withAttributes:",
            &KesuCommerceBeacon::postExitedRegion);
  table.add(
      "postTransactedInRegion:withBeaconMajor:withBeaconMinor:withUniqueRegionIdentifier:withProximity:withActionId:"
      "withAttributes:",
      &KesuCommerceBeacon::postTransactedInRegion);
  table.startClass("KesuCommerceItem");
  table.add("postViewedItem:", &KesuCommerceItem::postViewedItem);
  table.add("postScannedItem:", &KesuCommerceItem::postScannedItem);
  table.add("postViewedReviews:", &KesuCommerceItem::postViewedReviews);
  table.add("postViewedDetails:", &KesuCommerceItem::postViewedDetails);
  table.add("postViewedPrice:", &KesuCommerceItem::postViewedPrice);
  table.add("postItemShareItem:", &KesuCommerceItem::postItemShareItem);
  table.add("postItemRateOn5Scale:withRating:withAttributes:", &KesuCommerceItem::postItemRateOn5Scale);
}

void addShoppingLists(TableBuilder& table) {
  table.startClass("KesuCommerceCuratedList");
  table.add("postCreated:withType:withAttributes:", &KesuCommerceCuratedList::postCreated);
  table.add("postBrowsed:withCreator:withAttributes:", &KesuCommerceCuratedList::postBrowsed);
  table.add("postAddedItem:withCategory:withItemId:withAttributes:", &KesuCommerceCuratedList::postAddedItem);
  table.add("postRemovedItem:withListType:withItemID:withAttributes:", &KesuCommerceCuratedList::postRemovedItem);
  table.add("postShared:withCreator:withAttributes:", &KesuCommerceCuratedList::postShared);
  table.add("postPublished:withCreator:withAttributes:", &KesuCommerceCuratedList::postPublished);
  table.startClass("KesuCommerceWishList");
  table.add("postCreated:withWishListType:withAttributes:", &KesuCommerceWishList::postCreated);
  table.add("postBrowsed:withAttributes:", &KesuCommerceWishList::postBrowsed);
  table.add("postAddedItem:withItemCategory:withItemId:withAttributes:", &KesuCommerceWishList::postAddedItem);
  table.add("postRemovedItem:withItemCategory:withItemId:withAttributes:", &KesuCommerceWishList::postRemovedItem);
  table.add("postShared:withAttributes:", &KesuCommerceWishList::postShared);
}

void addCart(TableBuilder& table) {
  table.startClass("KesuCommerceCart");
  table.add("postAddItem:withItemCategory:withItemId:withAttributes:", &KesuCommerceCart::postAddItem);
  table.add("postAddItemFromDeals:withItemCategory:withItemId:withUniqueDealId:withAttributes:",
            &KesuCommerceCart::postAddItemFromDeals);
  table.add("postAddItemFromWishList:withItemCategory:withItemId:withUniqueWishListId:withAttributes:",
            &KesuCommerceCart::postAddItemFromWishList);
  table.add("postAddItemFromCuratedList:withItemCategory:withItemId:withUniqueCuratedListId:withAttributes:",
            &KesuCommerceCart::postAddItemFromCuratedList);
  table.add("postAddItemFromRecommendations:withItemCategory:withItemId:withUniqueRecommendationId:withAttributes:",
            &KesuCommerceCart::postAddItemFromRecommendations);
  table.add("postAddItemFromPreviousOrders:withItemCategory:withItemId:withPreviousOrderId:withAttributes:",
            &KesuCommerceCart::postAddItemFromPreviousOrders);
  table.add("postAddItemFromSearchResults:withItemCategory:withItemId:withSearchString:withAttributes:",
            &KesuCommerceCart::postAddItemFromSearchResults);
  table.add("postAddItemFromSubscriptionList:withItemCategory:withItemId:withUniqueDealId:withAttributes:",
            &KesuCommerceCart::postAddItemFromSubscriptionList);
  table.add("postRemoveItemFromCart:withItemCategory:withItemId:withAttributes:",
            &KesuCommerceCart::postRemoveItemFromCart);
  table.add("postView:withAttributes:", &KesuCommerceCart::postView);
  table.add("postShare:withItemSharedWith:withItemId:withAttributes:", &KesuCommerceCart::postShare);
}

void addCheckout(TableBuilder& table) {
  table.startClass("KesuCommerceCheckout");
  table.add("postCheckoutStarted:", &KesuCommerceCheckout::postCheckoutStarted);
  table.add("postCheckoutCompleted:", &KesuCommerceCheckout::postCheckoutCompleted);
  table.add("postCheckoutAbandoned:", &KesuCommerceCheckout::postCheckoutAbandoned);
  table.add("postCheckoutFailed:", &KesuCommerceCheckout::postCheckoutFailed);
  table.startClass("KesuCommerceShipping");
  table.add("postShippingStarted:", &KesuCommerceShipping::postShippingStarted);
  table.add("postShippingCompleted:", &KesuCommerceShipping::postShippingCompleted);
  table.add("postShippingAbandoned:", &KesuCommerceShipping::postShippingAbandoned);
  table.add("postShippingFailed:", &KesuCommerceShipping::postShippingFailed);
  table.startClass("KesuCommerceBilling");
  table.add("postBillingStarted:", &KesuCommerceBilling::postBillingStarted);
  table.add("postBillingCompleted:", &KesuCommerceBilling::postBillingCompleted);
  table.add("postBillingAbandoned:", &KesuCommerceBilling::postBillingAbandoned);
  table.add("postBillingFailed:", &KesuCommerceBilling::postBillingFailed);
  table.startClass("KesuCommercePayment");
  table.add("postPaymentStarted:", &KesuCommercePayment::postPaymentStarted);
  table.add("postPaymentCompleted:", &KesuCommercePayment::postPaymentCompleted);
  table.add("postPaymentAbandoned:", &KesuCommercePayment::postPaymentAbandoned);
  table.add("postPaymentFailed:", &KesuCommercePayment::postPaymentFailed);
}

void addRevenue(TableBuilder& table) {
  table.startClass("KesuCommerceRevenue");
  table.add("postRevenue:withAttributes:", choose<const Object&, const Attributes&>(&KesuCommerceRevenue::postRevenue));
  table.add("postRevenue:withPaymentInstrument:withAttributes:",
            choose<const Object&, const Object&, const Attributes&>(&KesuCommerceRevenue::postRevenue));
  table.add("postRevenueUsingApplePay:withAttributes:", &KesuCommerceRevenue::postRevenueUsingApplePay);
  table.add("postRevenueUsingSamsungPay:withAttributes:", &KesuCommerceRevenue::postRevenueUsingSamsungPay);
  table.add("postRevenueUsingGooglePay:withAttributes:", &KesuCommerceRevenue::postRevenueUsingGooglePay);
  table.startClass("KesuInAppPurchaseRevenue");
  table.add("postPriceListViewViewed:withAttributes:", &KesuInAppPurchaseRevenue::postPriceListViewViewed);
  table.add(
      "postBuyItem:price:currency:withAttributes:",
      choose<const Object&, const Object&, const Object&, const Attributes&>(&KesuInAppPurchaseRevenue::postBuyItem));
  table.add("postBuyItemInUSD:price:withAttributes:", &KesuInAppPurchaseRevenue::postBuyItemInUSD);
  table.add("postBuyItem:price:currency:itemType:itemSKU:quantity:requestId:status:successCode:withAttributes:",
            choose<const Object&, const Object&, const Object&, const Object&, const Object&, const Object&,
                   const Object&, bool, const Object&, const Attributes&>(&KesuInAppPurchaseRevenue::postBuyItem));
}

void addGaming(TableBuilder& table) {
  table.startClass("KesuGaming");
  table.add("postLevelStarted:withAttributes:", &KesuGaming::postLevelStarted);
  table.add("postLevelEnded:withScore:withSuccessOrFailure:withAttributes:", &KesuGaming::postLevelEnded);
  table.add("postPowerUpConsumed:withType:withValue:withAttributes:", &KesuGaming::postPowerUpConsumed);
  table.add("postInGameItemPurchased:withItemType:withItemValue:withAttributes:", &KesuGaming::postInGameItemPurchased);
  table.add("postAchievementEarned:withType:withAttributes:", &KesuGaming::postAchievementEarned);
  table.add("postSummaryViewed:withScore:withAttributes:", &KesuGaming::postSummaryViewed);
  table.add("postLeaderBoardViewed:withScore:withAttributes:", &KesuGaming::postLeaderBoardViewed);
  table.add("postScorecardViewed:withScore:withAttributes:", &KesuGaming::postScorecardViewed);
  table.add("postHelpViewed:withAttributes:", &KesuGaming::postHelpViewed);
  table.add("postTutorialViewed:withAttributes:", &KesuGaming::postTutorialViewed);
  table.add("postFriendChallenged:", &KesuGaming::postFriendChallenged);
  table.add("postChallengeAccepted:", &KesuGaming::postChallengeAccepted);
  table.add("postChallengeDeclined:", &KesuGaming::postChallengeDeclined);
  table.add("postGameStart:withAttributes:", &KesuGaming::postGameStart);
  table.add("postGameEnd:withLevelsWon:withAttributes:", &KesuGaming::postGameEnd);
  table.startClass("KesuSceneFlow");
  table.add("postSecondsOnScene:forSeconds:", &KesuSceneFlow::postSecondsOnScene);
}

void addHealth(TableBuilder& table) {
  table.startClass("KesuHealthAndFitness");
  table.add("postStarted:", &KesuHealthAndFitness::postStarted);
  table.add("postEnded:", &KesuHealthAndFitness::postEnded);
  table.add("postAchievementReceived:", &KesuHealthAndFitness::postAchievementReceived);
  table.add("postStepGoalCompleted:", &KesuHealthAndFitness::postStepGoalCompleted);
  table.add("postGoalCompleted:", &KesuHealthAndFitness::postGoalCompleted);
  table.add("postChallengedFriend:", &KesuHealthAndFitness::postChallengedFriend);
  table.add("postChallengeAccepted:", &KesuHealthAndFitness::postChallengeAccepted);
}

void addMedia(TableBuilder& table) {
  table.startClass("KesuContent");
  table.add("postViewed:category:withUniqueContentId:withAttributes:", &KesuContent::postViewed);
  table.add("postSearched:withAttributes:", &KesuContent::postSearched);
  table.add("postRatedOn5PointScale:category:withUniqueContentId:contentRating:withAttributes:",
            &KesuContent::postRatedOn5PointScale);
  table.add("postRatedThumbsUp:category:withUniqueContentId:withAttributes:", &KesuContent::postRatedThumbsUp);
  table.add("postRatedThumbsDown:category:withUniqueContentId:withAttributes:", &KesuContent::postRatedThumbsDown);
  table.startClass("KesuMedia");
  table.add("postPlayedMedia:mediaType:category:percentPlayed:withUniqueContentId:withAttributes:",
            &KesuMedia::postPlayedMedia);
  table.add("postSearched:withAttributes:", &KesuMedia::postSearched);
  table.add("postRatedOn5PointScale:category:withUniqueContentId:contentRating:withAttributes:",
            &KesuMedia::postRatedOn5PointScale);
  table.add("postRatedThumbsUp:category:withUniqueContentId:withAttributes:", &KesuMedia::postRatedThumbsUp);
  table.add("postRatedThumbsDown:category:withUniqueContentId:withAttributes:", &KesuMedia::postRatedThumbsDown);
}

void addBitcoin(TableBuilder& table) {
  table.startClass("KesuBitcoin");
  table.add("postSentBitcoins:", &KesuBitcoin::postSentBitcoins);
  table.add("postRequestedBitcoins:", &KesuBitcoin::postRequestedBitcoins);
  table.add("postReceivedBitcoins:", &KesuBitcoin::postReceivedBitcoins);
  table.add("postViewedTransactions:", &KesuBitcoin::postViewedTransactions);
  table.add("postImportedPrivateKey:", &KesuBitcoin::postImportedPrivateKey);
  table.add("postScannedPrivateKey:", &KesuBitcoin::postScannedPrivateKey);
}

void addDroneFlights(TableBuilder& table) {
  table.startClass("KesuDrone");
  table.add(
      "postPreflightCheckCompleted:withStorageStatus:withDroneBattery:withTransmitterBattery:withCalibrationStatus:"
      "withGPSStatus:withAttributes:",
      &KesuDrone::postPreflightCheckCompleted);
  table.add("postInflightCheckCompleted:withRoll:withPitch:withYaw:withThrottle:withTrim:withAttributes:",
            &KesuDrone::postInflightCheckCompleted);
  table.add("postConnected:", &KesuDrone::postConnected);
  table.add("postDisconnected:withAttributes:", &KesuDrone::postDisconnected);
  table.add("postAirborne:withAttributes:", &KesuDrone::postAirborne);
  table.add("postLanded:withAttributes:", &KesuDrone::postLanded);
  table.add("postFlightPathCreated:withAttributes:", &KesuDrone::postFlightPathCreated);
  table.add("postFlightPathUploaded:withAttributes:", &KesuDrone::postFlightPathUploaded);
  table.add("postFlightPathEdited:withAttributes:", &KesuDrone::postFlightPathEdited);
  table.add("postFlightPathDeleted:withAttributes:", &KesuDrone::postFlightPathDeleted);
  table.add("postFlightPathCompleted:withAttributes:", &KesuDrone::postFlightPathCompleted);
  table.add("postFirstPersonViewEnabled:withAttributes:", &KesuDrone::postFirstPersonViewEnabled);
  table.add("postFirstPersonViewDisabled:withAttributes:", &KesuDrone::postFirstPersonViewDisabled);
  table.add("postStartedAerialVideo:withAttributes:",
            choose<const Object&, const Attributes&>(&KesuDrone::postStartedAerialVideo));
  table.add("postStartedAerialVideo:videoIdentifer:withAttributes:",
            choose<const Object&, const Object&, const Attributes&>(&KesuDrone::postStartedAerialVideo));
  table.add("postStoppedAerialVideo:withLength:withAttributes:", &KesuDrone::postStoppedAerialVideo);
  table.add("postTookAerialPicture:withAttributes:", &KesuDrone::postTookAerialPicture);
  table.add("postStartedAerialTimelapse:totalShots:delayBetweenShots:withAttributes:",
            &KesuDrone::postStartedAerialTimelapse);
  table.add("postStoppedAerialTimelapse:withAttributes:", &KesuDrone::postStoppedAerialTimelapse);
  table.add("postRequestedReturnToBase:", &KesuDrone::postRequestedReturnToBase);
  table.add("postSwitchedToHelicopterFlyingMode:", &KesuDrone::postSwitchedToHelicopterFlyingMode);
  table.add("postSwitchedToAttitudeFlyingMode:", &KesuDrone::postSwitchedToAttitudeFlyingMode);
  table.add("postSwitchedToGPSHoldFlyingMode:", &KesuDrone::postSwitchedToGPSHoldFlyingMode);
  table.add("postSwitchedToCustomFlyingMode:withAttributes:", &KesuDrone::postSwitchedToCustomFlyingMode);
  table.add("postSetMaxAltitude:withAttributes:", &KesuDrone::postSetMaxAltitude);
  table.add("postSetAutoReturnInSeconds:withAttributes:", &KesuDrone::postSetAutoReturnInSeconds);
  table.add("postSetAutoReturnWhenLowMemory:withAttributes:", &KesuDrone::postSetAutoReturnWhenLowMemory);
  table.add("postSetAutoReturnWhenLowBattery:withAttributes:", &KesuDrone::postSetAutoReturnWhenLowBattery);
}

void addWeather(TableBuilder& table) {
  table.startClass("KesuWeatherAndForecast");
  table.add("postWeatherRequestedForType:forDays:withAttributes:",
            &KesuWeatherAndForecast::postWeatherRequestedForType);
  table.add("postWeatherHistoricalRequest:withEndDate:withAttributes:",
            &KesuWeatherAndForecast::postWeatherHistoricalRequest);
  table.add("postWeatherStationsRequestWithClusterData:atGeoPoint:withAttributes:",
            &KesuWeatherAndForecast::postWeatherStationsRequestWithClusterData);
  table.add("postWeatherMapLayersRequested:withAttributes:", &KesuWeatherAndForecast::postWeatherMapLayersRequested);
  table.add("postWeatherRequestForUVIndexAtPoint:withAttributes:",
            &KesuWeatherAndForecast::postWeatherRequestForUVIndexAtPoint);
  table.add("postWeatherResponseForType:withAttributes:", &KesuWeatherAndForecast::postWeatherResponseForType);
  table.add("postWeatherResponseForHistoricalData:", &KesuWeatherAndForecast::postWeatherResponseForHistoricalData);
  table.add("postWeatherStationResponseData:", &KesuWeatherAndForecast::postWeatherStationResponseData);
  table.add("postWeatherMapLayersResponse:", &KesuWeatherAndForecast::postWeatherMapLayersResponse);
  table.add("postWeatherResponseForUVIndex:", &KesuWeatherAndForecast::postWeatherResponseForUVIndex);
  table.add("postForecastRequestForKeywords:withAttributes:", &KesuWeatherAndForecast::postForecastRequestForKeywords);
  table.add("postForecastResponseForKeywords:", &KesuWeatherAndForecast::postForecastResponseForKeywords);
  table.add("postForecastFetch:withAttributes:", &KesuWeatherAndForecast::postForecastFetch);
  table.add("postForecastFetchResponse:", &KesuWeatherAndForecast::postForecastFetchResponse);
}

}  // namespace

std::size_t Operation::argumentCount() const {
  return kinds.size() - (!kinds.empty() && kinds.back() == ArgumentKind::Attributes ? 1 : 0);
}

std::vector<std::string_view> Operation::labels() const {
  std::vector<std::string_view> parts;
  for (std::size_t start = 0, end = 0; (end = selector.find(':', start)) != std::string_view::npos; start = end + 1) {
    parts.push_back(selector.substr(start, end - start));
  }
  return parts;
}

const std::vector<Operation>& allOperations() {
  static const std::vector<Operation> kOperations = [] {
    TableBuilder table;
    for (const auto add :
         {addAdvertising, addAccounts, addMessages, addSocial, addSupport, addShopping, addShoppingLists, addCart,
          addCheckout, addRevenue, addGaming, addHealth, addMedia, addBitcoin, addDroneFlights, addWeather}) {
      add(table);
    }
    return table.take();
  }();
  return kOperations;
}

const Operation* findOperation(std::string_view className, std::string_view name, std::size_t argumentCount) {
  const Operation* best = nullptr;
  for (const Operation& operation : allOperations()) {
    const bool named = operation.selector == name || operation.functionName() == name;
    if (operation.className == className && named && operation.argumentCount() >= argumentCount &&
        (best == nullptr || operation.argumentCount() < best->argumentCount())) {
      best = &operation;
    }
  }
  return best;
}

}  // namespace kesu::catalogue
