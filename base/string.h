// Owned, growable 8-bit text, and text functions on zero-terminated arrays.
#pragma once
#include <cstddef>

namespace sparkrig {

/// The character operations that a string class for another character type would replace. Slots 0 to 6 work on the
/// texts that they are given, not on the object.
template <class Char>
class StringBase {
  public:
    virtual int Length(const Char* text) const = 0;
    /// -1, 0 or 1 by unsigned bytes.
    virtual int Compare(const Char* a, const Char* b) const = 0;
    virtual int CompareNoCase(const Char* a, const Char* b) const = 0;
    virtual int CompareN(const Char* a, const Char* b, int n) const = 0;
    virtual int CompareNNoCase(const Char* a, const Char* b, int n) const = 0;
    virtual void Copy(Char* destination, int size, const Char* source) const = 0;
    /// Position of the first occurrence of part in text, -1 for none.
    virtual int Find(const Char* text, const Char* part) const = 0;
    virtual void Reserved() {}   // slot 7
    virtual ~StringBase() = default;
    virtual void MakeUpper() = 0;
    virtual void MakeLower() = 0;
};

class String : public StringBase<char> {
  public:
    String() = default;
    String(const char* text);   // null: empty, without a buffer; "": a buffer of one byte
    String(const String& other);
    String(String&& other) noexcept;
    ~String() override;
    String& operator=(const String& other);
    String& operator=(String&& other) noexcept;
    String& operator=(const char* text);

    void Assign(const char* text);
    void Assign(const String& other);

    /// A fresh buffer of n + 1 bytes holding the empty text, length n; for n < 0 no buffer.
    void Alloc(int n);
    /// Cuts or grows the buffer to n characters, keeping its content.
    void SetLength(int n);
    /// A writable buffer of at least n + 1 bytes; grows the length to n.
    char* GetBuffer(int n);
    /// Never null.
    const char* c_str() const { return text_ ? text_ : ""; }
    int GetLength() const { return length_; }

    void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void Append(const char* text);
    void Append(const String& other);
    /// First occurrence ignoring letter case, or -1.
    int IndexOf(const char* part) const;
    bool StartsWith(const char* prefix) const;   // ignoring letter case
    /// Replaces the first occurrence; false when there is none.
    bool Replace(const char* part, const char* replacement, bool case_sensitive);

    int Length(const char* text) const override;
    int Compare(const char* a, const char* b) const override;
    int CompareNoCase(const char* a, const char* b) const override;
    int CompareN(const char* a, const char* b, int n) const override;
    int CompareNNoCase(const char* a, const char* b, int n) const override;
    void Copy(char* destination, int size, const char* source) const override;
    int Find(const char* text, const char* part) const override;
    void MakeUpper() override;
    void MakeLower() override;

    bool operator==(const String& other) const;   // exact
    bool operator==(const char* text) const;

  private:
    char* text_ = nullptr;
    int length_ = 0;
};

/// Comparison of zero-terminated texts ignoring ASCII letter case: negative, 0 or positive.
int CompareNoCase(const char* a, const char* b);
bool EqualNoCase(const char* a, const char* b);

/// Reads count numbers from a comma-separated list; false when a piece is missing. What was read stays stored.
bool ToFloats(const String& list, float* values, int count);

// Paths: both separators count. Output buffers hold `size` bytes; longer results are cut.
void GetDirectory(const char* path, char* out, std::size_t size);
void GetFileName(const char* path, char* out, std::size_t size);
/// path becomes directory + "\" + its file name.
void ReplaceDirectory(char (&path)[256], const char* directory);

// Command lines: words separated by runs of blanks, letter case ignored.
int CountWords(const char* text);
/// The start of word i, or null.
const char* GetWord(const char* text, int i);
int WordLength(const char* word);
bool HasOption(const char* command_line, const char* option);
/// The integer behind "name:" or "name=" in the first word that begins with name.
bool GetOptionValue(const char* command_line, const char* name, int* value);

}   // namespace sparkrig
