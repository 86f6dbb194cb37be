#include "base/error.h"

#include <cstdio>
#include <cstring>

#include "base/log.h"
#include "base/report_listener.h"
#include "base/reporter_family.h"

namespace sparkrig {
namespace {

constinit ReporterFamily foundation("ErrorClass: Maximum number of warnings reached!");
constinit ReporterFamily engine("KRN_Base: Maximum number of warnings reached!");

constexpr char kSimpleName[] = "ErrorClassSimple";

/// A formatted message of at most 1023 characters, with "prefix: " in front of it where there is a prefix.
class Message {
  public:
    Message(const char* prefix, const char* format, std::va_list arguments) {
        if (prefix) std::snprintf(text_, sizeof text_, "%s: ", prefix);
        const std::size_t used = std::strlen(text_);
        std::vsnprintf(text_ + used, sizeof text_ - used, format, arguments);
    }
    const char* c_str() const { return text_; }

  private:
    char text_[sizeof(ErrorRecord::message)] = "";
};

void CopyName(char (&destination)[32], const char* name) {
    std::snprintf(destination, sizeof destination, "%s", name ? name : "");
}

template <class Record>
[[noreturn]] void Throw(const ReporterFamily& family, const char* class_name, const Message& message) {
    NotifyReportListener(ReportKind::Error, class_name, message.c_str());
    family.LogError(class_name, message.c_str());
    Record record{};
    CopyName(record.class_name, class_name);
    std::snprintf(record.message, sizeof record.message, "%s", message.c_str());
    throw record;
}

void Warn(ReporterFamily& family, const char* class_name, const Message& message) {
    NotifyReportListener(ReportKind::Warning, class_name, message.c_str());
    family.Warn(class_name, message.c_str());
}

}   // namespace

// ---- ReporterFamily

void ReporterFamily::Leave() {
    if (--live_reporters_ > 0 || pending_repeats_ == 0) return;
    WriteLog("Warning Repeat: %i", static_cast<int>(pending_repeats_));
    pending_repeats_ = 0;
}

void ReporterFamily::Warn(const char* class_name, const char* message) {
    if (logged_warnings_ >= max_warnings_) return;
    char line[kLineBytes];
    std::snprintf(line, sizeof line, "Warning:%s: %s", class_name, message);
    if (std::strcmp(line, last_line_) == 0) {
        if (pending_repeats_ < max_repeats_) ++pending_repeats_;
        return;
    }
    // The first warning of the process is not remembered: its repetition is logged once more.
    if (logged_warnings_ > 0) std::memcpy(last_line_, line, sizeof line);
    if (pending_repeats_ > 0) {
        const bool saturated = pending_repeats_ == max_repeats_;
        WriteLog("Warning Repeat: %s%i", saturated ? ">" : "", static_cast<int>(pending_repeats_));
    }
    ++logged_warnings_;
    pending_repeats_ = 0;
    WriteLog("%s", line);
    if (logged_warnings_ == max_warnings_) WriteLog("%s", limit_message_);
}

void ReporterFamily::LogError(const char* class_name, const char* message) const {
    WriteLog("Error:%s: %s", class_name, message);
}

// ---- ErrorClassSimple

ErrorClassSimple::ErrorClassSimple() { foundation.Enter(); }
ErrorClassSimple::ErrorClassSimple(const ErrorClassSimple&) { foundation.Enter(); }
ErrorClassSimple::~ErrorClassSimple() { foundation.Leave(); }

void ErrorClassSimple::Error(const char* format, ...) const {
    std::va_list arguments;
    va_start(arguments, format);
    const Message message(nullptr, format, arguments);
    va_end(arguments);
    Throw<ErrorMsg>(foundation, kSimpleName, message);
}

void ErrorClassSimple::Warning(const char* format, ...) const {
    std::va_list arguments;
    va_start(arguments, format);
    Warn(foundation, kSimpleName, Message(nullptr, format, arguments));
    va_end(arguments);
}

// ---- ErrorClass

void ErrorClass::SetName(const char* name) { CopyName(name_, name); }

void ErrorClass::ReportError(const char* prefix, const char* format, std::va_list arguments) const {
    Throw<ErrorMsg>(foundation, name_, Message(prefix, format, arguments));
}

void ErrorClass::ReportWarning(const char* prefix, const char* format, std::va_list arguments) const {
    Warn(foundation, name_, Message(prefix, format, arguments));
}

void ErrorClass::Error(const char* format, ...) const {
    std::va_list arguments;
    va_start(arguments, format);
    ReportError(nullptr, format, arguments);
}

void ErrorClass::Warning(const char* format, ...) const {
    std::va_list arguments;
    va_start(arguments, format);
    ReportWarning(nullptr, format, arguments);
    va_end(arguments);
}

// ---- KRN_Base

KRN_Base::KRN_Base() { engine.Enter(); }

KRN_Base::KRN_Base(const KRN_Base& other) : user_word_(other.user_word_) {
    std::memcpy(name_, other.name_, sizeof name_);
    engine.Enter();
}

KRN_Base::~KRN_Base() { engine.Leave(); }

void KRN_Base::SetName(const char* name) { CopyName(name_, name); }

void KRN_Base::ReportError(const char* prefix, const char* format, std::va_list arguments) const {
    Throw<KRN_Error>(engine, name_, Message(prefix, format, arguments));
}

void KRN_Base::ReportWarning(const char* prefix, const char* format, std::va_list arguments) const {
    Warn(engine, name_, Message(prefix, format, arguments));
}

void KRN_Base::Error(const char* format, ...) const {
    std::va_list arguments;
    va_start(arguments, format);
    ReportError(nullptr, format, arguments);
}

void KRN_Base::Warning(const char* format, ...) const {
    std::va_list arguments;
    va_start(arguments, format);
    ReportWarning(nullptr, format, arguments);
    va_end(arguments);
}

}   // namespace sparkrig
