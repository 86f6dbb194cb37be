// The parts of choosing a file. For this folder alone.
#pragma once
#include <optional>
#include <string>
#include <vector>

#include "platform/window/window.h"

namespace sparkrig {

struct FileFilter {
    std::string name;
    std::vector<std::string> patterns;   // "*.jpg"; "*.*" is every file
};

/// The pairs of an lpstrFilter.
std::vector<FileFilter> SplitFilters(const char* pairs);

bool MatchesFilter(const FileFilter& filter, const std::string& name);

/// Asks the desktop's chooser, a program of its own. Nothing when there is none; an empty path when it was cancelled.
std::optional<std::string> AskDesktop(const char* title, const std::vector<FileFilter>& filters);

/// Asks in a dialog of ours. Empty when it was cancelled.
///   longest  that a path may be, in bytes
std::string AskInDialog(HWND owner, const char* title, const std::vector<FileFilter>& filters, std::size_t longest);

}   // namespace sparkrig
