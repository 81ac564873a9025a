// The adaptor for SDL as a host uses it, on SDL's software renderer and without a window.
#include <gtest/gtest.h>
#include <kesu.h>
#include <kesu/host/sdl.h>
#include <kesu/ui/Button.h>
#include <kesu/ui/Window.h>

#include <array>
#include <optional>
#include <thread>

namespace kesu::host {
namespace {

constexpr int kWidth = 192;  // A tenth of the screen's points.
constexpr int kHeight = 108;
constexpr Color kRed{1.0, 0.0, 0.0, 1.0};
constexpr Color kGreen{0.0, 1.0, 0.0, 1.0};

struct Free {
  void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
  void operator()(SDL_Renderer* renderer) const { SDL_DestroyRenderer(renderer); }
};

class SdlOverlayTest : public ::testing::Test {
 protected:
  // What draws is loaded with the first frame that has anything in it, on a thread.
  static void SetUpTestSuite() {
    Window screen;
    screen.addSubview(std::make_shared<Button>(Rect{0.0, 0.0, 10.0, 10.0}));
    screen.makeKeyAndVisible();
    Overlay overlay;
    while (overlay.layers(0.0).empty()) {
      std::this_thread::yield();
    }
  }
  SdlOverlayTest() { window.makeKeyAndVisible(); }

  /// A dialog with three buttons beside each other, from (200, 200) on, 200 x 100 points each.
  void showDialog() {
    dialog = std::make_shared<View>(Rect{100.0, 100.0, 1000.0, 800.0});
    dialog->setModal(true);
    for (std::size_t i = 0; i < buttons.size(); ++i) {
      buttons[i] = std::make_shared<Button>(Rect{100.0 + 300.0 * static_cast<double>(i), 100.0, 200.0, 100.0});
      buttons[i]->setAction([this, i](Button&) { pressed.push_back(i); });
      dialog->addSubview(buttons[i]);
    }
    window.addSubview(dialog);
  }

  void showColor(const Color& color, double cornerRadius, double alpha = 1.0) {
    dialog = std::make_shared<View>(Rect{200.0, 200.0, 400.0, 400.0});
    dialog->setBackgroundColor(color);
    dialog->setCornerRadius(cornerRadius);
    dialog->setAlpha(alpha);
    window.addSubview(dialog);
  }

  bool key(Uint32 type, SDL_Keycode code, bool isRepeat = false) {
    SDL_Event event{};
    event.key.type = type;
    event.key.keysym.sym = code;
    event.key.repeat = isRepeat ? 1 : 0;
    return overlay.handle(event);
  }

  bool tapKey(SDL_Keycode code) {
    const bool isTaken = key(SDL_KEYDOWN, code);
    return key(SDL_KEYUP, code) && isTaken;
  }

  bool mouse(Uint32 type, int x, int y) {
    SDL_Event event{};
    event.button.type = type;
    event.button.button = SDL_BUTTON_LEFT;
    event.button.x = x;
    event.button.y = y;
    return overlay.handle(event);
  }

  bool click(int x, int y) {
    const bool isTaken = mouse(SDL_MOUSEBUTTONDOWN, x, y);
    return mouse(SDL_MOUSEBUTTONUP, x, y) && isTaken;
  }

  bool send(Uint32 type) {
    SDL_Event event{};
    event.type = type;
    return overlay.handle(event);
  }

  int focused() {
    for (int i = 0; i < static_cast<int>(buttons.size()); ++i) {
      if (window.focusedView() == buttons[static_cast<std::size_t>(i)].get()) {
        return i;
      }
    }
    return -1;
  }

  /// The colour at a point of the screen, drawn over blue.
  Color drawnAt(int x, int y) {
    SDL_SetRenderDrawColor(renderer.get(), 0, 0, 255, 255);
    SDL_RenderClear(renderer.get());
    overlay.draw(renderer.get());
    SDL_RenderFlush(renderer.get());
    const auto* row = static_cast<const std::uint8_t*>(surface->pixels) + std::ptrdiff_t{y / 10} * surface->pitch;
    const auto* pixel = row + std::ptrdiff_t{x / 10} * 4;
    return {pixel[2] / 255.0, pixel[1] / 255.0, pixel[0] / 255.0, pixel[3] / 255.0};
  }

