// Checks references to asset files: they are to be relative, so that the data can move.
#pragma once
#include "base/dyna_mem.h"
#include "base/string.h"

namespace sparkrig {

class CFileValidator {
  public:
    struct DirData {
        String name;
    };

    /// False, with a warning, for an absolute or a network path.
    bool CheckPath(const char* path) const;

  private:
    DynaMem<DirData, 8, 1> directories_;   // also the reporter
};

}   // namespace sparkrig
