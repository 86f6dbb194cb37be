#include "app/effect_choice.h"

#include <cstdio>

#include "app/options.h"
#include "base/nearest_word.h"

namespace sparkrig {

std::optional<int> ChooseEffect(const VisualEffectSystem& effects, const std::string& name) {
    if (name.empty()) return 0;
    std::vector<std::string> names;
    for (int i = 0; i < effects.GetEffectCount(); ++i) {
        names.emplace_back(effects.GetEffectName(i).c_str());
        if (EqualNoCase(names.back().c_str(), name.c_str())) return i;
    }
    const std::string nearest = NearestWord(name, names);
    const std::string hint = nearest.empty() ? "" : "; did you mean " + nearest + "?";
    std::fprintf(stderr, "sparkrig: the effects file has no effect %s%s\n", name.c_str(), hint.c_str());
    return std::nullopt;
}

}   // namespace sparkrig
