#include "message_ui/UnreadBadge.h"

#include <kesu/ui/Label.h>

#include <memory>

#include "foundation/NumberText.h"

namespace kesu {
namespace {

constexpr double kSide = 26.0;
constexpr double kOverhang = 13.0;  // Half of the side: the badge is centred on the corner.
constexpr double kCornerRadius = 14.0;
constexpr double kFontSize = 14.0;

std::shared_ptr<Label> makeBadge(std::int64_t count, const Rect& view) {
  auto badge = std::make_shared<Label>(Rect{view.right() - kOverhang, view.y - kOverhang, kSide, kSide});
  badge->setText(decimal(count));
  badge->setTextColor(Color::white());
  badge->setAlignment(TextAlignment::Center);
  badge->setFont(Font::system(kFontSize));
  badge->setBackgroundColor(Color::redColor());
  badge->setBorder(1.0, Color::clear());
  badge->setCornerRadius(kCornerRadius);
  badge->setClipsToBounds(true);
  badge->setShadow({Color::clear(), 0.0, badge->shadow().radius, {0.0, 0.0}});
  return badge;
}

}  // namespace

void addUnreadBadge(View& view, std::int64_t count) {
  if (View* superview = view.superview()) {
    const auto badge = makeBadge(count, view.frame());
    superview->addSubview(badge);
    superview->bringSubviewToFront(*badge);
  }
}

}  // namespace kesu
