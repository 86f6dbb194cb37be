#include "platform/window/dialog.h"

#include <algorithm>
#include <cstring>

#include "platform/system/ascii.h"
#include "platform/window/dialog_object.h"

namespace sparkrig {

namespace {

std::function<void(HDLG)>& Driver() {
    static std::function<void(HDLG)> driver;
    return driver;
}

LRESULT AnswerList(DialogItem& list, UINT message, WPARAM wParam, LPARAM lParam) {
    list.Sort();
    const bool known = wParam < list.entries.size();
    switch (message) {
        case LB_RESETCONTENT:
            list.entries.clear();
            list.selected = -1;
            return 0;
        case LB_SETCURSEL: list.selected = known ? static_cast<int>(wParam) : -1; return list.selected;
        case LB_GETSEL: return known ? static_cast<int>(wParam) == list.selected : LB_ERR;
        case LB_GETCURSEL: return list.selected;
        case LB_GETTEXTLEN: return known ? static_cast<LRESULT>(list.entries[wParam].text.size()) : LB_ERR;
        case LB_GETTEXT:
            if (!known) return LB_ERR;
            std::strcpy(reinterpret_cast<char*>(lParam), list.entries[wParam].text.c_str());
            return static_cast<LRESULT>(list.entries[wParam].text.size());
        case LB_GETCOUNT: return static_cast<LRESULT>(list.entries.size());
        default: return LB_ERR;
    }
}

}   // namespace

void DialogItem::Add(const char* entry) {
    std::string key = entry;
    std::transform(key.begin(), key.end(), key.begin(), AsciiLower);
    entries.push_back({entry, std::move(key)});
    sorted = (control->style & LBS_SORT) == 0;
}

void DialogItem::Sort() {
    if (sorted) return;
    std::ranges::stable_sort(entries, {}, &ListEntry::key);
    sorted = true;
}

bool DialogItem::TakesFocus() const {
    return control->kind == ControlKind::Button || control->kind == ControlKind::Edit ||
           control->kind == ControlKind::ListBox;
}

DialogItem* Dialog::Find(UINT id) {
    const auto place = std::ranges::find_if(items, [&](const DialogItem& item) { return item.control->id == id; });
    return place == items.end() ? nullptr : &*place;
}

std::intptr_t DialogBoxParamA(const DialogTemplate& form, HWND owner, DLGPROC procedure, LPARAM parameter) {
    Dialog dialog{form, owner, procedure};
    for (const DialogControl& control : form.controls) dialog.items.push_back({&control, control.text, {}});
    procedure(&dialog, WM_INITDIALOG, 0, parameter);
    if (Driver()) {
        Driver()(&dialog);
    } else {
        RunDialog(dialog);
    }
    return dialog.result;
}

void EndDialog(HDLG dialog, std::intptr_t result) {
    dialog->done = true;
    dialog->result = result;
}

LRESULT SendDlgItemMessageA(HDLG dialog, UINT id, UINT message, WPARAM wParam, LPARAM lParam) {
    DialogItem* item = dialog->Find(id);
    if (!item) return LB_ERR;
    if (message == WM_SETTEXT) {
        item->text = reinterpret_cast<const char*>(lParam);
        return TRUE;
    }
    if (message != LB_ADDSTRING) return AnswerList(*item, message, wParam, lParam);
    item->Add(reinterpret_cast<const char*>(lParam));
    return static_cast<LRESULT>(item->entries.size()) - 1;
}

int GetDlgItemTextA(HDLG dialog, UINT id, char* buffer, int size) {
    if (size <= 0) return 0;
    const DialogItem* item = dialog->Find(id);
    const std::size_t copied = item ? item->text.copy(buffer, static_cast<std::size_t>(size) - 1) : 0;
    buffer[copied] = 0;
    return static_cast<int>(copied);
}

void SetDialogDriver(std::function<void(HDLG)> driver) { Driver() = std::move(driver); }

void PressButton(HDLG dialog, UINT id) { dialog->Notify(id, BN_CLICKED); }

}   // namespace sparkrig
