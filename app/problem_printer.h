// What a check finds, one line a problem.
#pragma once
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "base/report_listener.h"

namespace sparkrig {

/// A name with "/" between its components, as other programs want it.
std::string WithSlashes(std::string path);

/// "file:line:column: ", without what is not known; empty for no file.
std::string PlaceText(const std::string& file, TextPlace place);

/// Prints every report as "file:line:column: error: text" (or "warning:"), each once. Listens while it lives.
class ProblemPrinter {
  public:
    struct Problem {
        ReportKind kind;
        std::string file;   // empty for none, which is the place that was set
        TextPlace place;
        std::string text;
    };

    ProblemPrinter();
    ~ProblemPrinter();
    ProblemPrinter(const ProblemPrinter&) = delete;
    ProblemPrinter& operator=(const ProblemPrinter&) = delete;

    /// The place of reports that are about no text file themselves: where the thing that is loaded was named.
    void SetPlace(const std::string& file, TextPlace place) { file_ = WithSlashes(file), place_ = place; }
    void Print(const Problem& problem);
    /// Does the work and prints what it reports; that is returned too, for other places that name the same thing.
    std::vector<Problem> PrintAndKeep(const std::function<void()>& work);
    int Count() const { return static_cast<int>(printed_.size()); }

  private:
    static void Listen(const Report& report, void* printer);

    std::string file_;
    TextPlace place_;
    std::set<std::string> printed_;
    std::vector<Problem>* kept_ = nullptr;   // by PrintAndKeep, while it works
};

}   // namespace sparkrig
