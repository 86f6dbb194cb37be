// A moving picture that the program computes: what video sources show where there is neither camera nor film.
#pragma once
#include <vector>

#include "app/clock.h"
#include "gfx/gfx.h"

namespace sparkrig {

/// Light that drifts under dark glass, in a disc with a soft edge. What a picture shows is decided by the clock's frame
/// time alone.
class VideoGenerator {
  public:
    static constexpr int kSide = 128;   // pixels

    /// The clock outlives the generator.
    explicit VideoGenerator(const FrameClock& clock);
    VideoGenerator(const VideoGenerator&) = delete;
    VideoGenerator& operator=(const VideoGenerator&) = delete;

    /// Textures loaded from the slot (0 for ">>Video1") show these pictures from now on. The generator outlives them.
    void Serve(KRN_Gfx& gfx, int slot);
    /// Writes the picture of the present frame, kSide rows of D3DFMT_A8R8G8B8, `locked.Pitch` bytes from row to row.
    void Write(const D3DLOCKED_RECT& locked);

  private:
    static constexpr int kPixels = kSide * kSide;

    /// What a pixel keeps for ever. Lengths are 1 from the middle of the picture to its sides.
    struct Place {
        float x, y, radius;
        float turn;   // around the middle, 0 to 1
        D3DCOLOR alpha;
    };
    void Compute(double seconds);

    const FrameClock& clock_;
    std::vector<Place> places_;       // row by row from the top, like the picture
    std::vector<D3DCOLOR> picture_;   // the last one computed
    double picture_time_ = -1;        // seconds; no frame has a time below 0
};

}   // namespace sparkrig
