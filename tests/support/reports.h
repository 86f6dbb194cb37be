// What was reported while it lived: "warning CLASS: message" or "error CLASS: message", with " @file:line" behind it
// while a text file is being read.
#pragma once
#include <string>
#include <vector>

#include "base/error.h"
#include "base/report_listener.h"

namespace sparkrig {

class Reports {
  public:
    Reports() { SetReportListener(Hear, this); }
    ~Reports() { SetReportListener(nullptr, nullptr); }
    Reports(const Reports&) = delete;
    Reports& operator=(const Reports&) = delete;

    const std::vector<std::string>& All() const { return all_; }
    std::string Last() const { return all_.empty() ? "" : all_.back(); }

  private:
    static void Hear(const Report& report, void* context) {
        std::string text = report.kind == ReportKind::Error ? "error " : "warning ";
        text += std::string(report.class_name) + ": " + report.message;
        if (*report.file) text += std::string(" @") + report.file + ":" + std::to_string(report.line);
        static_cast<Reports*>(context)->all_.push_back(text);
    }

    std::vector<std::string> all_;
};

}   // namespace sparkrig
