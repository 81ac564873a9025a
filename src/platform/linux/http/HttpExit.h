#pragma once

namespace kesu {

class HttpNetwork;

/// Stops the network threads that still run when the process exits.
///
/// OpenSSL frees its state in an exit handler; a network thread that is inside it then crashes the process (about one
/// exit in a hundred). Exit handlers run in the reverse order of their registration, so ours is registered right after
/// OpenSSL's and before any network thread starts. In a forked child it does nothing: the threads are its parent's.
class HttpExit {
 public:
  /// Registers OpenSSL's exit handler and ours, once; the first request does so at the latest. A handler that is
  /// registered afterwards runs before the network stops. Any thread.
  static void prepare();

  /// Adds and removes a network that is stopped at exit. remove() waits while an exit is stopping them. Any thread.
  static void add(HttpNetwork& network);
  static void remove(HttpNetwork& network);
};

}  // namespace kesu
