#include "app/dialogs.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "app/frame_drawing.h"
#include "app/registry_settings.h"
#include "app/resources.h"
#include "base/numeric.h"
#include "platform/window/dialog.h"
#include "platform/window/file_choice.h"

namespace sparkrig {

namespace {

struct DialogWorld {
    Engine& engine;
    TesterState& state;
};
const DialogWorld* world = nullptr;   // of the dialog that is open

/// Ends the dialog for its OK and its Cancel. True when it was OK.
bool EndsWithOk(HDLG dialog, UINT message, WPARAM wParam) {
    const WPARAM id = wParam & 0xFFFF;
    if (message != WM_COMMAND || (id != IDOK && id != IDCANCEL)) return false;
    EndDialog(dialog, static_cast<std::intptr_t>(id));
    return id == IDOK;
}

void Run(const DialogTemplate& form, DLGPROC procedure, const DialogWorld& of) {
    world = &of;
    DialogBoxParamA(form, of.state.window, procedure, 0);
    world = nullptr;
}

// ---- Select effect

void FillList(HDLG dialog) {
    const VisualEffectSystem& effects = world->engine.effects;
    for (int i = 0; i < effects.GetEffectCount(); ++i) {
        SendDlgItemMessageA(dialog, kEffectList, LB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(effects.GetEffectName(i).c_str()));
    }
}

std::string EntryText(HDLG dialog, WPARAM entry) {
    const LRESULT length = SendDlgItemMessageA(dialog, kEffectList, LB_GETTEXTLEN, entry, 0);
    std::string text(static_cast<std::size_t>(length) + 1, 0);
    SendDlgItemMessageA(dialog, kEffectList, LB_GETTEXT, entry, reinterpret_cast<LPARAM>(text.data()));
    text.pop_back();
    return text;
}

void TakeSelected(HDLG dialog) {
    const VisualEffectSystem& effects = world->engine.effects;
    const int count = effects.GetEffectCount();
    for (int entry = 0; entry < count; ++entry) {
        const WPARAM index = static_cast<WPARAM>(entry);
        if (SendDlgItemMessageA(dialog, kEffectList, LB_GETSEL, index, 0) <= 0) continue;
        const std::string name = EntryText(dialog, index);
        for (int i = 0; i < count; ++i) {
            if (name != effects.GetEffectName(i).c_str()) continue;
            world->state.current_effect = i;
            return;
        }
        return;
    }
}

bool SelectEffectProcedure(HDLG dialog, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_INITDIALOG) FillList(dialog);
    const bool twice = message == WM_COMMAND && wParam == (kEffectList | LBN_DBLCLK << 16);
    if (EndsWithOk(dialog, message, twice ? IDOK : wParam)) TakeSelected(dialog);
    return true;
}

// ---- Detail level

bool DetailLevelProcedure(HDLG dialog, UINT message, WPARAM wParam, LPARAM) {
    constexpr int kLongest = 127;
    char text[kLongest];
    VisualEffectSystem& effects = world->engine.effects;
    if (message == WM_INITDIALOG) {
        std::snprintf(text, sizeof(text), "%i", effects.DetailLevel());
        SendDlgItemMessageA(dialog, kDetailEdit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
    }
    if (EndsWithOk(dialog, message, wParam)) {
        GetDlgItemTextA(dialog, kDetailEdit, text, kLongest);
        effects.SetDetailLevel(RoundToInt(std::strtod(text, nullptr)));
    }
    return true;
}

bool InfoProcedure(HDLG dialog, UINT message, WPARAM wParam, LPARAM) {
    EndsWithOk(dialog, message, wParam);
    return true;
}

}   // namespace

void SelectEffect(Engine& engine, TesterState& state) {
    Run(SelectEffectDialog(), SelectEffectProcedure, {engine, state});
}

void SetDetailLevel(Engine& engine, TesterState& state) {
    Run(DetailLevelDialog(), DetailLevelProcedure, {engine, state});
}

void ShowInfo(const TesterState& state) { DialogBoxParamA(InfoDialog(), state.window, InfoProcedure, 0); }

void ChooseBackground(Engine& engine, TesterState& state) {
    constexpr int kLongestPath = 256;
    constexpr char kFilters[] = "graphics files\0*.jpg;*.tga;*.bmp;*.dds\0all file\0*.*\0";
    char path[kLongestPath] = "";
    const OPENFILENAMEA choice = {
        state.window, kFilters, path, kLongestPath, "Chose a background texture", OFN_READONLY | OFN_FILEMUSTEXIST};
    if (!GetOpenFileNameA(choice)) return;
    std::snprintf(state.background_path, sizeof(state.background_path), "%s", path);
    StoreBackgroundPath(path);
    ShowBackgroundPicture(engine, state);
}

void RemoveBackground(Engine& engine, TesterState& state) {
    state.background_path[0] = 0;
    StoreBackgroundPath("");
    ShowBackgroundPicture(engine, state);
}

}   // namespace sparkrig
