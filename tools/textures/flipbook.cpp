#include "tools/textures/flipbook.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace sparkrig {

namespace {

constexpr int kColourStep = 8, kAlphaStep = 4;

/// The nearest multiple of the step; none and full stay what they are.
std::uint8_t ToStep(int value, int step) {
    return static_cast<std::uint8_t>(std::min((value + step / 2) / step * step, 255));
}

}   // namespace

std::vector<Flipbook> AllFlipbooks() {
    std::vector<Flipbook> flipbooks = FlameFlipbooks(), smoke = SmokeFlipbooks();
    flipbooks.insert(flipbooks.end(), std::make_move_iterator(smoke.begin()), std::make_move_iterator(smoke.end()));
    return flipbooks;
}

Picture RenderFrame(const Flipbook& flipbook, int frame) {
    const float phase = static_cast<float>(frame) / static_cast<float>(flipbook.frames);
    Picture picture = Render({flipbook.name, flipbook.size, [&](Point p) { return flipbook.paint(p, phase); }});
    for (std::size_t i = 0; i < picture.rgba.size(); ++i)
        picture.rgba[i] = ToStep(picture.rgba[i], i % 4 == 3 ? kAlphaStep : kColourStep);
    return picture;
}

std::string FrameFile(const Flipbook& flipbook, int frame) {
    char number[16];
    std::snprintf(number, sizeof number, "%02d", frame);
    return flipbook.name + std::string("\\") + number + ".png";
}

std::string FrameList(const Flipbook& flipbook) {
    std::string list;
    for (int frame = 0; frame < flipbook.frames; ++frame) list += FrameFile(flipbook, frame) + "\n";
    return list;
}

}   // namespace sparkrig
