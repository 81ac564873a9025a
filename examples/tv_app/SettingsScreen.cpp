#include "SettingsScreen.h"

#include <kesu.h>

#include <algorithm>
#include <array>
#include <utility>

namespace tv {
namespace {

constexpr std::array<const char*, 3> kUsers = {"Nobody", "Ann", "Ben"};
constexpr std::array<std::pair<const char*, int>, 3> kLogLevels = {{{"Errors", 0}, {"Warnings", 2}, {"Everything", 3}}};
constexpr std::array<std::pair<const char*, kesu::KesuInAppMessageType>, 3> kMessageTypes = {
    {{"New", kesu::KesuInAppMessageType::Unread},
     {"Read before", kesu::KesuInAppMessageType::Read},
     {"All", kesu::KesuInAppMessageType::All}}};

constexpr Scene kBackdrop{0x050817, 0x29385C, 0xE6E6FF, 0x05050D, Land::Hills, Motif::None, {0.14F, 0.52F, 0.05F},
                          true,     7};

std::size_t stepped(std::size_t place, int step, std::size_t count) {
  return (place + count + static_cast<std::size_t>(step + static_cast<int>(count))) % count;
}

std::string joined(const kesu::Object& tags) {
  std::string text;
  const kesu::Array* array = tags ? tags->array() : nullptr;
  for (std::size_t i = 0; array != nullptr && i < array->size(); ++i) {
    const std::string* tag = (*array)[i].text();
    text += (text.empty() ? "" : ", ") + (tag != nullptr ? *tag : std::string());
  }
  return text.empty() ? "None" : text;
}

}  // namespace

SettingsScreen::SettingsScreen(Navigator& navigator, ShowMessages showMessages)
    : navigator_(navigator),
      showMessages_(std::move(showMessages)),
      tags_(std::make_shared<std::string>("Not asked")) {}

std::string SettingsScreen::focus() const {
  const Row row = static_cast<Row>(focused_);
  return title(row) + ": " + value(row);
}

std::string SettingsScreen::title(Row row) const {
  static const std::array<std::string, kRowCount> titles = {"Signed in as", "Library log", "Messages", "Your tags"};
  return titles.at(row);
}

std::string SettingsScreen::hint(Row row) const {
  static const std::array<std::string, kRowCount> hints = {
      "Sent along with every record, as the user's identifier",
      "How much the library writes to standard error",
      "Press to show them",
      "Press to ask the personalization service",
  };
  return hints.at(row);
}

std::string SettingsScreen::value(Row row) const {
  switch (row) {
    case kUser:
      return kUsers.at(user_);
    case kLogLevel:
      return kLogLevels.at(logLevel_).first;
    case kMessages:
      return kMessageTypes.at(messages_).first;
    case kTags:
    case kRowCount:
      break;
  }
  return *tags_;
}

void SettingsScreen::press(kesu::RemoteButton button) {
  switch (button) {
    case kesu::RemoteButton::Up:
      focused_ = std::max(focused_ - 1, 0);
      break;
    case kesu::RemoteButton::Down:
      focused_ = std::min(focused_ + 1, kRowCount - 1);
      break;
    case kesu::RemoteButton::Left:
      choose(-1);
      break;
    case kesu::RemoteButton::Right:
      choose(1);
      break;
    case kesu::RemoteButton::Select:
      activate();
      break;
    case kesu::RemoteButton::Menu:
      navigator_.goBack();
      break;
    case kesu::RemoteButton::PlayPause:
      break;
  }
}

void SettingsScreen::choose(int step) {
  switch (static_cast<Row>(focused_)) {
    case kUser:
      user_ = stepped(user_, step, kUsers.size());
      if (user_ == 0) {
        kesu::Kesu::resetUserIdentifer();
      } else {
        kesu::Kesu::setUserIdentifer(kUsers.at(user_));
      }
      break;
    case kLogLevel:
      logLevel_ = stepped(logLevel_, step, kLogLevels.size());
      kesu::Kesu::logThrottling(kLogLevels.at(logLevel_).second);
      break;
    case kMessages:
      messages_ = stepped(messages_, step, kMessageTypes.size());
      break;
    case kTags:
    case kRowCount:
      break;
  }
}

void SettingsScreen::activate() {
  switch (static_cast<Row>(focused_)) {
    case kUser:
    case kLogLevel:
      choose(1);
      break;
    case kMessages:
      showMessages_(kMessageTypes.at(messages_).second);
      break;
    case kTags:
    case kRowCount:
      fetchTags();
      break;
  }
}

void SettingsScreen::fetchTags() {
  *tags_ = "Asking …";
  kesu::KesuPersonalizationIntelligence::getTags([weak = std::weak_ptr(tags_)](const kesu::Object& tags) {
    if (const auto shown = weak.lock()) {
      *shown = joined(tags);
    }
  });
}

bool SettingsScreen::advance(float) {
  return false;
}

void SettingsScreen::draw(Painter& painter) {
  painter.picture(
      "settings", {0.0F, 0.0F, kScreenWidth, kScreenHeight},
      [](int width, int height) { return paintScene(kBackdrop, width, height); }, 0.5F, 0.32F);
  painter.text("Settings", 96.0F, 96.0F, {Weight::Bold, 84.0F, palette::kBright});
  painter.paragraph("What a host may tell the library. Left and right choose, Return presses, Escape goes back.", 96.0F,
                    226.0F, 430.0F, 5, {Weight::Light, 28.0F, palette::kDim});
  for (int row = 0; row < kRowCount; ++row) {
    drawRow(painter, static_cast<Row>(row), 112.0F + static_cast<float>(row) * 168.0F);
  }
}

void SettingsScreen::drawRow(Painter& painter, Row row, float y) {
  const bool isFocused = row == focused_;
  const SDL_FRect rect{660.0F, y, 1164.0F, 144.0F};
  if (isFocused) {
    painter.shadow(rect, 24.0F, 32.0F, 0.6F);
  }
  painter.roundRect(rect, 24.0F, isFocused ? palette::kBright : palette::kGlass, isFocused ? 1.02F : 1.0F);
  const SDL_Color ink = isFocused ? palette::kBack : palette::kBright;
  const SDL_Color dim = isFocused ? SDL_Color{90, 94, 108, 255} : palette::kFaint;
  painter.text(title(row), rect.x + 44.0F, y + 28.0F, {Weight::Medium, 34.0F, ink});
  painter.text(hint(row), rect.x + 44.0F, y + 80.0F, {Weight::Regular, 25.0F, dim});
  const TextStyle style{Weight::Regular, 32.0F, ink};
  const bool hasChoices = row != kTags;
  const float right = rect.x + rect.w - 44.0F - (isFocused && hasChoices ? 44.0F : 0.0F);
  painter.text(value(row), right - painter.textWidth(value(row), style), y + 52.0F, style);
  if (isFocused && hasChoices) {
    const float left = right - painter.textWidth(value(row), style);
    painter.icon(Icon::Back, {left - 44.0F, y + 58.0F, 28.0F, 28.0F}, dim);
    painter.icon(Icon::Forward, {right + 16.0F, y + 58.0F, 28.0F, 28.0F}, dim);
  }
}

}  // namespace tv
