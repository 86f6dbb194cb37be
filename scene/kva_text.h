// The words of text scenes: keywords behind "*", values, blocks in braces. What a block does not know is skipped,
// nested braces included.
#pragma once
#include <initializer_list>
#include <string_view>

#include "base/text_data_file_reader.h"
#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {

/// A callable that lives as long as the call it is passed to.
class KeywordAction {
  public:
    template <class Action>
    KeywordAction(const Action& action)   // NOLINT(google-explicit-constructor): a row of a table
        : action_(&action), call_([](const void* a) { (*static_cast<const Action*>(a))(); }) {}
    void operator()() const { call_(action_); }

  private:
    const void* action_;
    void (*call_)(const void*);
};

/// A keyword in capital letters and what it does.
struct KeywordRow {
    std::string_view word;
    KeywordAction action;
};

class KvaText : public TextDataFileReader {
  public:
    static constexpr int kMostBytes = 127;   // of a word, and of a text with a limit

    /// Finds the next "{" and acts on the keywords of its block, whatever their letter case. False when the file ends
    /// first.
    bool Block(std::initializer_list<KeywordRow> rows);
    /// The same for what is no block: the end of the file is its end.
    void TopLevel(std::initializer_list<KeywordRow> rows, int& open_blocks);

    // Values: false when there is none, and nothing is set then.
    bool Integer(int& value);
    bool Number(float& value);
    bool Triple(float (&values)[3]);
    bool Triple(D3DXVECTOR3& vector);
    /// Between double quotes. Without them it is a warning.
    bool Text(String& text);
    bool LimitedText(String& text);
    /// A word of a closed set, bare or between double quotes.
    bool SetWord(String& word);

    /// The next byte that is no blank, left unread; 0 at the end.
    char PeekVisible();

    using TextDataFileReader::Content;

  private:
    enum class Scan { Keyword, BlockEnd, FileEnd };
    Scan NextKeyword(char (&word)[kMostBytes + 1], int& length);
    std::string_view Word();
    void Act(std::initializer_list<KeywordRow> rows, std::string_view word) const;
};

}   // namespace sparkrig
