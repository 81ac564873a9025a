#include <kesu/message_ui/KesuInAppMessageDelegate.h>

#include "message_ui/KesuInAppPresenter.h"

namespace kesu {

KesuInAppMessageDelegate::~KesuInAppMessageDelegate() {
  if (KesuInAppPresenter* presenter = KesuInAppPresenter::sharedInstance()) {
    presenter->forgetDelegate(this);
  }
}

}  // namespace kesu
