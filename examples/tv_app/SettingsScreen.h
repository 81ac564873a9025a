#pragma once

#include <kesu/messaging/KesuInAppMessageType.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Screen.h"

namespace tv {

/// Choices that show what a host may set: the user, the log threshold, which messages, the personalization tags.
class SettingsScreen : public Screen {
 public:
  using ShowMessages = std::function<void(kesu::KesuInAppMessageType)>;

  SettingsScreen(Navigator& navigator, ShowMessages showMessages);

  std::string name() const override { return "Settings"; }
  std::string focus() const override;
  void press(kesu::RemoteButton button) override;
  bool advance(float seconds) override;
  void draw(Painter& painter) override;

 private:
  enum Row { kUser, kLogLevel, kMessages, kTags, kRowCount };

  std::string title(Row row) const;
  std::string hint(Row row) const;
  std::string value(Row row) const;
  void choose(int step);
  void activate();
  void fetchTags();
  void drawRow(Painter& painter, Row row, float y);

  Navigator& navigator_;
  ShowMessages showMessages_;
  int focused_ = kUser;
  std::size_t user_ = 0;
  std::size_t logLevel_ = 0;
  std::size_t messages_ = 0;
  std::shared_ptr<std::string> tags_;  // Pending replies refer to it weakly.
};

}  // namespace tv
