#include "platform/window/icon_drawing.h"

#include <imgui.h>

namespace sparkrig {

// Pixel by pixel: a dialog shows one icon, and needs no texture for it.
void DrawIcon(const IconImage& icon, float scale) {
    ImDrawList& list = *ImGui::GetWindowDrawList();
    const ImVec2 corner = ImGui::GetCursorScreenPos();
    for (std::size_t i = 0; i < icon.pixels.size(); ++i) {
        const int column = static_cast<int>(i) % icon.size, row = static_cast<int>(i) / icon.size;
        const ImVec2 place(corner.x + static_cast<float>(column) * scale, corner.y + static_cast<float>(row) * scale);
        const std::uint32_t pixel = icon.pixels[i];
        list.AddRectFilled(place, {place.x + scale, place.y + scale},
                           IM_COL32(pixel >> 16 & 255, pixel >> 8 & 255, pixel & 255, pixel >> 24));
    }
}

}   // namespace sparkrig
