#pragma once
#include <set>
#include <string>

#include "app/engine.h"
#include "base/report_listener.h"

namespace sparkrig {

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

/// Loads every configuration file and everything it names, and prints each problem on the standard output. The engine
/// has been started. True when there is none.
bool CheckEverything(Engine& engine);

}   // namespace sparkrig
