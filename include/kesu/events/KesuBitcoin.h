#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// A bitcoin wallet.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuBitcoin {
 public:
  KesuBitcoin() = delete;

  /// Posts event "BitcoinSent": bitcoins were sent. No keys of its own. [KesuBitcoin postSentBitcoins:]
  static void postSentBitcoins(const Attributes& attributes = {});

  /// Posts event "BitcoinRequested": bitcoins were requested. No keys of its own. [KesuBitcoin postRequestedBitcoins:]
  static void postRequestedBitcoins(const Attributes& attributes = {});

  /// Posts event "BitcoinReceived": bitcoins were received. No keys of its own. [KesuBitcoin postReceivedBitcoins:]
  static void postReceivedBitcoins(const Attributes& attributes = {});

  /// Posts event "BitcoinViewTransaction": transactions were viewed. No keys of its own.
  /// [KesuBitcoin postViewedTransactions:]
  static void postViewedTransactions(const Attributes& attributes = {});

  /// Posts event "BitcoinImportPrivateKey": a private key was imported. No keys of its own.
  /// [KesuBitcoin postImportedPrivateKey:]
  static void postImportedPrivateKey(const Attributes& attributes = {});

  /// Posts event "BitcoinScannedPrivateKey": a private key was scanned. No keys of its own.
  /// [KesuBitcoin postScannedPrivateKey:]
  static void postScannedPrivateKey(const Attributes& attributes = {});
};

}  // namespace kesu
