#include "app/journal.h"

#include <cerrno>
#include <cstring>

#include "app/json_text.h"

namespace sparkrig {

Journal::Journal(const std::string& file) : file_(std::fopen(file.c_str(), "w")) {}

void Journal::Write(const Engine& engine, const TesterState& state, const LoopState& loop) {
    const D3DXVECTOR3 &eye = loop.camera.Eye(), &view = loop.camera.ViewDirection(), &up = loop.camera.Up();
    const float eye_values[] = {eye.x, eye.y, eye.z}, view_values[] = {view.x, view.y, view.z},
                up_values[] = {up.x, up.y, up.z};
    const float client[] = {static_cast<float>(state.client_width), static_cast<float>(state.client_height)};
    JsonLine line;
    line.Add("effect", engine.effects.GetEffectName(state.current_effect).c_str());
    line.Add("effects", loop.effect_count);
    line.Add("speed", loop.speed);
    line.Add("paused", state.paused != 0);
    line.Add("overlay", loop.show_overlay);
    line.Add("backdrop", loop.show_backdrop);
    line.Add("live", engine.effects.LiveInstanceCount());
    line.Add("detail", engine.effects.DetailLevel());
    line.Add("background", engine.background.HasSurface() ? state.background_path : "");
    line.AddList("eye", eye_values);
    line.AddList("view", view_values);
    line.AddList("up", up_values);
    line.AddList("client", client);
    std::string text = line.Finish();
    if (text == last_) return;
    const bool written = std::fprintf(file_.get(), "%s\n", text.c_str()) >= 0 && std::fflush(file_.get()) == 0;
    if (!written && !failed_)
        std::fprintf(stderr, "sparkrig: the journal cannot be written: %s\n", std::strerror(errno));
    failed_ = !written;
    last_ = std::move(text);
}

}   // namespace sparkrig
