#include "app/resources.h"

#include <cstdio>
#include <cstring>

namespace sparkrig {

namespace {

struct StringRow {
    UINT id;
    const char* text;
};

constexpr StringRow kStrings[] = {
    {kWindowTitle, kProgramName},
    {kWindowText, kProgramName},
    {kWindowClassName, "KRN_DEFAULT"},
};

}   // namespace

int LoadStringA(UINT id, char* buffer, int size) {
    if (size <= 0) return 0;
    buffer[0] = 0;
    for (const StringRow& row : kStrings) {
        if (row.id == id) std::snprintf(buffer, static_cast<std::size_t>(size), "%s", row.text);
    }
    return static_cast<int>(std::strlen(buffer));
}

}   // namespace sparkrig
