#pragma once
#include "app/player.h"

namespace sparkrig {

inline constexpr int kSheetFrameWidth = 640, kSheetFrameHeight = 360;   // of the frames that the sheet is made from

inline constexpr int kMostSheetEffects = 1024;

/// Every effect at its liveliest moment, named, in rows. The device draws at the size above; the pictures on the sheet
/// have half of it. At most kMostSheetEffects.
Picture MakeContactSheet(Player& player);

/// The picture at half its size; four pixels become their mean.
Picture Halve(const Picture& picture);

}   // namespace sparkrig
