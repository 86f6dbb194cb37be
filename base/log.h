// The program's log file and its clock.
#pragma once

namespace sparkrig {

/// Appends one line to logfile.txt in the directory that was current at the first call; in a deleted one nothing is
/// logged. The first entry of a run empties the file; the 500000th is the last.
void WriteLog(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// From now on nothing is logged: for tools that print what is reported, and leave the program's log alone.
void SilenceLog();

/// The program's clock in seconds: monotonic, high resolution.
double GetSeconds();

}   // namespace sparkrig
