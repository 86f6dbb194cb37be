#include "app/overlay.h"

#include <algorithm>

#include "gfx/device/with_restore.h"

namespace sparkrig {

namespace {

constexpr float kMargin = 13, kNoticeTop = 34, kTextSize = 2, kSpeedFromRight = 70, kDrawsFromRight = 140;

/// Broken into lines of the width of the window.
void PrintNotice(Engine& engine, const std::string& text, float width) {
    const float advance = kTextSize * engine.font->Advance('0');
    const std::size_t columns = static_cast<std::size_t>(std::max(width / advance, 1.0f));
    float y = kNoticeTop;
    for (std::size_t i = 0; i < text.size(); y += kMargin) {
        const std::string line = text.substr(i, std::min(columns, text.find('\n', i) - i));
        engine.gfx->Printf(1, y, "%s", line.c_str());
        i += line.size();
        if (i < text.size() && text[i] == '\n') ++i;
    }
}

void PrintLines(Engine& engine, const TesterState& state, const LoopState& loop) {
    KRN_Gfx& gfx = *engine.gfx;
    const float width = static_cast<float>(state.client_width), height = static_cast<float>(state.client_height);
    const int half_width = state.client_width / 2;   // rounded toward zero
    gfx.Printf(1, 1, "FPS:%.2f", static_cast<double>(loop.rate.PerSecond()));
    gfx.PrintfCentred(width - kSpeedFromRight, kMargin, "Spd:%.2f", static_cast<double>(loop.speed));
    gfx.PrintfCentred(static_cast<float>(half_width), kMargin, "%s",
                      engine.effects.GetEffectName(state.current_effect).c_str());
    if (state.clock.FrameTime() < state.notice.until) PrintNotice(engine, state.notice.text, width);
    gfx.Printf(1, height - kMargin, "NrPart:%i/%i", loop.drawn_particles, loop.most_drawn_particles);
    gfx.Printf(width - kDrawsFromRight, height - kMargin, "NrDraws:%i", engine.effects.DrawCallCount());
}

void BeginText(Engine& engine, float size) {
    engine.gfx->SetTextureFilter(2, 0);
    engine.gfx->PushZBufferOff();
    engine.gfx->SetBlendingMode(4, 255, 0);
    SetTextSize(*engine.font, size);
}

void EndText(Engine& engine) {
    SetTextSize(*engine.font, 1.0f);
    engine.gfx->PopZBufferOff();
    engine.gfx->SetBlendingMode(1, 255, 0);
    engine.gfx->SetTextureFilter(1, 0);
}

}   // namespace

void DrawOverlay(Engine& engine, const TesterState& state, const LoopState& loop) {
    const auto draw = [&] {
        BeginText(engine, kTextSize);
        if (!loop.show_overlay) return;
        PrintLines(engine, state, loop);
        engine.gfx->DrawText();
    };
    WithRestore(draw, [&] { EndText(engine); });
}

void DrawEffectName(Engine& engine, const TesterState& state) {
    constexpr float kLargest = 4, kTop = 2;
    const String& name = engine.effects.GetEffectName(state.current_effect);
    const float width = static_cast<float>(state.client_width);
    SetTextSize(*engine.font, 1.0f);
    const float advance = engine.font->Advance('0') * static_cast<float>(std::max(name.GetLength(), 1));
    BeginText(engine, std::min(kLargest, width / advance));
    engine.gfx->PrintfCentred(width / 2, kTop, "%s", name.c_str());
    engine.gfx->DrawText();
    EndText(engine);
}

}   // namespace sparkrig
