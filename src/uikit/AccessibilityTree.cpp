#include "uikit/AccessibilityTree.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "uikit/FocusEngine.h"
#include "uikit/InputTargets.h"

namespace kesu {
namespace {

using Role = AccessibilityInfo::Role;

/// One element, or a dialog with everything in it, which are not interleaved with others.
using Block = std::vector<AccessibilityNode>;

AccessibilityNode nodeOf(const View& view, AccessibilityInfo info) {
  return {info.role, std::move(info.label), std::move(info.value), placeInWindow(view), view.isFocused()};
}

void appendInReadingOrder(std::vector<Block> blocks, Block& nodes) {
  std::vector<Rect> frames;
  std::ranges::transform(blocks, std::back_inserter(frames), [](const Block& block) { return block.front().frame; });
  std::vector<std::size_t> order = readingOrder(frames);
  std::stable_partition(order.begin(), order.end(),
                        [&](std::size_t one) { return blocks[one].front().role == Role::Heading; });
  for (const std::size_t one : order) {
    std::ranges::move(blocks[one], std::back_inserter(nodes));
  }
}

void collect(const View& view, std::vector<Block>& blocks) {
  if (view.isHidden() || view.alpha() <= 0.0) {
    return;
  }
  AccessibilityInfo info = view.accessibility();
  const bool isElement = info.role != Role::None && info.role != Role::Dialog;
  std::vector<Block> inside;
  for (const ViewPtr& subview : view.subviews()) {
    if (!isElement) {  // An element is read for all that is in it.
      collect(*subview, inside);
    }
  }
  if (info.role == Role::None) {
    std::ranges::move(inside, std::back_inserter(blocks));
    return;
  }
  Block block{nodeOf(view, std::move(info))};
  appendInReadingOrder(std::move(inside), block);
  blocks.push_back(std::move(block));
}

}  // namespace

std::vector<AccessibilityNode> accessibilityTree(const Window& window) {
  window.focusedView();  // Updates the focus, which the nodes contain.
  const View* modal = frontmostModal(window);
  std::vector<Block> blocks;
  collect(modal != nullptr ? *modal : window, blocks);
  Block nodes;
  appendInReadingOrder(std::move(blocks), nodes);
  return nodes;
}

}  // namespace kesu
