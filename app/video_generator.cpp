#include "app/video_generator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "gfx/gfx.h"
#include "gfx/textures/video_sources.h"

namespace sparkrig {

namespace {

constexpr double kTwoPi = 6.283185307179586;

/// The sine of an angle in turns, from a table: five are taken for each pixel of each picture.
class SineTable {
  public:
    SineTable() {
        for (int i = 0; i < kSteps; ++i) values_[i] = static_cast<float>(std::sin(kTwoPi * i / kSteps));
    }
    /// turns above -16: what is never below 0 needs no rounding down, which costs more than all the rest.
    float operator()(float turns) const {
        return values_[static_cast<std::uint32_t>(static_cast<std::int32_t>((turns + 16) * kSteps)) % kSteps];
    }

  private:
    static constexpr int kSteps = 2048;
    std::array<float, kSteps> values_;
};

struct ColourStop {
    float brightness;
    int red, green, blue;
};
// clang-format off
constexpr ColourStop kColours[] = {{0.00f,   5,   6,  30},
                                   {0.30f,  22,  26, 104},
                                   {0.55f,  40, 104, 186},
                                   {0.80f, 118, 214, 232},
                                   {1.00f, 250, 255, 246}};
// clang-format on
constexpr int kBrightnesses = 256;

/// The colour of each brightness, between the stops, without alpha.
class ColourTable {
  public:
    ColourTable() {
        const ColourStop* stop = kColours;
        for (int i = 0; i < kBrightnesses; ++i) {
            const float brightness = static_cast<float>(i) / (kBrightnesses - 1);
            while (brightness > stop[1].brightness) ++stop;
            const float t = (brightness - stop[0].brightness) / (stop[1].brightness - stop[0].brightness);
            const auto mix = [t](int from, int to) {
                return from + static_cast<int>(static_cast<float>(to - from) * t);
            };
            colours_[i] =
                static_cast<D3DCOLOR>(mix(stop[0].red, stop[1].red) << 16 | mix(stop[0].green, stop[1].green) << 8 |
                                      mix(stop[0].blue, stop[1].blue));
        }
    }
    D3DCOLOR operator()(float brightness) const {
        return colours_[static_cast<int>(std::clamp(brightness, 0.0f, 1.0f) * (kBrightnesses - 1))];
    }

  private:
    std::array<D3DCOLOR, kBrightnesses> colours_;
};

float SmoothStep(float from, float to, float v) {
    const float t = std::clamp((v - from) / (to - from), 0.0f, 1.0f);
    return t * t * (3 - 2 * t);
}

/// So far through a turn that takes `period` seconds.
float Turn(double seconds, double period) { return static_cast<float>(std::fmod(seconds, period) / period); }

}   // namespace

VideoGenerator::VideoGenerator(const FrameClock& clock) : clock_(clock), places_(kPixels), picture_(kPixels) {
    constexpr float kSoftFrom = 0.95f, kSoftTo = 0.78f;   // radius
    for (int i = 0; i < kPixels; ++i) {
        const int column = i % kSide, row = i / kSide;
        const float x = (static_cast<float>(column) + 0.5f) * 2 / kSide - 1;
        const float y = (static_cast<float>(row) + 0.5f) * 2 / kSide - 1;
        const float radius = std::hypot(x, y), turn = static_cast<float>(std::atan2(y, x) / kTwoPi);
        const auto alpha = static_cast<D3DCOLOR>(std::lround(255 * SmoothStep(kSoftFrom, kSoftTo, radius)));
        places_[i] = {x, y, radius, turn, alpha << 24};
    }
}

void VideoGenerator::Serve(KRN_Gfx& gfx, int slot) {
    VideoSource& source = gfx.Video(slot);
    source.format = D3DFMT_A8R8G8B8;
    source.width = source.height = kSide;
    source.update = [this](D3DLOCKED_RECT* locked) { Write(*locked); };
}

void VideoGenerator::Write(const D3DLOCKED_RECT& locked) {
    if (clock_.FrameTime() != picture_time_) Compute(clock_.FrameTime());
    auto* row = static_cast<BYTE*>(locked.pBits);
    for (int y = 0; y < kSide; ++y, row += locked.Pitch)
        std::memcpy(row, picture_.data() + y * kSide, kSide * sizeof(D3DCOLOR));
}

/// Two waves that bend each other and two arms that turn: where their sum passes through nothing, light gathers in
/// threads. Rings run outwards from the middle.
void VideoGenerator::Compute(double seconds) {
    static const SineTable sine;
    static const ColourTable colour;
    const float across = Turn(seconds, 11), along = Turn(seconds, 13), bend = Turn(seconds, 17);
    const float arms = Turn(seconds, 7), rings = Turn(seconds, 2.5);
    for (int i = 0; i < kPixels; ++i) {
        const Place& at = places_[i];
        const float wave_x = sine(0.75f * at.x + 0.16f * sine(0.8f * at.y + bend) + across);
        const float wave_y = sine(0.65f * at.y + 0.2f * wave_x - along);
        const float arm = std::min(3 * at.radius, 1.0f);   // they would meet in one point
        const float spiral = arm * sine(2 * at.turn + 1.1f * at.radius + 0.12f * wave_y - arms);
        const float thread = 1 - std::min(std::abs(wave_x + wave_y + 1.2f * spiral) * 0.8f, 1.0f);
        const float ring = sine(2.5f * at.radius - rings);
        const float depth = 1 - at.radius * at.radius;
        const float light = thread * thread * (0.2f + 0.62f * depth) + 0.16f * thread * depth;
        picture_[i] = at.alpha | colour(0.06f + light + depth * (0.24f + 0.1f * spiral + 0.06f * ring));
    }
    picture_time_ = seconds;
}

}   // namespace sparkrig
