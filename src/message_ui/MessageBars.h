#pragma once

#include <kesu/graphics/Image.h>
#include <kesu/ui/Button.h>
#include <kesu/ui/Label.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "message_ui/KesuCustomBtn.h"
#include "message_ui/MessageLayout.h"
#include "message_ui/MessagePaging.h"
#include "messaging/InAppTemplateData.h"

namespace kesu {

/// Returns a picture of one pixel in this colour, to be stretched. Any thread. [imageWithColor:]
ImagePtr imageWithColor(const Color& color);

class ActionButton;

/// What the bars of a message show.
struct BarContent {
  const InAppTemplateData* data = nullptr;  ///< Its buttons are shown; null for none.
  std::int64_t index = 0;                   ///< Of the message, from 0.
  std::size_t count = 0;                    ///< Of messages; without any there is no paging bar.
  Color canvas = Color::white();            ///< What the action buttons lie on.
  std::optional<Color> text;                ///< Of arrows and counter; white when unset.
  std::optional<Color> bar;                 ///< Behind them; by default dark behind light text, light behind dark.
  bool isEmpty = false;                     ///< Nothing is shown: no counter, and no paging bar without arrows.
};

/// The bars under a message: the row of its action buttons, and the paging bar. Main thread.
class MessageBars {
 public:
  using Pressed = Button::Action;

  /// Sets what is called for pressed action buttons (tag: the button's index) and arrows.
  MessageBars(Pressed actionPressed, Pressed arrowPressed);
  /// The views may outlive the bars; their buttons then do nothing.
  ~MessageBars();

  MessageBars(const MessageBars&) = delete;
  MessageBars& operator=(const MessageBars&) = delete;

  /// Shows the bars of a message. Arrows that remain are the same views as before, so that the focus stays on them.
  void show(const BarContent& content);

  const ViewPtr& bottomBarView() const { return bottomBar_; }    ///< All of it.
  const ViewPtr& buttonBarView() const { return buttonBar_; }    ///< The row of buttons: 80 high, or 0 without.
  const ViewPtr& controlBarView() const { return controlBar_; }  ///< Holds the buttons; null without.

  /// Returns what is focused first: the first action button, else the next arrow, else the previous one, else null.
  View* firstFocus() const;
  /// Returns what is focused after paging with an arrow: that arrow, else the other one, else the first button, else
  /// null.
  View* focusAfter(std::int64_t arrowTag) const;

 private:
  void dropButtons();
  static void dressFace(ActionButton& button, const BarContent& content, std::size_t index);
  void showButtons(const BarContent& content);
  void showPaging(const BarContent& content);
  void showArrow(std::shared_ptr<KesuCustomBtn>& arrow, bool isShown, std::int64_t tag, const Color& color,
                 const Color& bar);

  Pressed actionPressed_;
  Pressed arrowPressed_;
  ViewPtr bottomBar_ = std::make_shared<View>();
  ViewPtr pagingBackground_ = std::make_shared<View>();
  ViewPtr buttonBackground_ = std::make_shared<View>();
  ViewPtr buttonBar_ = std::make_shared<View>();
  ViewPtr pagingBar_ = std::make_shared<View>();
  ViewPtr controlBar_;
  std::shared_ptr<Label> counter_ = std::make_shared<Label>();
  std::shared_ptr<KesuCustomBtn> previous_;
  std::shared_ptr<KesuCustomBtn> next_;
  std::vector<std::shared_ptr<ActionButton>> buttons_;
};

}  // namespace kesu
