#pragma once

#include <kesu/graphics/Image.h>

#include <memory>
#include <utility>

#include "message_ui/KesuCustomBtn.h"

namespace kesu {

/// A button of a message. It shortens its title so that all of it is visible while the button is focused: the card cuts
/// off what is wider. A ring shows the focus as well, since beside the card's edges, and for an only button, the size
/// shows little. Main thread.
class ActionButton : public KesuCustomBtn {
 public:
  using KesuCustomBtn::KesuCustomBtn;

  /// Sets what Down focuses, wherever that lies, since nothing else is below; null or destroyed leaves it to the
  /// window.
  void setWayDown(std::weak_ptr<View> arrow) { wayDown_ = std::move(arrow); }

  /// Sets the picture that is stretched over the button, and the colour of the ring, which must contrast with it.
  void setFace(ImagePtr face, const Color& ring);

  bool handleArrow(RemoteButton arrow) override;
  void draw(Canvas& canvas) const override;

 private:
  ImagePtr face_;
  Color ring_;
  std::weak_ptr<View> wayDown_;
};

}  // namespace kesu
