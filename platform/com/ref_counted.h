// How an object of the layer counts who holds it.
#pragma once
#include <utility>

#include "platform/system/win_types.h"

namespace sparkrig {

/// Counts the references of an object of the contract and deletes it with the last one. Starts at one.
template <class Interface>
class RefCounted : public Interface {
  public:
    RefCounted(const RefCounted&) = delete;
    RefCounted& operator=(const RefCounted&) = delete;

    ULONG AddRef() override { return ++references_; }
    ULONG Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }
    ULONG References() const { return references_; }

  protected:
    RefCounted() = default;
    virtual ~RefCounted() = default;

  private:
    ULONG references_ = 1;
};

}   // namespace sparkrig
