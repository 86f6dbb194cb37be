#include <algorithm>
#include <filesystem>

#include "platform/system/ascii.h"
#include "platform/window/dialog.h"
#include "platform/window/file_choice_object.h"

namespace sparkrig {

namespace {

namespace fs = std::filesystem;

constexpr UINT kFolder = 10, kList = 11, kName = 12, kFilter = 13, kProblem = 14;

// clang-format off
constexpr DialogControl kControls[] = {
    {ControlKind::Text,    kFolder,    7,   7, 286,  10, 0, ""},
    {ControlKind::ListBox, kList,      7,  20, 286, 150, 0, ""},
    {ControlKind::Edit,    kName,      7, 176, 180,  14, 0, ""},
    {ControlKind::Button,  kFilter,  193, 176, 100,  14, 0, ""},
    {ControlKind::Text,    kProblem,   7, 198, 180,  10, 0, ""},
    {ControlKind::Button,  IDOK,     193, 196,  48,  14, BS_DEFPUSHBUTTON, "Open"},
    {ControlKind::Button,  IDCANCEL, 245, 196,  48,  14, 0, "Cancel"},
};
// clang-format on

struct Chooser {
    const std::vector<FileFilter>& filters;
    std::size_t longest;
    fs::path folder;
    std::size_t filter = 0;
    std::string chosen = {};
};

Chooser* chooser = nullptr;   // of the dialog that is open

void SetText(HDLG dialog, UINT id, const std::string& text) {
    SendDlgItemMessageA(dialog, id, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

bool LessIgnoringCase(const std::string& a, const std::string& b) {
    return std::ranges::lexicographical_compare(a, b, {}, AsciiLower, AsciiLower);
}

/// Folders first, with a "/" behind the name; hidden ones are left out.
void ListFolder(HDLG dialog) {
    std::vector<std::string> folders = {"../"}, files;
    std::error_code error;
    for (fs::directory_iterator entry(chooser->folder, fs::directory_options::skip_permission_denied, error), end;
         !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        std::error_code unknown;
        if (name.starts_with('.')) continue;
        if (entry->is_directory(unknown)) {
            folders.push_back(name + "/");
        } else if (MatchesFilter(chooser->filters[chooser->filter], name)) {
            files.push_back(name);
        }
    }
    std::ranges::sort(folders, LessIgnoringCase);
    std::ranges::sort(files, LessIgnoringCase);
    SendDlgItemMessageA(dialog, kList, LB_RESETCONTENT, 0, 0);
    for (const auto* names : {&folders, &files}) {
        for (const std::string& name : *names) {
            SendDlgItemMessageA(dialog, kList, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
        }
    }
    SetText(dialog, kFolder, chooser->folder.string());
    SetText(dialog, kFilter, chooser->filters[chooser->filter].name);
}

void TakeName(HDLG dialog) {
    const LRESULT entry = SendDlgItemMessageA(dialog, kList, LB_GETCURSEL, 0, 0);
    if (entry < 0) return;
    const WPARAM index = static_cast<WPARAM>(entry);
    std::string name(static_cast<std::size_t>(SendDlgItemMessageA(dialog, kList, LB_GETTEXTLEN, index, 0)) + 1, 0);
    SendDlgItemMessageA(dialog, kList, LB_GETTEXT, index, reinterpret_cast<LPARAM>(name.data()));
    SetText(dialog, kName, name.c_str());
}

void OpenNamed(HDLG dialog) {
    constexpr int kMostBytes = 1024;
    char name[kMostBytes];
    if (GetDlgItemTextA(dialog, kName, name, kMostBytes) == 0) return;
    std::error_code error;
    const fs::path path = (chooser->folder / name).lexically_normal();
    if (fs::is_directory(path, error)) {
        chooser->folder = path.has_filename() ? path : path.parent_path();
        SetText(dialog, kName, "");
        SetText(dialog, kProblem, "");
        ListFolder(dialog);
    } else if (!fs::exists(path, error)) {
        SetText(dialog, kProblem, "There is no such file.");
    } else if (path.string().size() > chooser->longest) {
        SetText(dialog, kProblem, "The path is too long.");
    } else {
        chooser->chosen = path.string();
        EndDialog(dialog, IDOK);
    }
}

bool ChooserProcedure(HDLG dialog, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_INITDIALOG) {
        ListFolder(dialog);
        return true;
    }
    if (message != WM_COMMAND) return false;
    const bool twice = wParam >> 16 == LBN_DBLCLK;
    switch (wParam & 0xFFFF) {
        case kList:
            TakeName(dialog);
            if (twice) OpenNamed(dialog);
            return true;
        case kFilter:
            chooser->filter = (chooser->filter + 1) % chooser->filters.size();
            ListFolder(dialog);
            return true;
        case IDOK: OpenNamed(dialog); return true;
        case IDCANCEL: EndDialog(dialog, IDCANCEL); return true;
        default: return false;
    }
}

}   // namespace

std::string AskInDialog(HWND owner, const char* title, const std::vector<FileFilter>& filters, std::size_t longest) {
    const std::vector<FileFilter> every_file = {{"*.*", {"*.*"}}};
    std::error_code error;
    Chooser state = {filters.empty() ? every_file : filters, longest, fs::current_path(error)};
    chooser = &state;
    const DialogTemplate form = {title, 300, 218, kControls};
    DialogBoxParamA(form, owner, ChooserProcedure, 0);
    chooser = nullptr;
    return state.chosen;
}

}   // namespace sparkrig
