#pragma once

#include <kesu/graphics/Image.h>

#include <memory>
#include <utility>

#include "message_ui/KesuCustomBtn.h"

namespace kesu {

/// A button of a message. It keeps its title short enough to be read while it is focused: the card cuts off what is
/// wider. A ring tells the focus as well, since beside the card's edges, and for an only button, its size tells little.
/// Main thread.
class ActionButton : public KesuCustomBtn {
 public:
  using KesuCustomBtn::KesuCustomBtn;

  /// Where Down leads, wherever that lies, since there is nothing else below; null or gone leaves it to the window.
  void setWayDown(std::weak_ptr<View> arrow) { wayDown_ = std::move(arrow); }

  /// The picture that is stretched over the button, and the colour of the ring, which must be told from it.
  void setFace(ImagePtr face, const Color& ring);

  bool handleArrow(RemoteButton arrow) override;
  void didUpdateFocus() override;
  void pressesBegan(RemoteButton pressed) override;
  void pressesEnded(RemoteButton released) override;
  void draw(Canvas& canvas) const override;

 private:
  ImagePtr face_;
  Color ring_;
  std::weak_ptr<View> wayDown_;
};

}  // namespace kesu
