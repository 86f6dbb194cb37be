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

std::string PlaceText(const std::string& file, TextPlace place) {
    if (file.empty()) return {};
    std::string text = WithSlashes(file) + ":";
    if (place.line > 0) text += std::to_string(place.line) + ":";
    if (place.column > 0) text += std::to_string(place.column) + ":";
    return text + " ";
}

ProblemPrinter::ProblemPrinter() { SetReportListener(Listen, this); }

ProblemPrinter::~ProblemPrinter() { SetReportListener(nullptr, nullptr); }

void ProblemPrinter::Listen(const Report& report, void* context) {
    auto& printer = *static_cast<ProblemPrinter*>(context);
    const Problem problem = {report.kind, report.file, report.place, OneLine(report.message)};
    printer.Print(problem);
    if (printer.kept_) printer.kept_->push_back(problem);
}

std::vector<ProblemPrinter::Problem> ProblemPrinter::PrintAndKeep(const std::function<void()>& work) {
    std::vector<Problem> kept;
    kept_ = &kept;
    work();
    kept_ = nullptr;
    return kept;
}

void ProblemPrinter::Print(const Problem& problem) {
    const bool has_file = !problem.file.empty();
    const std::string line = (has_file ? PlaceText(problem.file, problem.place) : PlaceText(file_, place_)) +
                             (problem.kind == ReportKind::Error ? "error: " : "warning: ") + problem.text;
    if (!printed_.insert(line).second) return;
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

}   // namespace sparkrig
