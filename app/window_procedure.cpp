#include "app/window_procedure.h"

#include "app/dialogs.h"
#include "app/resources.h"
#include "app/tester_state.h"

namespace sparkrig {

namespace {

void Paint(HWND window) {
    char text[100];
    LoadStringA(kWindowText, text, sizeof(text));
    RECT client;
    GetClientRect(window, client);
    DrawTextA(BeginPaint(window), text, client, DT_CENTER);
    EndPaint(window);
}

void RecordClick(TesterState& state, LPARAM lParam) {
    constexpr double kDoubleClickSeconds = 0.3;
    const double now = state.clock.Now();
    if (now - state.last_click_time <= kDoubleClickSeconds) return;
    state.click = {0, 1, LowWord(lParam), HighWord(lParam)};
    state.last_click_time = now;
}

/// False for what is no command of the menu.
bool RunCommand(TesterState& state, UINT id) {
    if (id == kCommandExit) DestroyWindow(state.window);
    if (id == kCommandInfo) ShowInfo(state);
    if (id == kCommandExit || id == kCommandInfo) return true;
    if (!state.engine) return false;   // nothing to choose from yet
    switch (id) {
        case kCommandSelectEffect: SelectEffect(*state.engine, state); return true;
        case kCommandSetBackground: ChooseBackground(*state.engine, state); return true;
        case kCommandRemoveBackground: RemoveBackground(*state.engine, state); return true;
        case kCommandDetailLevel: SetDetailLevel(*state.engine, state); return true;
        default: return false;
    }
}

/// The characters that stand for commands; 0 for all others.
UINT CommandOf(WPARAM character) {
    switch (character) {
        case ' ': return kCommandSelectEffect;
        case 'd':
        case 'D': return kCommandDetailLevel;
        default: return 0;
    }
}

}   // namespace

LRESULT WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    TesterState& state = Tester();
    switch (message) {
        case WM_DESTROY:
            state.quit_requested = 1;
            PostQuitMessage(0);
            return 0;
        case WM_SIZE:
            state.window_visible = wParam != SIZE_MINIMIZED && wParam != SIZE_MAXHIDE;
            state.ReadClientSize();
            return 0;
        case WM_PAINT: Paint(window); return 0;
        case WM_ACTIVATEAPP: state.application_active = static_cast<int>(wParam); return 0;
        case WM_CHAR:
            if (RunCommand(state, CommandOf(wParam))) return 0;
            break;
        case WM_COMMAND:
            if (RunCommand(state, wParam & 0xFFFF)) return 0;
            break;
        case WM_LBUTTONDOWN: RecordClick(state, lParam); return 0;
        case WM_LBUTTONUP: state.last_click_time = 0.0; return 0;
        case WM_ENTERMENULOOP:
        case WM_ENTERSIZEMOVE: state.paused = 1; return 0;
        case WM_EXITMENULOOP:
        case WM_EXITSIZEMOVE: state.paused = 0; return 0;
        default: break;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

}   // namespace sparkrig
