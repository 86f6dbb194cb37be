#include "app/resources.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace sparkrig {

namespace {

struct StringRow {
    UINT id;
    const char* text;
};

constexpr StringRow kStrings[] = {
    {kWindowTitle, kProgramName},
    {kWindowText, kProgramName},
    {kWindowClassName, "KRN_DEFAULT"},
};

// clang-format off
constexpr MenuItem kEffectItems[] = {
    {"&Exit",               kCommandExit},
    {"Select...",           kCommandSelectEffect},
    {"Set Bgrd Texture...", kCommandSetBackground},
    {"Remove Bgrd Texture", kCommandRemoveBackground},
    {"Set detail level...", kCommandDetailLevel},
};
constexpr MenuItem kHelpItems[] = {
    {"&Info...", kCommandInfo},
};
constexpr MenuPopup kMainMenu[] = {
    {"&Effect", kEffectItems},
    {"&Help",   kHelpItems},
};

constexpr DialogControl kSelectEffectControls[] = {
    {ControlKind::Button,  IDOK,         53, 273,  50,  14, BS_DEFPUSHBUTTON, "OK"},
    {ControlKind::Button,  IDCANCEL,    111, 273,  50,  14, 0,                "Cancel"},
    {ControlKind::ListBox, kEffectList,  21,  17, 177, 253, 0x50A10103,       ""},
};
constexpr DialogControl kDetailLevelControls[] = {
    {ControlKind::Button, IDOK,        65,  7, 50, 14, BS_DEFPUSHBUTTON, "OK"},
    {ControlKind::Button, IDCANCEL,    65, 24, 50, 14, 0,                "Abbrechen"},
    {ControlKind::Edit,   kDetailEdit, 18, 14, 31, 17, 0x50812080,       ""},
};
constexpr DialogControl kInfoControls[] = {
    {ControlKind::Icon,   0,     14,  9,  20, 20, 0, ""},
    {ControlKind::Text,   0,     40, 10,  90,  8, 0, "Sparkrig  v1.3"},
    {ControlKind::Button, IDOK, 103, 66,  30, 11, 0, "OK"},
    {ControlKind::Text,   0,     14, 36, 110, 50, 0,
     "<Tab>    next effect\n<B>    toggle background\n<R>   reload CFGs\n* /     change speed\n<Space>   select effect"},
};
// clang-format on

constexpr int kIconSize = 32;

/// Premade brightness of eight rays and a core, in orange on nothing.
std::array<std::uint32_t, kIconSize * kIconSize> DrawProgramIcon() {
    constexpr float kCentre = (kIconSize - 1) / 2.0f, kCore = 5.0f, kRays = 4;
    std::array<std::uint32_t, kIconSize * kIconSize> pixels;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const float x = static_cast<float>(i % kIconSize) - kCentre, y = static_cast<float>(i / kIconSize) - kCentre;
        const float distance = std::hypot(x, y), fade = std::max(1 - distance / (kCentre + 1), 0.0f);
        const float ray = std::pow(std::abs(std::cos(kRays * std::atan2(y, x))), 12.0f);
        const float light = std::clamp(std::exp(-distance / kCore) * 1.6f + ray * fade, 0.0f, 1.0f);
        const auto byte = [](float value) { return static_cast<std::uint32_t>(std::clamp(value, 0.0f, 1.0f) * 255); };
        pixels[i] = byte(light * 1.5f) << 24 | 0xFF0000u | byte(0.35f + light * 0.65f) << 8 | byte(light * light);
    }
    return pixels;
}

}   // namespace

int LoadStringA(UINT id, char* buffer, int size) {
    if (size <= 0) return 0;
    buffer[0] = 0;
    for (const StringRow& row : kStrings) {
        if (row.id == id) std::snprintf(buffer, static_cast<std::size_t>(size), "%s", row.text);
    }
    return static_cast<int>(std::strlen(buffer));
}

MenuTemplate MainMenu() { return kMainMenu; }

const DialogTemplate& SelectEffectDialog() {
    static constexpr DialogTemplate dialog = {"Select Effect", 222, 294, kSelectEffectControls};
    return dialog;
}

const DialogTemplate& DetailLevelDialog() {
    static constexpr DialogTemplate dialog = {"Set detail level", 122, 46, kDetailLevelControls};
    return dialog;
}

const DialogTemplate& InfoDialog() {
    static const DialogTemplate dialog = {"Info", 144, 93, kInfoControls, ProgramIcon()};
    return dialog;
}

IconImage ProgramIcon() {
    static const std::array<std::uint32_t, kIconSize* kIconSize> pixels = DrawProgramIcon();
    return {kIconSize, pixels};
}

}   // namespace sparkrig
