#include "gfx/shaders/pass_switch.h"

#include <algorithm>

namespace sparkrig {

PassSwitch::OpenPass PassSwitch::Remember() const {
    IDirect3DDevice9& device = *graphics_.Device();
    OpenPass pass;
    graphics_.Require(device.GetRenderTarget(0, pass.target.Receive()), "Can not retrieve render target: ");
    // A buffer's viewport is the device's to know; any other is the program's own, whatever a lost device answers.
    pass.viewport = transforms_.Viewport();
    if (Buffer()) graphics_.Require(device.GetViewport(&pass.viewport), "GetViewport failed: ");
    pass.has_depth = targets_.HasDepthBuffer();
    return pass;
}

DevicePtr<IDirect3DSurface9> PassSwitch::SurfaceOf(const PassTarget& pass) const {
    DevicePtr<IDirect3DSurface9> surface;
    IDirect3DTexture9* buffer = buffers_.GetScreenBufferTexture(pass.kind, pass.index);
    graphics_.Require(buffer->GetSurfaceLevel(0, surface.Receive()), "GetSurfaceLevel failed: ");
    return surface;
}

void PassSwitch::Begin(const PassTarget& pass, KRN_ShaderEffect& effect) {
    const auto initial = std::ranges::find_if(open_, [](const OpenPass& open) { return bool(open.target); });
    if (BufferCount(pass.kind) > 0) {
        OpenPass opened = Remember();
        opened.buffer = SurfaceOf(pass);
        Open(opened, &effect, *opened.buffer);
    } else if (pass.kind == TargetKind::Initial && initial != open_.end()) {
        const OpenPass outermost = *initial;   // what it found is the initial target
        Open(Remember(), nullptr, *outermost.target);
        graphics_.Require(transforms_.SetViewport(outermost.viewport), "SetViewPort failed: ");
    } else {
        open_.emplace_back();
    }
}

void PassSwitch::Open(OpenPass pass, KRN_ShaderEffect* forced, IDirect3DSurface9& target) {
    pass.forced = effects_.Force(forced);
    open_.push_back(std::move(pass));   // first: should the device refuse, there is something to unwind
    targets_.Set(&target, 0);
}

HRESULT PassSwitch::PutBack(const OpenPass& pass) {
    effects_.Force(pass.forced);
    const HRESULT result = targets_.PutBack(pass.target.Get(), pass.has_depth);
    return FAILED(result) ? result : transforms_.SetViewport(pass.viewport);
}

void PassSwitch::End() {
    if (open_.empty()) return;
    const OpenPass pass = std::move(open_.back());
    open_.pop_back();
    if (pass.target) graphics_.Require(PutBack(pass), "Can not set render target: ");
}

void PassSwitch::UnwindTo(std::size_t depth) {
    while (open_.size() > depth) {
        const OpenPass pass = std::move(open_.back());
        open_.pop_back();
        if (pass.target) PutBack(pass);
    }
}

void PassSwitch::Forget() {
    open_.clear();
    effects_.Force(nullptr);
}

IDirect3DSurface9* PassSwitch::Buffer() const {
    const auto switched =
        std::find_if(open_.rbegin(), open_.rend(), [](const OpenPass& pass) { return bool(pass.target); });
    return switched == open_.rend() ? nullptr : switched->buffer.Get();
}

}   // namespace sparkrig
