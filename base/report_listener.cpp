#include "base/report_listener.h"

namespace sparkrig {
namespace {

ReportListener listener = nullptr;
void* listener_context = nullptr;
SourceFileScope* innermost = nullptr;

}   // namespace

void SetReportListener(ReportListener new_listener, void* context) {
    listener = new_listener;
    listener_context = context;
}

void NotifyReportListener(ReportKind kind, const char* class_name, const char* message) {
    if (!listener) return;
    const char* file = innermost ? innermost->File() : "";
    listener({kind, class_name, message, file, innermost ? innermost->Place() : TextPlace()}, listener_context);
}

SourceFileScope::SourceFileScope(const char* file) : SourceFileScope(file, nullptr, nullptr) {}

SourceFileScope::SourceFileScope(const char* file, PlaceOf place_of, const void* reader)
    : file_(file ? file : ""), place_of_(place_of), reader_(reader), outer_(innermost) {
    if (outer_) outer_->inner_ = this;
    innermost = this;
}

SourceFileScope::~SourceFileScope() {
    if (outer_) outer_->inner_ = inner_;
    (inner_ ? inner_->outer_ : innermost) = outer_;
}

void SetSourcePlace(TextPlace place) {
    if (innermost) innermost->SetPlace(place);
}

}   // namespace sparkrig
