#pragma once

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

  bool isSDKInitialized() override { return initialized; }
  void updateEvent(const std::string& name) override { flow.push_back(name); }
  void updateScreenFlowForScenes(const std::string& name, double seconds) override {
    scenes.emplace_back(name, seconds);
  }
  void postAppEvent(Dictionary record) override { posted.emplace_back('e', std::move(record)); }
  void postAppEventToTableM(Dictionary record) override { posted.emplace_back('m', std::move(record)); }
  void postAppEventToTableU(Dictionary record) override { posted.emplace_back('u', std::move(record)); }
  void postActivationTrait(Dictionary record) override { posted.emplace_back('t', std::move(record)); }

  bool initialized = true;                             ///< Whether the library has its key.
  std::vector<std::string> flow;                       ///< Names that were appended to the event flow.
  std::vector<std::pair<std::string, double>> scenes;  ///< Scenes and the seconds spent on them.
  std::vector<std::pair<char, Dictionary>> posted;     ///< The destination letter and the record.

 private:
  static inline RecordingPoster* current_ = nullptr;
  EventPoster::Provider before_ = nullptr;
};

}  // namespace kesu::testing
