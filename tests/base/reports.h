// For tests of reporters: what was reported, and the error that an action throws.
#pragma once
#include <string>

#include "base/error.h"
#include "tests/support/reports.h"

namespace sparkrig {

/// "CLASS: message" of the error that an action throws; "no error" when it throws none.
template <class Action>
std::string ErrorOf(Action action) {
    try {
        action();
    } catch (const ErrorRecord& record) {
        return std::string(record.class_name) + ": " + record.message;
    }
    return "no error";
}

}   // namespace sparkrig
