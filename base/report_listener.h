// Who hears of every error and warning, and the place in a text file that they are about.
#pragma once
#include <string>

namespace sparkrig {

enum class ReportKind { Warning, Error };

/// One report while it happens; the texts live as long as the call.
struct Report {
    ReportKind kind;
    const char* class_name;
    const char* message;
    const char* file;   // the innermost text file being read; empty for none
    int line;           // from 1; 0 when it is not known
};

using ReportListener = void (*)(const Report& report, void* context);

/// The one listener of both families, called for every report, also for warnings that the log folds or drops. Null for
/// none. `context` is passed on as it is.
void SetReportListener(ReportListener listener, void* context);

/// For the reporters: tells the listener, with the current place.
void NotifyReportListener(ReportKind kind, const char* class_name, const char* message);

/// While it lives, reports are about this text file. Of several the one made last is current; they may end in any
/// order, so that a reader can hold one as long as its file is open.
class SourceFileScope {
  public:
    /// Tells the line, from 1, when a report asks for it.
    using LineOf = int (*)(const void* reader);

    explicit SourceFileScope(const char* file);
    SourceFileScope(const char* file, LineOf line_of, const void* reader);
    ~SourceFileScope();
    SourceFileScope(const SourceFileScope&) = delete;
    SourceFileScope& operator=(const SourceFileScope&) = delete;

    void SetLine(int line) { line_ = line; }
    const char* File() const { return file_.c_str(); }
    int Line() const { return line_of_ ? line_of_(reader_) : line_; }

  private:
    std::string file_;
    int line_ = 0;
    LineOf line_of_ = nullptr;
    const void* reader_ = nullptr;
    SourceFileScope* outer_;
    SourceFileScope* inner_ = nullptr;
};

/// The line of the innermost file, from 1; 0 for unknown. Nothing happens when no file is being read.
void SetSourceLine(int line);

}   // namespace sparkrig
