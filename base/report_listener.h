// Who hears of every error and warning, and the place in a text file that they are about.
#pragma once
#include <compare>
#include <string>

namespace sparkrig {

enum class ReportKind { Warning, Error };

/// A place in a text file. Both count from 1; 0 when not known.
struct TextPlace {
    int line = 0, column = 0;   // the column in bytes
    auto operator<=>(const TextPlace&) const = default;
};

/// One report while it happens; the texts live as long as the call.
struct Report {
    ReportKind kind;
    const char* class_name;
    const char* message;
    const char* file;   // the innermost text file being read; empty for none
    TextPlace place;
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
    /// Tells the place when a report asks for it.
    using PlaceOf = TextPlace (*)(const void* reader);

    explicit SourceFileScope(const char* file);
    SourceFileScope(const char* file, PlaceOf place_of, const void* reader);
    ~SourceFileScope();
    SourceFileScope(const SourceFileScope&) = delete;
    SourceFileScope& operator=(const SourceFileScope&) = delete;

    void SetPlace(TextPlace place) { place_ = place; }
    const char* File() const { return file_.c_str(); }
    TextPlace Place() const { return place_of_ ? place_of_(reader_) : place_; }

  private:
    std::string file_;
    TextPlace place_;
    PlaceOf place_of_ = nullptr;
    const void* reader_ = nullptr;
    SourceFileScope* outer_;
    SourceFileScope* inner_ = nullptr;
};

/// The place in the innermost file. Nothing happens when no file is being read.
void SetSourcePlace(TextPlace place);

}   // namespace sparkrig
