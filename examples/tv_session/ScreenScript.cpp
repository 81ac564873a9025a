#include "ScreenScript.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <stdexcept>

#include "MessageCommands.h"

namespace tv {
namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr double kDefaultFrameSeconds = 0.5;
constexpr Uint32 kFrameMilliseconds = 16;

void pushKey(Uint32 type, SDL_Keycode key) {
  SDL_Event event{};
  event.key.type = type;
  event.key.state = type == SDL_KEYDOWN ? SDL_PRESSED : SDL_RELEASED;
  event.key.keysym.sym = key;
  SDL_PushEvent(&event);
}

}  // namespace

void ScreenScript::addTo(ScriptHost& host) {
  host.add("press", [this](const ScriptLine& line) { press(line.word(0)); });
  host.add("show-messages", [this](const ScriptLine& line) { app().mailbox().show(messageType(line)); });
  host.add("frame", [this](const ScriptLine& line) { drawFor(line.number(0).value_or(kDefaultFrameSeconds)); });
  host.add("screenshot", [this](const ScriptLine& line) { saveScreenshot(line.word(0)); });
  host.add("focus", [this](const ScriptLine&) {
    std::printf("tv_session: focus is on %s\n", app().focus().c_str());
    std::fflush(stdout);
  });
}

TvApp& ScreenScript::app() {
  if (app_ == nullptr) {
    screen_ = std::make_unique<MemoryScreen>(kWidth, kHeight);
    app_ = std::make_unique<TvApp>(screen_->renderer());
    app_->step();
  }
  return *app_;
}

// The same way as from a keyboard.
void ScreenScript::press(const std::string& button) {
  static const std::map<std::string, SDL_Keycode> keys = {
      {"up", SDLK_UP},         {"down", SDLK_DOWN},   {"left", SDLK_LEFT},     {"right", SDLK_RIGHT},
      {"select", SDLK_RETURN}, {"menu", SDLK_ESCAPE}, {"play", SDLK_AUDIOPLAY}};
  const auto key = keys.find(button);
  if (key == keys.end()) {
    throw std::runtime_error("the remote has no button \"" + button + "\"");
  }
  TvApp& pressed = app();
  pushKey(SDL_KEYDOWN, key->second);
  pushKey(SDL_KEYUP, key->second);
  pressed.step();
}

void ScreenScript::drawFor(double seconds) {
  TvApp& drawn = app();
  const Uint64 end = SDL_GetTicks64() + static_cast<Uint64>(std::max(seconds, 0.0) * 1000.0);
  do {
    drawn.step();
    SDL_Delay(kFrameMilliseconds);
  } while (SDL_GetTicks64() < end);
}

void ScreenScript::saveScreenshot(const std::string& path) {
  app().step();
  if (!screen_->saveScreenshot(path)) {
    throw std::runtime_error("cannot write \"" + path + "\"");
  }
}

}  // namespace tv
