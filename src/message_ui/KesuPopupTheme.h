#pragma once

#include <kesu/graphics/Color.h>
#include <kesu/graphics/Geometry.h>

#include <cstdint>

namespace kesu {

/// The looks and behaviour of a popup. A plain value; lengths in points. The settings that the popup does not read are
/// owed to the agreed interface.
struct KesuPopupTheme {
  /// Returns the settings below. [KesuPopupTheme defaultTheme]
  static KesuPopupTheme defaultTheme() { return {}; }

  Color backgroundColor = Color::clear();  ///< Of the card.
  double cornerRadius = 5.0;               ///< Of the card, when popupStyle is 1.
  EdgeInsets popupContentInsets;           ///< Not read.
  std::uint64_t popupStyle = 1;            ///< The popup sets it to 0 when it is made.
  std::int64_t presentationStyle = 2;      ///< Follows popupStyle (2 gives 0, 0 gives 2), otherwise not read.

  /// Kept: has no visible effect.
  std::int64_t maskType = 1;
  bool dismissesOppositeDirection = false;     ///< Not read.
  bool shouldDismissOnBackgroundTouch = true;  ///< Whether a tap on the backdrop calls the delegate.
  bool movesAboveKeyboard = true;              ///< Not read.
  double contentVerticalPadding = 16.0;        ///< Not read.
  double maxPopupWidth = 580.0;                ///< Not read.
};

}  // namespace kesu
