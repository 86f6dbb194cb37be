// Doing something and putting back what it changed, also when it ends in an error.
#pragma once
#include "base/error.h"

namespace sparkrig {

/// Does `action`, then `restore`, also when the action ends in an error: what a drawer changes for itself stays no
/// longer than it draws. A restore that is refused is done once more, so doing it twice must not matter.
template <class Action, class Restore>
void WithRestore(Action action, Restore restore) {
    try {
        action();
        restore();
    } catch (const ErrorRecord&) {
        restore();
        throw;
    }
}

}   // namespace sparkrig
