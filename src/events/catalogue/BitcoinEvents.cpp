#include <kesu/events/KesuBitcoin.h>

#include "events/catalogue/EventBuilder.h"

namespace kesu {

void KesuBitcoin::postSentBitcoins(const Attributes& attributes) {
  EventBuilder("BitcoinSent", attributes).post();
}

void KesuBitcoin::postRequestedBitcoins(const Attributes& attributes) {
  EventBuilder("BitcoinRequested", attributes).post();
}

void KesuBitcoin::postReceivedBitcoins(const Attributes& attributes) {
  EventBuilder("BitcoinReceived", attributes).post();
}

void KesuBitcoin::postViewedTransactions(const Attributes& attributes) {
  EventBuilder("BitcoinViewTransaction", attributes).post();
}

void KesuBitcoin::postImportedPrivateKey(const Attributes& attributes) {
  EventBuilder("BitcoinImportPrivateKey", attributes).post();
}

void KesuBitcoin::postScannedPrivateKey(const Attributes& attributes) {
  EventBuilder("BitcoinScannedPrivateKey", attributes).post();
}

}  // namespace kesu
