// What stands behind an HDLG. For this folder alone.
#pragma once
#include <string>
#include <vector>

#include "platform/window/dialog.h"

namespace sparkrig {

struct ListEntry {
    std::string text;
    std::string key;   // in small letters: what it is sorted and found by
};

struct DialogItem {
    const DialogControl* control;
    std::string text;
    std::vector<ListEntry> entries;
    int selected = -1;
    bool sorted = true;   // entries are sorted when they are next looked at

    void Add(const char* entry);
    void Sort();
    bool TakesFocus() const;
};

struct Dialog {
    const DialogTemplate& form;
    HWND owner;
    DLGPROC procedure;
    std::vector<DialogItem> items = {};
    bool done = false;
    std::intptr_t result = 0;

    DialogItem* Find(UINT id);
    void Notify(UINT id, UINT what) { procedure(this, WM_COMMAND, id | what << 16, 0); }
};

/// Shows the dialog until it is done.
void RunDialog(Dialog& dialog);

}   // namespace sparkrig
