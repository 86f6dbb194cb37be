// Reporters: every object that can fail carries one. Error logs and throws, Warning logs and goes on.
//
// Two families with counters of their own: ErrorClassSimple / ErrorClass (foundation) throw ErrorMsg,
// KRN_Base (engine) throws KRN_Error. Only the program's entry catches.
#pragma once
#include <cstdarg>
#include <cstdint>

namespace sparkrig {

/// What an error throws: the reporting class and the formatted message, both zero-terminated, overlong ones cut.
struct ErrorRecord {
    char class_name[32];
    char message[1024];
};
struct ErrorMsg : ErrorRecord {};    // thrown by the foundation
struct KRN_Error : ErrorRecord {};   // thrown by the engine

/// A reporter without a name of its own; reports as "ErrorClassSimple".
class ErrorClassSimple {
  public:
    ErrorClassSimple();
    ErrorClassSimple(const ErrorClassSimple&);
    ErrorClassSimple& operator=(const ErrorClassSimple&) { return *this; }

    [[noreturn]] virtual void Error(const char* format, ...) const __attribute__((format(printf, 2, 3)));
    virtual void Warning(const char* format, ...) const __attribute__((format(printf, 2, 3)));

  protected:
    ~ErrorClassSimple();
};

class ErrorClass : public ErrorClassSimple {
  public:
    [[noreturn]] void Error(const char* format, ...) const override __attribute__((format(printf, 2, 3)));
    void Warning(const char* format, ...) const override __attribute__((format(printf, 2, 3)));

  protected:
    ErrorClass() = default;
    ~ErrorClass() = default;
    /// At most 31 characters are kept.
    void SetName(const char* name);
    /// For overrides that put context in front: formats, puts "prefix: " before the message (nothing for a null
    /// prefix), reports it as literal text.
    [[noreturn]] void ReportError(const char* prefix, const char* format, std::va_list arguments) const;
    void ReportWarning(const char* prefix, const char* format, std::va_list arguments) const;

  private:
    char name_[32] = "Undefined";
};

/// The reporter of every engine object.
class KRN_Base {
  public:
    KRN_Base();
    KRN_Base(const KRN_Base& other);
    KRN_Base& operator=(const KRN_Base& other) = default;

    [[noreturn]] virtual void Error(const char* format, ...) const __attribute__((format(printf, 2, 3)));
    virtual void Warning(const char* format, ...) const __attribute__((format(printf, 2, 3)));

  protected:
    ~KRN_Base();
    void SetName(const char* name);
    [[noreturn]] void ReportError(const char* prefix, const char* format, std::va_list arguments) const;
    void ReportWarning(const char* prefix, const char* format, std::va_list arguments) const;

    std::uint32_t user_word_ = 0;   // free for derived classes, copied with the object

  private:
    char name_[32] = "Undefined";
};

}   // namespace sparkrig
