// The states that a pass or a sampler can set, by the names that effects use for them.
#pragma once
#include <span>
#include <string_view>

#include "platform/d3dx/effect_file.h"

namespace sparkrig::fxc {

struct NamedValue {
    const char* name;
    DWORD value;
};

struct StateRow {
    const char* name;
    StateGroup group;
    StateType type;
    DWORD state;
    std::span<const NamedValue> values = {};   // the names that its value may have
    bool unused = false;                       // the device has no use for it
};

/// Null for an unknown name. Letter case does not matter.
const StateRow* FindState(std::string_view name);

/// The row of a state; of transforms, the one whose numbers begin at or before it.
const StateRow* FindState(StateGroup group, DWORD state);

/// Null when the state's values have no such name. TRUE and FALSE are values of every number.
const NamedValue* FindValue(const StateRow& row, std::string_view name);

/// How many places "[index]" may name; 1 for states without an index.
DWORD IndexCount(StateGroup group, DWORD state);

bool EqualIgnoringCase(std::string_view a, std::string_view b);

}   // namespace sparkrig::fxc
