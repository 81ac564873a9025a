#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// A bitcoin wallet.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuBitcoin {
 public:
  KesuBitcoin() = delete;

  /// [KesuBitcoin postSentBitcoins:] Event "BitcoinSent", no keys of its own.
  static void postSentBitcoins(const Attributes& attributes = {});

  /// [KesuBitcoin postRequestedBitcoins:] Event "BitcoinRequested", no keys of its own.
  static void postRequestedBitcoins(const Attributes& attributes = {});

  /// [KesuBitcoin postReceivedBitcoins:] Event "BitcoinReceived", no keys of its own.
  static void postReceivedBitcoins(const Attributes& attributes = {});

  /// [KesuBitcoin postViewedTransactions:] Event "BitcoinViewTransaction", no keys of its own.
  static void postViewedTransactions(const Attributes& attributes = {});

  /// [KesuBitcoin postImportedPrivateKey:] Event "BitcoinImportPrivateKey", no keys of its own.
  static void postImportedPrivateKey(const Attributes& attributes = {});

  /// [KesuBitcoin postScannedPrivateKey:] Event "BitcoinScannedPrivateKey", no keys of its own.
  static void postScannedPrivateKey(const Attributes& attributes = {});
};

}  // namespace kesu
