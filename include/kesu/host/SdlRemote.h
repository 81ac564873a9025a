#pragma once

// Maps keys and buttons of a game controller to the buttons of a remote.

#include <SDL.h>
#include <kesu/ui/Remote.h>

#include <optional>

namespace kesu::host {

/// Returns the button of the remote for a key, or nothing.
inline std::optional<RemoteButton> remoteButtonOf(SDL_Keycode key) {
  switch (key) {
    case SDLK_UP:
      return RemoteButton::Up;
    case SDLK_DOWN:
      return RemoteButton::Down;
    case SDLK_LEFT:
      return RemoteButton::Left;
    case SDLK_RIGHT:
      return RemoteButton::Right;
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
    case SDLK_SELECT:
    case SDLK_SPACE:
      return RemoteButton::Select;
    case SDLK_ESCAPE:
    case SDLK_AC_BACK:
    case SDLK_MENU:
    case SDLK_BACKSPACE:
      return RemoteButton::Menu;
    case SDLK_AUDIOPLAY:
      return RemoteButton::PlayPause;
    default:
      return std::nullopt;
  }
}

/// Returns the button of the remote for a button of a game controller, or nothing.
inline std::optional<RemoteButton> remoteButtonOf(SDL_GameControllerButton button) {
  switch (button) {
    case SDL_CONTROLLER_BUTTON_DPAD_UP:
      return RemoteButton::Up;
    case SDL_CONTROLLER_BUTTON_DPAD_DOWN:
      return RemoteButton::Down;
    case SDL_CONTROLLER_BUTTON_DPAD_LEFT:
      return RemoteButton::Left;
    case SDL_CONTROLLER_BUTTON_DPAD_RIGHT:
      return RemoteButton::Right;
    case SDL_CONTROLLER_BUTTON_A:
      return RemoteButton::Select;
    case SDL_CONTROLLER_BUTTON_B:
      return RemoteButton::Menu;
    case SDL_CONTROLLER_BUTTON_START:
      return RemoteButton::PlayPause;
    default:
      return std::nullopt;
  }
}

}  // namespace kesu::host
