#pragma once
#include <set>
#include <string>

#include "base/report_listener.h"

namespace sparkrig {

/// A name with "/" between its components, as other programs want it.
std::string WithSlashes(std::string path);

/// Prints every report as "file:line: error: text" (or "warning:"), each once. Listens while it lives.
class ProblemPrinter {
  public:
    ProblemPrinter();
    ~ProblemPrinter();
    ProblemPrinter(const ProblemPrinter&) = delete;
    ProblemPrinter& operator=(const ProblemPrinter&) = delete;

    /// The place of reports that are about no text file themselves: where the thing that is loaded was named.
    void SetPlace(const std::string& file, int line) { file_ = file, line_ = line; }
    int Count() const { return static_cast<int>(printed_.size()); }

  private:
    static void Listen(const Report& report, void* printer);
    void Print(const Report& report);

    std::string file_;
    int line_ = 0;
    std::set<std::string> printed_;
};

}   // namespace sparkrig
