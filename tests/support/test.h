// What most tests use: GoogleTest with its usual matchers, and what was reported.
#pragma once
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "base/error.h"
#include "base/report_listener.h"

namespace sparkrig {

using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::FloatEq;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

/// "CLASS: message" of the error that an action throws; "no error" when it throws none.
template <class Action>
std::string ErrorOf(Action action) {
    try {
        action();
    } catch (const ErrorRecord& record) {
        return std::string(record.class_name) + ": " + record.message;
    }
    return "no error";
}

/// What was reported while it lived: "warning CLASS: message" or "error CLASS: message", with " @file:line" behind it
/// while a text file is being read; or what a writer of its own makes of a report.
class Reports {
  public:
    using Writer = std::string (*)(const Report&);
    explicit Reports(Writer write = Whole) : write_(write) { SetReportListener(Hear, this); }
    ~Reports() { SetReportListener(nullptr, nullptr); }
    Reports(const Reports&) = delete;
    Reports& operator=(const Reports&) = delete;

    const std::vector<std::string>& All() const { return all_; }
    std::string Last() const { return all_.empty() ? "" : all_.back(); }
    void Clear() { all_.clear(); }

  private:
    static std::string Whole(const Report& report) {
        std::string text = report.kind == ReportKind::Error ? "error " : "warning ";
        text += std::string(report.class_name) + ": " + report.message;
        if (*report.file) text += std::string(" @") + report.file + ":" + std::to_string(report.place.line);
        return text;
    }
    static void Hear(const Report& report, void* context) {
        auto& reports = *static_cast<Reports*>(context);
        reports.all_.push_back(reports.write_(report));
    }

    Writer write_;
    std::vector<std::string> all_;
};

}   // namespace sparkrig
