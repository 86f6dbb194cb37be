#include "platform/window/file_choice.h"

#include <fnmatch.h>

#include <algorithm>
#include <cstring>

#include "platform/system/ascii.h"
#include "platform/window/file_choice_object.h"
#include "platform/window/window_object.h"

namespace sparkrig {

std::vector<FileFilter> SplitFilters(const char* pairs) {
    std::vector<FileFilter> filters;
    const auto take = [&] {
        std::string text = pairs;
        pairs += text.size() + 1;
        return text;
    };
    while (pairs && *pairs) {
        FileFilter filter = {take(), {}};
        const std::string patterns = take();
        for (std::size_t from = 0; from < patterns.size();) {
            const std::size_t end = std::min(patterns.find(';', from), patterns.size());
            filter.patterns.push_back(patterns.substr(from, end - from));
            from = end + 1;
        }
        filters.push_back(std::move(filter));
    }
    return filters;
}

bool MatchesFilter(const FileFilter& filter, const std::string& name) {
    return std::any_of(filter.patterns.begin(), filter.patterns.end(), [&](const std::string& pattern) {
        return pattern == "*.*" || fnmatch(pattern.c_str(), name.c_str(), FNM_CASEFOLD) == 0;
    });
}

bool GetOpenFileNameA(const OPENFILENAMEA& choice) {
    const std::vector<FileFilter> filters = SplitFilters(choice.lpstrFilter);
    const std::size_t longest = static_cast<std::size_t>(choice.nMaxFile) - 1;
    std::optional<std::string> path;
    // Another window takes the focus, and full screen ends with it.
    if (HasDisplay() && !IsFullScreen(*choice.hwndOwner)) path = AskDesktop(choice.lpstrTitle, filters);
    if (!path) path = AskInDialog(choice.hwndOwner, choice.lpstrTitle, filters, longest);
    if (path->empty() || path->size() > longest) return false;
    std::memcpy(choice.lpstrFile, path->c_str(), path->size() + 1);
    return true;
}

}   // namespace sparkrig
