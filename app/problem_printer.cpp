#include "app/problem_printer.h"

#include <algorithm>
#include <cstdio>

namespace sparkrig {

namespace {

std::string OneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}   // namespace

std::string WithSlashes(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

ProblemPrinter::ProblemPrinter() { SetReportListener(Listen, this); }

ProblemPrinter::~ProblemPrinter() { SetReportListener(nullptr, nullptr); }

void ProblemPrinter::Listen(const Report& report, void* printer) {
    static_cast<ProblemPrinter*>(printer)->Print(report);
}

void ProblemPrinter::Print(const Report& report) {
    const bool has_file = report.file[0] != 0;
    std::string place = has_file ? WithSlashes(report.file) : file_;
    const int line = has_file ? report.line : line_;
    if (line > 0) place += ":" + std::to_string(line);
    const std::string text = OneLine(report.message);
    const char* kind = report.kind == ReportKind::Error ? "error" : "warning";
    const std::string problem = place + ": " + kind + ": " + text;
    if (!printed_.insert(problem).second) return;
    std::printf("%s\n", problem.c_str());
    std::fflush(stdout);
}

}   // namespace sparkrig