  void expectDrawn(int x, int y, const Color& color) {
    const Color drawn = drawnAt(x, y);
    EXPECT_NEAR(drawn.red, color.red, 0.012) << x << "," << y;
    EXPECT_NEAR(drawn.green, color.green, 0.012) << x << "," << y;
    EXPECT_NEAR(drawn.blue, color.blue, 0.012) << x << "," << y;
  }

  std::unique_ptr<SDL_Surface, Free> surface{
      SDL_CreateRGBSurfaceWithFormat(0, kWidth, kHeight, 32, SDL_PIXELFORMAT_ARGB8888)};
  std::unique_ptr<SDL_Renderer, Free> renderer{SDL_CreateSoftwareRenderer(surface.get())};
  Window window;
  SdlOverlay overlay{renderer.get()};
  std::shared_ptr<View> dialog;
  std::array<std::shared_ptr<Button>, 3> buttons;
  std::vector<std::size_t> pressed;
};

TEST(SdlKeysTest, StandForTheButtonsOfARemote) {
  using enum RemoteButton;
  const std::vector<std::pair<RemoteButton, std::vector<SDL_Keycode>>> table = {
      {Up, {SDLK_UP}},
      {Down, {SDLK_DOWN}},
      {Left, {SDLK_LEFT}},
      {Right, {SDLK_RIGHT}},
      {Select, {SDLK_RETURN, SDLK_KP_ENTER, SDLK_SELECT, SDLK_SPACE}},
      {Menu, {SDLK_ESCAPE, SDLK_AC_BACK, SDLK_MENU, SDLK_BACKSPACE}},
      {PlayPause, {SDLK_AUDIOPLAY}},
  };
  for (const auto& [button, codes] : table) {
    for (const SDL_Keycode code : codes) {
      EXPECT_EQ(remoteButtonOf(code), button) << SDL_GetKeyName(code);
    }
  }
  EXPECT_EQ(remoteButtonOf(SDLK_q), std::nullopt);
  EXPECT_EQ(remoteButtonOf(SDL_CONTROLLER_BUTTON_A), Select);
  EXPECT_EQ(remoteButtonOf(SDL_CONTROLLER_BUTTON_B), Menu);
  EXPECT_EQ(remoteButtonOf(SDL_CONTROLLER_BUTTON_DPAD_LEFT), Left);
  EXPECT_EQ(remoteButtonOf(SDL_CONTROLLER_BUTTON_X), std::nullopt);
}

TEST_F(SdlOverlayTest, LeavesEverythingToTheHostWithoutPopup) {
  EXPECT_FALSE(tapKey(SDLK_RETURN));
  EXPECT_FALSE(tapKey(SDLK_q));
  EXPECT_FALSE(click(30, 30));
}

TEST_F(SdlOverlayTest, ConsumesKeysWithoutMeaningWhileThePopupIsUp) {
  showDialog();
  EXPECT_TRUE(tapKey(SDLK_q));
  for (const Uint32 type : {SDL_TEXTINPUT, SDL_TEXTEDITING, SDL_MOUSEMOTION, SDL_MOUSEWHEEL, SDL_FINGERDOWN,
                            SDL_FINGERMOTION, SDL_FINGERUP, SDL_MULTIGESTURE, SDL_JOYAXISMOTION, SDL_JOYHATMOTION,
                            SDL_JOYBUTTONDOWN, SDL_JOYBUTTONUP, SDL_CONTROLLERAXISMOTION, SDL_CONTROLLERTOUCHPADDOWN}) {
    EXPECT_TRUE(send(type)) << type;
  }
  EXPECT_FALSE(send(SDL_QUIT));
  EXPECT_FALSE(send(SDL_JOYDEVICEADDED));
}

TEST_F(SdlOverlayTest, MovesTheFocusAndPressesButtons) {
  showDialog();
  EXPECT_EQ(focused(), 0);
  EXPECT_TRUE(tapKey(SDLK_RIGHT));
  EXPECT_EQ(focused(), 1);
  EXPECT_TRUE(tapKey(SDLK_RETURN));
  EXPECT_EQ(pressed, (std::vector<std::size_t>{1}));
}

TEST_F(SdlOverlayTest, AcceptsAGameController) {
  showDialog();
  SDL_Event event{};
  event.cbutton.type = SDL_CONTROLLERBUTTONDOWN;
  event.cbutton.button = SDL_CONTROLLER_BUTTON_A;
  EXPECT_TRUE(overlay.handle(event));
  event.cbutton.type = SDL_CONTROLLERBUTTONUP;
  EXPECT_TRUE(overlay.handle(event));
  EXPECT_EQ(pressed.size(), 1U);
}

TEST_F(SdlOverlayTest, RepeatsHeldArrowsButNotSelect) {
  showDialog();
  key(SDL_KEYDOWN, SDLK_RIGHT);
  EXPECT_TRUE(key(SDL_KEYDOWN, SDLK_RIGHT, true));
  EXPECT_EQ(focused(), 2);
  key(SDL_KEYUP, SDLK_RIGHT);
  key(SDL_KEYDOWN, SDLK_RETURN);
  EXPECT_TRUE(key(SDL_KEYDOWN, SDLK_RETURN, true));
  key(SDL_KEYUP, SDLK_RETURN);
  EXPECT_EQ(pressed.size(), 1U);
}

TEST_F(SdlOverlayTest, EndsAPressWhereItBegan) {
  EXPECT_FALSE(key(SDL_KEYDOWN, SDLK_RIGHT));
  showDialog();
  EXPECT_TRUE(key(SDL_KEYDOWN, SDLK_RIGHT, true)) << "Repeats of it are for nobody.";
  EXPECT_EQ(focused(), 0);
  EXPECT_FALSE(key(SDL_KEYUP, SDLK_RIGHT));
  EXPECT_TRUE(key(SDL_KEYDOWN, SDLK_ESCAPE));
  dialog->removeFromSuperview();
  EXPECT_TRUE(key(SDL_KEYUP, SDLK_ESCAPE));
  EXPECT_FALSE(key(SDL_KEYDOWN, SDLK_ESCAPE));
}

TEST_F(SdlOverlayTest, EndsAClickOrATouchWhereItBegan) {
  EXPECT_FALSE(mouse(SDL_MOUSEBUTTONDOWN, 55, 25)) << "the host's: it may be what opens the popup";
  EXPECT_FALSE(send(SDL_FINGERDOWN));
  EXPECT_FALSE(send(SDL_JOYBUTTONDOWN));
  showDialog();
  EXPECT_FALSE(mouse(SDL_MOUSEBUTTONUP, 55, 25));
  EXPECT_FALSE(send(SDL_FINGERUP));
  EXPECT_FALSE(send(SDL_JOYBUTTONUP));
  EXPECT_TRUE(pressed.empty());
  EXPECT_TRUE(mouse(SDL_MOUSEBUTTONDOWN, 55, 25));
  EXPECT_TRUE(send(SDL_JOYBUTTONDOWN));
  dialog->removeFromSuperview();
  EXPECT_TRUE(mouse(SDL_MOUSEBUTTONUP, 55, 25));
  EXPECT_FALSE(click(55, 25));
  EXPECT_FALSE(send(SDL_JOYBUTTONDOWN)) << "nobody told of the end of the first one";
  EXPECT_FALSE(send(SDL_JOYBUTTONUP));
}

TEST_F(SdlOverlayTest, CancelsAPressWhenTheInputIsLost) {
  showDialog();
  key(SDL_KEYDOWN, SDLK_RETURN);
  SDL_Event lost{};
  lost.window.type = SDL_WINDOWEVENT;
  lost.window.event = SDL_WINDOWEVENT_FOCUS_LOST;
  EXPECT_FALSE(overlay.handle(lost)) << "The host wants to know as well.";
  EXPECT_TRUE(key(SDL_KEYUP, SDLK_RETURN));
  EXPECT_TRUE(pressed.empty());
}

TEST_F(SdlOverlayTest, ClicksTheViewAtThePoint) {
  showDialog();
  EXPECT_TRUE(click(55, 25));
  EXPECT_EQ(pressed, (std::vector<std::size_t>{1}));
  SDL_RenderSetLogicalSize(renderer.get(), 1920, 1080);
  EXPECT_TRUE(click(250, 250));
  EXPECT_EQ(pressed, (std::vector<std::size_t>{1, 0}));
}

TEST_F(SdlOverlayTest, DrawsColoursOfAnyOpacity) {
  for (const double cornerRadius : {0.0, 20.0}) {
    showColor(kRed.withAlpha(0.5), cornerRadius);
    expectDrawn(400, 400, {0.5, 0.0, 0.5});
    dialog->setBackgroundColor(kGreen);
    dialog->setAlpha(0.25);
    expectDrawn(400, 400, {0.0, 0.25, 0.75});
    expectDrawn(100, 400, {0.0, 0.0, 1.0});
    dialog->removeFromSuperview();
    expectDrawn(400, 400, {0.0, 0.0, 1.0});
  }
}

TEST_F(SdlOverlayTest, DrawsWhatChangesInALayer) {
  showColor(Color::white(), 20.0);
  const auto patch = std::make_shared<View>(Rect{100.0, 100.0, 100.0, 100.0});
  patch->setBackgroundColor(kRed);
  dialog->addSubview(patch);
  expectDrawn(350, 350, kRed);
  EXPECT_FALSE(overlay.needsFrame());
  patch->setBackgroundColor(kGreen.withAlpha(0.5));
  EXPECT_TRUE(overlay.needsFrame());
  expectDrawn(350, 350, {0.5, 1.0, 0.5});
  expectDrawn(250, 350, Color::white());
  dialog->setFrame({1000.0, 200.0, 400.0, 400.0});
  expectDrawn(1150, 350, {0.5, 1.0, 0.5});
  expectDrawn(350, 350, {0.0, 0.0, 1.0});
}

TEST_F(SdlOverlayTest, DrawsInPixelsAndRestoresTheRenderer) {
  showColor(kRed, 20.0);
  const SDL_Rect clip{3, 4, 5, 6};
  SDL_RenderSetLogicalSize(renderer.get(), 640, 360);
  SDL_RenderSetClipRect(renderer.get(), &clip);
  SDL_SetRenderDrawBlendMode(renderer.get(), SDL_BLENDMODE_ADD);
  expectDrawn(400, 400, kRed);
  int width = 0;
  int height = 0;
  float scale = 0.0F;
  SDL_Rect kept{};
  SDL_BlendMode blendMode = SDL_BLENDMODE_NONE;
  SDL_RenderGetLogicalSize(renderer.get(), &width, &height);
  SDL_RenderGetScale(renderer.get(), &scale, nullptr);
  SDL_RenderGetClipRect(renderer.get(), &kept);
  SDL_GetRenderDrawBlendMode(renderer.get(), &blendMode);
  EXPECT_EQ(std::pair(width, height), std::pair(640, 360));
  EXPECT_NEAR(scale, 0.3, 0.001);
  EXPECT_TRUE(SDL_RectEquals(&kept, &clip));
  EXPECT_EQ(blendMode, SDL_BLENDMODE_ADD);
  std::array<Uint8, 4> color{};
  SDL_GetRenderDrawColor(renderer.get(), &color[0], &color[1], &color[2], &color[3]);
  EXPECT_EQ(color, (std::array<Uint8, 4>{0, 0, 255, 255}));
}

}  // namespace
}  // namespace kesu::host
