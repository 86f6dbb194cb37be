#include "tools/fxc/initial_values.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include <fmt/format.h>

#include "tools/fxc/constants.h"

namespace sparkrig::fxc {

namespace {

DWORD NumberWord(NumberType number, double value) {
    if (number == NumberType::Float) return std::bit_cast<DWORD>(static_cast<float>(value));
    if (number == NumberType::Bool) return value != 0 ? 1 : 0;
    if (std::isnan(value)) return 0;
    // An unsigned number keeps its bits.
    const double whole = std::trunc(std::clamp(value, -2147483648.0, 4294967295.0));
    return whole < 0 ? static_cast<DWORD>(static_cast<std::int32_t>(whole)) : static_cast<DWORD>(whole);
}

bool IsBelow(const EffectFile& file, std::size_t parameter, DWORD structure) {
    std::int32_t parent = file.parameters[parameter].parent;
    while (parent >= 0 && static_cast<DWORD>(parent) != structure)
        parent = file.parameters[static_cast<std::size_t>(parent)].parent;
    return parent >= 0;
}

}   // namespace

void StoreValue(Cursor& cursor, const Token& name, const Constant& constant, bool listed, EffectVariable& variable) {
    std::vector<double> values = constant.values;
    const std::size_t wanted = variable.WordCount();
    Type type;
    type.number = variable.number;
    type.rows = variable.rows;
    type.columns = variable.columns;
    if (values.size() == 1) values.resize(wanted, values[0]);
    if (!listed && variable.elements == 0 && values.size() > wanted) values = Converted(constant, type)->values;
    if (values.size() != wanted && !cursor.Failed())
        return cursor.Fail(name, fmt::format("'{}' takes {} values, not {}", name.text, wanted, values.size()));
    variable.words.clear();
    for (const double value : values) variable.words.push_back(NumberWord(variable.number, value));
}

void StoreMembers(Cursor& cursor, const Token& name, const Constant& constant, EffectFile& file, DWORD structure) {
    std::size_t next = 0, wanted = 0;
    for (std::size_t i = structure + 1; i < file.parameters.size() && IsBelow(file, i, structure); ++i) {
        EffectVariable& variable = file.parameters[i].variable;
        if (!IsNumeric(variable.kind)) continue;
        wanted += variable.words.size();
        for (DWORD& word : variable.words) {
            const double value = constant.values.size() == 1     ? constant.values[0]
                                 : next < constant.values.size() ? constant.values[next++]
                                                                 : 0;
            word = NumberWord(variable.number, value);
        }
    }
    if (constant.values.size() != 1 && constant.values.size() != wanted && !cursor.Failed())
        cursor.Fail(name, fmt::format("'{}' takes {} values, not {}", name.text, wanted, constant.values.size()));
}

}   // namespace sparkrig::fxc
