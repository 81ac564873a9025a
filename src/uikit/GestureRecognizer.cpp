#include "uikit/GestureRecognizer.h"

namespace kesu {

void GestureRecognizer::add(View& view, std::shared_ptr<GestureRecognizer> recognizer) {
  view.recognizers_.push_back(std::move(recognizer));
}

void GestureRecognizer::recognize() {
  state_ = State::Ended;
  if (action_) {
    action_(*this);
  }
  state_ = State::Possible;
}

}  // namespace kesu
