#pragma once

#include <kesu/Export.h>
#include <kesu/graphics/Color.h>
#include <kesu/graphics/Geometry.h>
#include <kesu/ui/Responder.h>
#include <kesu/ui/ViewGeometry.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace kesu {

class Canvas;
class View;
class Window;

using ViewPtr = std::shared_ptr<View>;

/// A rectangle on the screen with subviews. Main thread, every operation.
///
/// Make views with std::make_shared: a view owns its subviews and refers to its superview. Coordinates are points of
/// the superview. Where the library animates a view, these accessors return the final values. NaN and infinite numbers
/// are replaced by 0; sizes and widths are clamped to 0 and above, every number to a billion.
class KESU_API View : public Responder, public std::enable_shared_from_this<View> {
 public:
  View();
  explicit View(const Rect& frame);
  ~View() override;

  // Geometry. The frame is the view without its transform.
  Rect frame() const;
  void setFrame(const Rect& frame);
  Point center() const { return model_.center; }
  void setCenter(Point center);
  Rect bounds() const { return {0.0, 0.0, model_.size.width, model_.size.height}; }
  const Transform& transform() const { return model_.transform; }
  void setTransform(const Transform& transform);

  // Looks. A clear background draws nothing.
  double alpha() const { return model_.alpha; }
  void setAlpha(double alpha);
  bool isHidden() const { return look_.isHidden; }
  void setHidden(bool hidden);
  bool clipsToBounds() const { return look_.clipsToBounds; }
  void setClipsToBounds(bool clips);
  const Color& backgroundColor() const { return look_.background; }
  void setBackgroundColor(const Color& color);
  double cornerRadius() const { return look_.cornerRadius; }
  void setCornerRadius(double radius);
  double borderWidth() const { return look_.borderWidth; }
  const Color& borderColor() const { return look_.border; }
  void setBorder(double width, const Color& color);
  const Shadow& shadow() const { return model_.shadow; }
  void setShadow(const Shadow& shadow);

  // The tree.
  View* superview() const { return superview_; }
  const std::vector<ViewPtr>& subviews() const { return subviews_; }
  /// Adds a view in front of the others and removes it from its former superview first. Ignores null, a window, and a
  /// view that contains this one.
  void addSubview(ViewPtr view);
  void bringSubviewToFront(View& view);
  /// May destroy this view.
  void removeFromSuperview();
  void removeAllSubviews();
  /// Whether `other` is this view or lies inside it.
  bool contains(const View& other) const;
  /// The window that contains the view, or null.
  Window* window();

  /// A modal view consumes every press while it is in a window.
  bool isModal() const { return isModal_; }
  void setModal(bool modal) { isModal_ = modal; }

  /// A number for the owner of the view.
  std::int64_t tag() const { return tag_; }
  void setTag(std::int64_t tag) { tag_ = tag; }

 protected:
  /// Called after the size was set to another one.
  virtual void sizeDidChange() {}

 private:
  friend class ViewDrawing;
  friend class Window;

  struct Look {
    Color background = Color::clear();
    Color border = Color::black();
    double cornerRadius = 0.0;
    double borderWidth = 0.0;
    bool isHidden = false;
    bool clipsToBounds = false;
  };

  /// What the renderer and the animator keep in a view: see ViewDrawing.
  struct Drawing {
    ViewGeometry presented;
    Rect damage;
    bool isComposited = false;
    bool isAnimated = false;
  };

  /// Draws what the view shows between its background and its subviews. For the library's own views: hosts compose
  /// theirs of these.
  virtual void draw(Canvas& /*canvas*/) const {}
  void setGeometry(const ViewGeometry& next);

  ViewGeometry model_;
  Look look_;
  Drawing drawing_;
  bool isModal_ = false;
  bool isWindow_ = false;
  std::int64_t tag_ = 0;
  View* superview_ = nullptr;
  std::vector<ViewPtr> subviews_;
};

}  // namespace kesu
