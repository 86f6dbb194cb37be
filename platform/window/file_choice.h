// Choosing one existing file: with the desktop's own chooser where there is one, else in a dialog of ours.
#pragma once
#include "platform/window/window.h"

namespace sparkrig {

inline constexpr DWORD OFN_READONLY = 0x1, OFN_FILEMUSTEXIST = 0x1000;

struct OPENFILENAMEA {
    HWND hwndOwner;
    const char* lpstrFilter;   // pairs of a name and patterns like "*.jpg;*.tga", each zero-terminated, then a zero
    char* lpstrFile;           // receives the absolute path
    int nMaxFile;              // its size; longer paths cannot be chosen
    const char* lpstrTitle;
    DWORD Flags;
};

/// True when the user has chosen a file; the buffer is left alone otherwise.
bool GetOpenFileNameA(const OPENFILENAMEA& choice);

}   // namespace sparkrig
