// Every call that the program makes of the device, the codes that it may answer, and acts that make them.
#pragma once
#include <string>
#include <vector>

#include "tests/device/whole_program.h"

namespace sparkrig {

/// The codes that a call of the contract may answer.
std::vector<HRESULT> CodesOf(const std::string& method);

/// Calls whose refusal is not reported by the code's name, by design.
struct QuietCall {
    const char* method;
    bool reported;   // in other words
    const char* reason;
};
const std::vector<QuietCall>& QuietCalls();

/// What a program that plays can be asked to do; together, with SetEveryState, they make every call.
struct Act {
    const char* name;
    void (*run)(WholeProgram& program);
};
const std::vector<Act>& Acts();
/// Sets what stays set: an act for a program that ends behind it.
void SetEveryState(WholeProgram& program);

}   // namespace sparkrig
