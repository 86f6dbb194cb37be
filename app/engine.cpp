#include "app/engine.h"

#include "app/program_folder.h"
#include "app/resources.h"
#include "app/window_procedure.h"
#include "base/random.h"
#include "base/string.h"
#include "gfx/gfx.h"
#include "platform/system/system.h"

namespace sparkrig {

namespace {

constexpr int kTextBytes = 100;
constexpr int kGeneratedVideo = 0;   // the slot of ">>Video1"
constexpr D3DCOLOR kFontTop = 0xFF96DCFF, kFontBottom = 0xFF006473, kWhite = 0xFFFFFFFF;

D3DDISPLAYMODE ChooseMode(TesterState& state, KRN_Gfx& gfx) {
    D3DDISPLAYMODE mode = {};
    if (!state.windowed) {
        gfx.GetAdapterDisplayMode(mode);
        state.resolution_x = static_cast<int>(mode.Width);
        state.resolution_y = static_cast<int>(mode.Height);
    }
    mode = {static_cast<UINT>(state.resolution_x), static_cast<UINT>(state.resolution_y), 0, D3DFMT_A8R8G8B8};
    if (state.windowed || gfx.FindDisplayMode(mode)) return mode;
    mode.Format = D3DFMT_R5G6B5;
    if (!gfx.FindDisplayMode(mode)) gfx.Error("Display mode not supported by your video card!");
    return mode;
}

}   // namespace

void Engine::Start(TesterState& state, std::optional<std::uint32_t> seed) {
    if (!gfx) gfx.emplace();
    input.emplace();
    keyboard.emplace();
    font.emplace();
    const D3DDISPLAYMODE mode = ChooseMode(state, *gfx);
    constexpr int kZBufferBits = 16, kNoVsync = 0, kMixedVertices = 1, kDefaultDevice = 0, kOneThread = 0;
    gfx->InitDevice(state.window, state.windowed, &mode, kZBufferBits, kNoVsync, kMixedVertices, kDefaultDevice,
                    kOneThread);
    gfx->SetShaderFolder(BuiltInFolder());
    video.emplace(state.clock).Serve(*gfx, kGeneratedVideo);
    input->Create(state.window, -1);
    input->CreateKeyboard(*keyboard, DISCL_NONEXCLUSIVE | DISCL_FOREGROUND);
    SeedRandom(seed.value_or(static_cast<std::uint32_t>(QueryPerformanceCounter())));
    font->CreateBuiltInFont(*gfx, kFontTop, kFontBottom);
    SetTextSize(*font, 4.0f);
    gfx->SetFont(&*font, 0.0f, 0);
    state.ReadClientSize();
    state.initialised = 1;
}

void Engine::ShutDown() {
    background.Release();
    screen_effect.Release();
    mesh_effect.Release();
    effects.Release();
    keyboard.reset();
    if (font) font->Release();
    font.reset();
    input.reset();
    gfx.reset();
    video.reset();
}

bool ReadWindowOptions(TesterState& state, const std::string& command_line) {
    const char* words = command_line.c_str();
    state.windowed = HasOption(words, "/full") ? 0 : 1;
    const bool x_given = GetOptionValue(words, "/resx", &state.resolution_x);
    const bool y_given = GetOptionValue(words, "/resy", &state.resolution_y);
    return x_given || y_given;
}

bool MakeTesterWindow(TesterState& state, WindowSize size) {
    char title[kTextBytes], class_name[kTextBytes];
    LoadStringA(kWindowTitle, title, kTextBytes);
    LoadStringA(kWindowClassName, class_name, kTextBytes);
    RegisterClassExA(
        {WindowProcedure, class_name, size == WindowSize::Picture ? MenuTemplate() : MainMenu(), ProgramIcon()});
    const bool sized = size != WindowSize::ChosenBySystem;
    state.window = CreateWindowExA(class_name, title, CW_USEDEFAULT, 0, sized ? state.resolution_x : CW_USEDEFAULT,
                                   sized ? state.resolution_y : CW_USEDEFAULT);
    if (!state.window) return false;
    ShowWindow(state.window);
    UpdateWindow(state.window);
    state.ReadClientSize();
    return true;
}

void SetTextSize(KRN_Font& font, float size) {
    constexpr float kBaseFraction = 0.75f;
    font.SetTextStyle(size, kWhite, kKeepSpacing, kKeepSpacing, kBaseFraction);
}

}   // namespace sparkrig
