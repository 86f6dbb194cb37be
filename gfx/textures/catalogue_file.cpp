#include "gfx/textures/catalogue_file.h"

#include <climits>
#include <cstring>

namespace sparkrig {

void CatalogueFile::SkipLine() {
    const int next = reader_.CurrentLine() + 1;
    if (next < reader_.LineCount())
        reader_.SeekLine(next);
    else
        reader_.Skip(INT_MAX / 2);
}

CatalogueFile::Token CatalogueFile::Read(String& text) {
    if (reader_.SkipSpace() != 0) return Token::End;
    const char first = reader_.PeekChar();
    if (first == ';') {
        SkipLine();
        return Token::Comment;
    }
    if (first == '"') return reader_.ReadQuotedString(text) == 0 ? Token::Quoted : Token::End;
    char word[TextDataFileReader::kTokenSize];
    if (reader_.ReadWord(word) != 0) return Token::End;
    return std::strcmp(word, "=") == 0 ? Token::Equals : Token::Other;
}

/// Reported where the name stands, not where the reader is.
void CatalogueFile::WarnOfMissingFile(const String& name, int name_start) {
    const int here = reader_.Tell();
    reader_.Seek(name_start);
    reader_.Warning("No \"=\" behind \"%s\"", name.c_str());
    reader_.Seek(here);
}

bool CatalogueFile::Next(String& name, String& file) {
    enum class Pending { Nothing, Name, File } pending = Pending::Nothing;
    int name_line = 0, name_start = 0;
    for (;;) {
        String text;
        reader_.SkipSpace();
        const int token_start = reader_.Tell();
        const Token token = Read(text);
        if (token == Token::End) return false;
        if (pending == Pending::File && token == Token::Quoted) {
            file = text;
            return true;
        }
        if (pending == Pending::Name && token == Token::Equals) {
            pending = Pending::File;
            continue;
        }
        // A string on a later line is a name again, so that one bad line costs no other.
        const bool bad = pending == Pending::Name;
        const bool is_name = token == Token::Quoted && (!bad || reader_.CurrentLine() > name_line);
        if (bad) WarnOfMissingFile(name, name_start);
        if (bad || token == Token::Comment) pending = Pending::Nothing;
        if (!is_name) continue;
        name = text;
        name_start = token_start;
        name_line = reader_.CurrentLine();
        pending = Pending::Name;
    }
}

}   // namespace sparkrig
