#include "app/contact_sheet.h"

#include <algorithm>
#include <cmath>

#include "app/progress.h"

namespace sparkrig {

namespace {

constexpr int kLongestSearch = 360;   // frames
constexpr UINT kGap = 4;              // pixels around each picture
constexpr UINT kCaptionHeight = 18;   // pixels
constexpr D3DCOLOR kSheetColour = 0xFF202028;

/// How much there is to see: the shares of the instances that have been born, by size and alpha, and of ribbons.
double Liveliness(const VisualEffectSystem& effects) {
    double sum = effects.RibbonStrength();
    for (const EffectInstanceState& instance : effects.GetInstanceStates()) {
        if (instance.time < instance.birth_delay) continue;
        const double alpha = std::clamp(static_cast<double>(instance.alpha), 0.0, 1.0);
        sum += alpha * std::sqrt(std::abs(static_cast<double>(instance.scale.x)));
    }
    return std::isfinite(sum) ? sum : 0;
}

/// The frame, from 0, of the liveliest moment; the first of several.
int FindLiveliestFrame(Player& player, int effect) {
    player.StartEffect(effect);
    int best_frame = 0;
    double best = 0;
    for (int frame = 0; frame < kLongestSearch && player.Effects().LiveInstanceCount() > 0; ++frame) {
        player.Advance();
        const double liveliness = Liveliness(player.Effects());
        if (liveliness <= best) continue;
        best = liveliness;
        best_frame = frame;
    }
    return best_frame;
}

/// The picture with its caption below.
Picture TakeLiveliest(Player& player, int effect) {
    const int liveliest = FindLiveliestFrame(player, effect);
    player.StartEffect(effect);
    for (int frame = 0; frame <= liveliest; ++frame) player.Advance();
    player.Draw();
    Picture picture = Halve(player.TakePicture());
    player.Present();
    player.DrawCaption(kSheetColour);
    const Picture caption = Halve(player.TakePicture());
    player.Present();
    picture.pixels.insert(picture.pixels.end(), caption.pixels.begin(),
                          caption.pixels.begin() + caption.width * kCaptionHeight);
    picture.height += kCaptionHeight;
    return picture;
}

void Paste(const Picture& picture, Picture& sheet, UINT left, UINT top) {
    for (UINT y = 0; y < picture.height; ++y) {
        std::copy_n(picture.pixels.begin() + y * picture.width, picture.width,
                    sheet.pixels.begin() + (top + y) * sheet.width + left);
    }
}

}   // namespace

Picture Halve(const Picture& picture) {
    Picture half = {picture.width / 2, picture.height / 2, {}};
    half.pixels.reserve(std::size_t{half.width} * half.height);
    for (UINT y = 0; y < half.height; ++y) {
        for (UINT x = 0; x < half.width; ++x) {
            const D3DCOLOR* pixel = &picture.pixels[std::size_t{2} * y * picture.width + 2 * x];
            D3DCOLOR mean = 0;
            for (const int shift : {24, 16, 8, 0}) {
                D3DCOLOR sum = 2;   // rounds
                for (const UINT corner : {0u, 1u, picture.width, picture.width + 1}) {
                    sum += pixel[corner] >> shift & 0xFF;
                }
                mean |= sum / 4 << shift;
            }
            half.pixels.push_back(mean);
        }
    }
    return half;
}

Picture MakeContactSheet(Player& player) {
    const UINT count = static_cast<UINT>(player.EffectCount());
    const UINT columns = static_cast<UINT>(std::ceil(std::sqrt(count)));
    const UINT rows = (count + columns - 1) / columns;
    constexpr UINT kCellWidth = kSheetFrameWidth / 2 + kGap,
                   kCellHeight = kSheetFrameHeight / 2 + kCaptionHeight + kGap;
    Picture sheet = {columns * kCellWidth + kGap, rows * kCellHeight + kGap, {}};
    sheet.pixels.assign(std::size_t{sheet.width} * sheet.height, kSheetColour);
    Progress progress("Rendering", static_cast<int>(count));
    for (UINT i = 0; i < count; ++i) {
        progress.Next(player.Effects().GetEffectName(static_cast<int>(i)).c_str());
        const Picture picture = TakeLiveliest(player, static_cast<int>(i));
        Paste(picture, sheet, kGap + i % columns * kCellWidth, kGap + i / columns * kCellHeight);
    }
    return sheet;
}

}   // namespace sparkrig
