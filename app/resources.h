// The texts of the program by their resource identifiers.
#pragma once
#include "platform/system/win_types.h"

namespace sparkrig {

inline constexpr UINT kWindowTitle = 103, kWindowText = 106, kWindowClassName = 109;
inline constexpr UINT kCommandExit = 105;

inline constexpr char kProgramName[] = "Sparkrig", kProgramVersion[] = "1.3";

/// Copies at most size - 1 characters and terminates them; the number of characters copied, 0 for an unknown id.
int LoadStringA(UINT id, char* buffer, int size);

}   // namespace sparkrig
