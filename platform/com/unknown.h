// What every object of the layer can do: be held by many and go with the last of them.
#pragma once
#include "platform/system/win_types.h"

namespace sparkrig {

class IUnknown {
  public:
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;

  protected:
    ~IUnknown() = default;
};

}   // namespace sparkrig
