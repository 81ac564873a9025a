#pragma once

#include <kesu/Export.h>
#include <kesu/graphics/Color.h>
#include <kesu/graphics/Geometry.h>
#include <kesu/ui/Remote.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kesu {

class Canvas;
class GestureRecognizer;
class View;
class Window;

using ViewPtr = std::shared_ptr<View>;

/// The shadow that a view throws; none while its opacity is 0 or the view clips to its bounds.
struct Shadow {
  Color color = Color::black();
  double opacity = 0.0;
  double radius = 3.0;  ///< Blur in points.
  Size offset{0.0, 0.0};

  /// How far the blur goes beyond the moved rectangle, in points: nothing is drawn farther out.
  double reach() const { return 3.0 * radius + 1.0; }

  friend bool operator==(const Shadow&, const Shadow&) = default;
};

/// How a view is drawn at a moment: what it was told, or something on the way there while an animation runs.
struct ViewGeometry {
  Point center;
  Size size;
  Transform transform;
  double alpha = 1.0;
  Shadow shadow;

  friend bool operator==(const ViewGeometry&, const ViewGeometry&) = default;
};

/// What a screen reader is told about a view.
struct AccessibilityInfo {
  enum class Role { None, Dialog, Heading, Text, Image, Button };
  Role role = Role::None;  ///< None: the view itself is passed over, its subviews are not.
  std::string label;
  std::string value;
};

/// A rectangle on the screen with subviews, the way a television draws it. Main thread, every operation.
///
/// Make views with std::make_shared: a view owns its subviews and knows its superview. Coordinates are points of the
/// superview. What is set inside animate() (kesu/ui/Animator.h) is reached gradually on the screen; the accessors below
/// always tell where it is going, presented() where it is now. NaN and infinite numbers are taken as 0, sizes and
/// widths below 0 as well; no number is taken as larger than a billion.
class KESU_API View : public std::enable_shared_from_this<View> {
 public:
  View() = default;
  explicit View(const Rect& frame);
  virtual ~View();

  View(const View&) = delete;
  View& operator=(const View&) = delete;

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
  bool isHidden() const { return isHidden_; }
  void setHidden(bool hidden);
  bool clipsToBounds() const { return clipsToBounds_; }
  void setClipsToBounds(bool clips);
  const Color& backgroundColor() const { return backgroundColor_; }
  void setBackgroundColor(const Color& color);
  double cornerRadius() const { return cornerRadius_; }
  void setCornerRadius(double radius);
  double borderWidth() const { return borderWidth_; }
  const Color& borderColor() const { return borderColor_; }
  void setBorder(double width, const Color& color);
  const Shadow& shadow() const { return model_.shadow; }
  void setShadow(const Shadow& shadow);

  /// The view as it is drawn at the moment of the last Animator::tick().
  const ViewGeometry& presented() const { return presented_; }

  // The tree. A view that is added elsewhere leaves its former superview first. Null, a window, and a view that would
  // then lie inside itself are not added.
  View* superview() const { return superview_; }
  const std::vector<ViewPtr>& subviews() const { return subviews_; }
  /// The subviews from the back to the front: in their order, but the focused one is the last.
  std::vector<View*> drawingOrder() const;
  void addSubview(ViewPtr view);
  void insertSubview(ViewPtr view, std::size_t index);
  void bringSubviewToFront(View& view);
  void removeFromSuperview();
  void removeAllSubviews();
  /// Whether `other` is this view or lies inside it.
  bool contains(const View& other) const;
  /// The window that the view hangs in, or null.
  virtual Window* window();
  /// A point of this view's coordinates in those of the window (of the outermost superview, outside of a window), and
  /// back; transforms are left out.
  Point toWindow(Point point) const;
  Point fromWindow(Point point) const;
  /// The frontmost view at a point of this view's coordinates that is visible and takes part in interaction, or null.
  /// Transforms count: it is the view that the user sees there once all animations are over.
  View* hitTest(Point point);

  /// Whether this view and its subviews can be focused and touched.
  bool isUserInteractionEnabled() const { return isUserInteractionEnabled_; }
  void setUserInteractionEnabled(bool enabled) { isUserInteractionEnabled_ = enabled; }

  /// A modal view takes every press while it is in the window: nothing behind it gets any.
  bool isModal() const { return isModal_; }
  void setModal(bool modal);

