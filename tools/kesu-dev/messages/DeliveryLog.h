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

/// What tells one message from another.
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

/// A call of the service's own web hook.
struct HookCall {
  std::int64_t arrivedMs = 0;  // Milliseconds since 1970.
  std::string body;
};

/// What went out to whom, since the start or the last clear(). Any thread.
class DeliveryLog {
 public:
  enum class Form { Header, Whole };

  /// The messages that an installation has not fetched.
  std::vector<Message> unfetched(const std::string& instance, const std::vector<Message>& messages) const;

  /// The same, which count as fetched from here on. Two requests at once never get the same message.
  std::vector<Message> fetch(const std::string& instance, const std::vector<Message>& messages, Form form);

  /// An installation asked for this message itself.
  void fetchOne(const std::string& instance, const Message& message);

  MessageTally tally(const MessageKey& key) const;

  /// Keeps the latest 100 calls.
  void addHook(HookCall call);
  std::vector<HookCall> hooks() const;

  /// Forgets everything: all messages are new to all.
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
