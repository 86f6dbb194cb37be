// Every call that the program makes of the device, the codes that it may answer, and what is reported then.
#pragma once
#include <string>
#include <vector>

#include "tests/device/whole_program.h"

namespace sparkrig {

/// The codes that a call of the contract may answer.
struct CallCodes {
    const char* method;
    std::vector<HRESULT> codes;
};
const std::vector<CallCodes>& CodesOfCalls();
/// Empty for a call that is not in the list.
std::vector<HRESULT> CodesOf(const std::string& method);

/// A call that is refused, and what the program does when it is.
struct FailingCall {
    const char* method;
    const char* report;   // "warning" or "error", and the text; %s stands for the code's name; "" for nothing
    void (*act)(WholeProgram& program);
    std::vector<HRESULT> codes = {};   // of this row; empty: all that the call may answer
    int nth = 1;                       // which call of the act's
};
/// While the program is made.
const std::vector<FailingCall>& FailingStart();
/// Of a program that plays.
const std::vector<FailingCall>& FailingCalls();

/// Calls whose refusal is not reported, by design.
struct SilentCall {
    const char* method;
    const char* reason;
};
const std::vector<SilentCall>& SilentCalls();

}   // namespace sparkrig