  /// A composited view with all that is in it is one picture of its own, which is only drawn again when something in it
  /// changes and otherwise moved and faded as it is. Subviews of a window always are.
  bool isComposited() const { return isComposited_ || (superview_ != nullptr && superview_->isWindow_); }
  void setComposited(bool composited);

  /// The view keeps the recogniser for as long as it lives; null is not added. Recognisers work while the view lies in
  /// a modal one, or is it.
  void addGestureRecognizer(std::shared_ptr<GestureRecognizer> recognizer);
  const std::vector<std::shared_ptr<GestureRecognizer>>& gestureRecognizers() const { return recognizers_; }

  /// A number that the view's owner knows it by.
  std::int64_t tag() const { return tag_; }
  void setTag(std::int64_t tag) { tag_ = tag; }

  /// What was set, with the view's own label where that has none; without any, what the kind of view says by itself.
  AccessibilityInfo accessibility() const;
  /// A role of None has even a label or a button passed over.
  void setAccessibility(AccessibilityInfo info);

  // Focus and presses. Exactly one view of a window is focused while a modal view has anything to focus.
  virtual bool canBecomeFocused() const { return false; }
  bool isFocused() const { return isFocused_; }
  /// The focus has come or gone (see isFocused()).
  virtual void didUpdateFocus() {}
  virtual void pressesBegan(RemoteButton /*button*/) {}
  virtual void pressesEnded(RemoteButton /*button*/) {}
  virtual void pressesCancelled(RemoteButton /*button*/) {}
  /// Select was pressed and let go on this focused view, or it was touched.
  virtual void activate() {}
  /// An arrow that moves something inside this focused view, such as a scrolled text. False lets the focus move on.
  virtual bool handleArrow(RemoteButton /*arrow*/) { return false; }

  /// Draws what the view shows between its background and its subviews.
  virtual void draw(Canvas& /*canvas*/) const {}

  /// Has the view drawn again.
  void setNeedsDisplay();

  /// The whole rectangle that the view touches on the screen now, in its superview's coordinates: transform and shadow
  /// are in it, and what its subviews draw outside of its bounds.
  Rect drawnExtent() const;

  /// What the view touches of its own picture, in its own coordinates: like drawnExtent(), but without its transform
  /// and without the composited views inside it, which are pictures of their own. For the renderer.
  Rect pictureExtent() const;

  /// What has to be drawn again of a composited view since the last call, in its own coordinates. For the renderer.
  Rect takeDamage();

 protected:
  /// The size was set to another one.
  virtual void sizeDidChange() {}
  /// What a screen reader is told as long as nothing was set.
  virtual AccessibilityInfo defaultAccessibility() const { return {}; }
  /// The bounds as they are drawn at the moment; draw() fills these.
  Rect presentedBounds() const { return {0.0, 0.0, presented_.size.width, presented_.size.height}; }

 private:
  friend class Animator;
  friend class Window;

  template <typename Change>
  void repaint(Change change);
  void moveModel(const ViewGeometry& next);
  void present(const ViewGeometry& next);
  void setFocused(bool focused);
  void leaveSuperview();
  bool isDrawn() const { return !isHidden_ && presented_.alpha > 0.0; }
  Rect bodyExtent() const;
  Rect extent(bool withComposited) const;
  Rect toSuperview(const Rect& own) const;
  void addDamage(Rect own);
  void addDamageOfSubview(const Rect& rect);
  void damageSuperview();
  void noteChange();

  ViewGeometry model_;
  ViewGeometry presented_;
  Color backgroundColor_ = Color::clear();
  Color borderColor_ = Color::black();
  double cornerRadius_ = 0.0;
  double borderWidth_ = 0.0;
  bool isHidden_ = false;
  bool clipsToBounds_ = false;
  bool isUserInteractionEnabled_ = true;
  bool isModal_ = false;
  bool isComposited_ = false;
  bool isFocused_ = false;
  bool isWindow_ = false;
  bool isAnimated_ = false;  // The animator may hold values of this view.
  std::int64_t tag_ = 0;
  View* superview_ = nullptr;
  std::vector<ViewPtr> subviews_;
  std::vector<std::shared_ptr<GestureRecognizer>> recognizers_;
  std::optional<AccessibilityInfo> accessibility_;
  Rect damage_;
};

}  // namespace kesu
