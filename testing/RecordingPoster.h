#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "events/EventPoster.h"

namespace kesu::testing {

/// Replaces the manager during its life: the event classes post to it, and it keeps what they post. One at a time, on
/// the test's thread.
class RecordingPoster final : public EventPoster {
 public:
  RecordingPoster() {
    current_ = this;
    before_ = EventPoster::setProvider([]() -> EventPoster& { return *current_; });
  }
  ~RecordingPoster() override {
    EventPoster::setProvider(before_);
    current_ = nullptr;
  }

  RecordingPoster(const RecordingPoster&) = delete;
  RecordingPoster& operator=(const RecordingPoster&) = delete;

  /// Removes and returns the one record since the last call.
  Dictionary takeOnly() {
    EXPECT_EQ(posted.size(), 1U);
    posted.resize(1);
    return std::exchange(posted, {}).front().second;
  }

  bool isSDKInitialized() override { return initialized; }
  void updateScreenFlowForScenes(const std::string& name, double seconds) override {
    scenes.emplace_back(name, seconds);
  }
  void postAppEvent(const Attributes& attributes, const Object& name) override { keep('e', attributes, name); }
  void postAppEventToTableM(const Attributes& attributes, const Object& name) override { keep('m', attributes, name); }
  void postAppEventToTableU(const Attributes& attributes) override { posted.emplace_back('u', attributes); }
  void postActivationTrait(const Attributes& attributes) override { posted.emplace_back('t', attributes); }

  bool initialized = true;                             ///< Whether the library has its key.
  std::vector<std::string> flow;                       ///< Names that belong to the event flow.
  std::vector<std::pair<std::string, double>> scenes;  ///< Scenes and the seconds spent on them.
  std::vector<std::pair<char, Dictionary>> posted;     ///< The destination letter and the record.

 private:
  void keep(char table, Dictionary record, const Object& name) {
    record.remove("~e");
    if (name) {
      record.set("~e", *name);
    }
    if (name && name->text() != nullptr && !name->text()->empty()) {
      flow.push_back(*name->text());
    }
    posted.emplace_back(table, std::move(record));
  }

  static inline RecordingPoster* current_ = nullptr;
  EventPoster::Provider before_ = nullptr;
};

}  // namespace kesu::testing
