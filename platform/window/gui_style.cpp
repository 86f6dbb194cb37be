#include "platform/window/gui_style.h"

#include <imgui.h>

namespace sparkrig {

namespace {

struct ColourRow {
    ImGuiCol place;
    unsigned colour;   // 0xRRGGBB
};

constexpr unsigned kFace = 0xF3F3F5, kField = 0xFFFFFF, kEdge = 0xC4C7CE, kInk = 0x1C1E22, kAccent = 0x2F6FDE,
                   kPaleAccent = 0xDCE7FA, kButton = 0xFDFDFE, kPressed = 0xC3D7F7, kGrip = 0xB9BDC6;

// clang-format off
constexpr ColourRow kColours[] = {
    {ImGuiCol_WindowBg, kFace},              {ImGuiCol_PopupBg, kFace},            {ImGuiCol_ChildBg, kField},
    {ImGuiCol_Text, kInk},                   {ImGuiCol_Border, kEdge},             {ImGuiCol_FrameBg, kField},
    {ImGuiCol_Button, kButton},              {ImGuiCol_ButtonHovered, kPaleAccent}, {ImGuiCol_ButtonActive, kPressed},
    {ImGuiCol_Header, kPressed},             {ImGuiCol_HeaderHovered, kPaleAccent}, {ImGuiCol_HeaderActive, kPressed},
    {ImGuiCol_TitleBg, kFace},               {ImGuiCol_TitleBgActive, kFace},      {ImGuiCol_TextSelectedBg, kPressed},
    {ImGuiCol_ScrollbarBg, kFace},           {ImGuiCol_ScrollbarGrab, kGrip},      {ImGuiCol_ScrollbarGrabHovered, kAccent},
    {ImGuiCol_ScrollbarGrabActive, kAccent},
};
// clang-format on

ImVec4 Colour(unsigned colour) {
    return ImColor(static_cast<int>(colour >> 16 & 255), static_cast<int>(colour >> 8 & 255),
                   static_cast<int>(colour & 255));
}

}   // namespace

void SetStyle(ImGuiStyle& style, float scale) {
    ImGui::StyleColorsLight(&style);
    for (const ColourRow& row : kColours) style.Colors[row.place] = Colour(row.colour);
    style.WindowRounding = 6;
    style.FrameRounding = style.ChildRounding = 4;
    style.FramePadding = {8, 4};
    style.WindowPadding = {12, 12};
    style.ItemSpacing = {8, 4};
    style.ScrollbarSize = 14;
    style.ScaleAllSizes(scale);
    style.FrameBorderSize = 1;
}

}   // namespace sparkrig
