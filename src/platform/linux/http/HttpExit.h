#pragma once

namespace kesu {

class HttpNetwork;

/// Stops the network threads that still run when the process exits.
///
/// OpenSSL clears itself away in an exit handler; a network thread that is inside it then crashes the process (about
/// one exit in a hundred). Exit handlers run in the reverse order of their registration, so ours is registered right
/// after OpenSSL's and before any network thread starts. A forked child is not concerned: the threads are its parent's.
class HttpExit {
 public:
  /// Registers OpenSSL's exit handler and ours, once. Whoever wants to run before the network stops at exit calls this
  /// and registers a handler of its own afterwards; otherwise the first request does it. Any thread.
  static void prepare();

  /// Networks to be stopped at exit. remove() waits while an exit is stopping them. Any thread.
  static void add(HttpNetwork& network);
  static void remove(HttpNetwork& network);
};

}  // namespace kesu
