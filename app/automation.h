// Runs without a window and without a user: captures, recordings, the contact sheet, the check.
#pragma once
#include "app/options.h"

namespace sparkrig {

/// 0 done, 1 findings, 2 wrong usage, 3 when the environment cannot do it.
enum AutomationEnd : int { kDone = 0, kFindings = 1, kWrongUsage = 2, kCannot = 3 };

/// Plays what the options ask for. Everything but success has one sentence on the error stream.
int RunAutomation(const Options& options);

}   // namespace sparkrig
