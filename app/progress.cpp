#include "app/progress.h"

#include <cstdio>

#include "platform/system/system.h"

namespace sparkrig {

Progress::Progress(const char* what, int total) : what_(what), total_(total), shown_(IsTerminal(stderr)) {}

Progress::~Progress() {
    if (shown_) std::fputs("\r\033[K", stderr);
}

void Progress::Next(const char* name) {
    ++step_;
    if (shown_) std::fprintf(stderr, "\r\033[K%s %d of %d %s", what_, step_, total_, name);
}

}   // namespace sparkrig
