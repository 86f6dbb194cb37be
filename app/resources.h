// The resources of the program by their identifiers: texts, menu, dialogs, icons.
#pragma once
#include "platform/window/resources.h"

namespace sparkrig {

inline constexpr UINT kWindowTitle = 103, kWindowText = 106, kWindowClassName = 109;
inline constexpr UINT kCommandInfo = 104, kCommandExit = 105, kCommandSelectEffect = 32772,
                      kCommandSetBackground = 32773, kCommandRemoveBackground = 32774, kCommandDetailLevel = 32775;
inline constexpr UINT kEffectList = 1002, kDetailEdit = 1003;

inline constexpr char kProgramName[] = "Sparkrig", kProgramVersion[] = "1.3";

/// Copies at most size - 1 characters and terminates them; the number of characters copied, 0 for an unknown id.
int LoadStringA(UINT id, char* buffer, int size);

/// Menu 109, and the dialogs 138, 140 and 103.
MenuTemplate MainMenu();
const DialogTemplate& SelectEffectDialog();
const DialogTemplate& DetailLevelDialog();
const DialogTemplate& InfoDialog();

/// Icon 107, 32 x 32: sparks that fly from a point. The small icon 108 is made from it by the desktop.
IconImage ProgramIcon();

}   // namespace sparkrig
