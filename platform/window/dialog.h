// Modal dialogs from resource tables, in the shape of the Win32 ones. They stand above the last frame presented.
#pragma once
#include <functional>

#include "platform/window/resources.h"
#include "platform/window/window.h"

namespace sparkrig {

struct Dialog;
using HDLG = Dialog*;
/// WM_INITDIALOG comes first; WM_COMMAND has the control's id in the low word of wParam and what happened in the high
/// word. True for what was handled.
using DLGPROC = bool (*)(HDLG dialog, UINT message, WPARAM wParam, LPARAM lParam);

inline constexpr UINT WM_SETTEXT = 0x0C, WM_INITDIALOG = 0x110;
inline constexpr UINT LB_ADDSTRING = 0x180, LB_RESETCONTENT = 0x184, LB_SETCURSEL = 0x186, LB_GETSEL = 0x187,
                      LB_GETCURSEL = 0x188, LB_GETTEXT = 0x189, LB_GETTEXTLEN = 0x18A, LB_GETCOUNT = 0x18B;
inline constexpr LRESULT LB_ERR = -1;
inline constexpr UINT BN_CLICKED = 0, LBN_SELCHANGE = 1, LBN_DBLCLK = 2;

/// Runs a dialog until its procedure ends it; the result is that of EndDialog. Its messages come while no frame is
/// drawn. Closing the owner cancels the dialog first.
std::intptr_t DialogBoxParamA(const DialogTemplate& form, HWND owner, DLGPROC procedure, LPARAM parameter);
void EndDialog(HDLG dialog, std::intptr_t result);

/// Texts are zero-terminated bytes of any kind, given as pointers in lParam; a list with LBS_SORT keeps its entries in
/// order, ignoring letter case. LB_ERR for an entry or a control that is not there.
LRESULT SendDlgItemMessageA(HDLG dialog, UINT id, UINT message, WPARAM wParam, LPARAM lParam);
/// Copies at most size - 1 bytes and terminates them; the number of bytes copied.
int GetDlgItemTextA(HDLG dialog, UINT id, char* buffer, int size);

/// For tests: answers dialogs in the place of a user, right after WM_INITDIALOG. Empty: the user again.
void SetDialogDriver(std::function<void(HDLG)> driver);
/// What a press of the button does.
void PressButton(HDLG dialog, UINT id);

}   // namespace sparkrig
