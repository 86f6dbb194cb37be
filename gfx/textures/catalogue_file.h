// The text of a texture catalogue: lines of "name" = "file"; what follows ";" is a comment.
#pragma once
#include "base/string.h"
#include "base/text_data_file_reader.h"

namespace sparkrig {

class CatalogueFile {
  public:
    /// A file that cannot be opened is an error of the reader.
    explicit CatalogueFile(const char* name) { reader_.Open(name, true); }

    /// The next pair; false at the end. A name without "=" behind it is a warning. Until the next call reports are
    /// about the place of the pair's file.
    bool Next(String& name, String& file);

  private:
    /// Reads what stands next, leaving out blanks; for a quoted string its text.
    enum class Token { End, Comment, Quoted, Equals, Other };
    Token Read(String& text);
    void SkipLine();
    void WarnOfMissingFile(const String& name, int name_start);

    TextDataFileReader reader_;
};

}   // namespace sparkrig
