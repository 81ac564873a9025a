#pragma once

#include <compare>
#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "foundation/Mutex.h"
#include "tools/kesu-dev/messages/MessageDirectory.h"

namespace kesu::dev {

/// Identifies a message.
struct MessageKey {
  std::string mid;
  std::string cid;

  friend auto operator<=>(const MessageKey&, const MessageKey&) = default;
};

/// How often a message went out.
struct MessageTally {
  std::int64_t asHeader = 0;
  std::int64_t whole = 0;
};

/// A call of the web hook that the service offers.
struct HookCall {
  std::int64_t arrivedMs = 0;  // Milliseconds since 1970.
  std::string body;
};

/// Which installation fetched which message, since the start or the last clear(). Any thread.
class DeliveryLog {
 public:
  enum class Form { Header, Whole };

  /// Returns the messages that an installation has not fetched.
  std::vector<Message> unfetched(const std::string& instance, const std::vector<Message>& messages) const;

  /// Returns the same and counts them as fetched. Two requests at once never get the same message.
  std::vector<Message> fetch(const std::string& instance, const std::vector<Message>& messages, Form form);

  /// Counts one message as fetched.
  void fetchOne(const std::string& instance, const Message& message);

  MessageTally tally(const MessageKey& key) const;

  /// Adds a call; the latest 100 are kept.
  void addHook(HookCall call);
  std::vector<HookCall> hooks() const;

  /// Forgets everything: all messages count as not fetched.
  void clear();

 private:
  std::vector<Message> newFor(const std::string& instance, const std::vector<Message>& messages) const
      KESU_REQUIRES(mutex_);
  void count(const std::string& instance, const Message& message, Form form) KESU_REQUIRES(mutex_);

  mutable Mutex mutex_;
  std::map<std::string, std::set<MessageKey>> fetched_ KESU_GUARDED_BY(mutex_);  // By installation.
  std::map<MessageKey, MessageTally> tallies_ KESU_GUARDED_BY(mutex_);
  std::deque<HookCall> hooks_ KESU_GUARDED_BY(mutex_);
};

}  // namespace kesu::dev
