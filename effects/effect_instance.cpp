#include "effects/effect_instance.h"

#include "effects/motion.h"

namespace sparkrig {

void VisualEffectObject::Bind(SubEffect& sub) {
    sub_effect = &sub;
    kind = sub.kind;
    life = LifeForCount(sub, count_value);
    birth_delay = BirthDelay(sub, count_value);
}

}   // namespace sparkrig
