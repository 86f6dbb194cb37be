#pragma once
#include "platform/window/resources.h"

namespace sparkrig {

/// Draws an icon where the next widget would stand.
void DrawIcon(const IconImage& icon, float scale);

}   // namespace sparkrig
