#include <kesu/ui/GestureRecognizer.h>

namespace kesu {

void GestureRecognizer::recognize() {
  state_ = State::Ended;
  if (action_) {
    action_(*this);
  }
  state_ = State::Possible;
}

}  // namespace kesu
