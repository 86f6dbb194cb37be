#include "effects/effect_simulation.h"

#include <optional>

#include "base/numeric.h"
#include "base/random.h"

namespace sparkrig {
namespace {

constexpr int kTraceBlocks = 2048;
constexpr int kTraceIds = 3;       // trail blocks of one started effect
constexpr double kJitter = 0.25;   // of the distance between two emissions, to either side

/// a + b, going round where an int ends.
std::int32_t WrappingSum(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

bool Emits(const SubEffect& sub) { return sub.emit.effect || sub.emit.trace_number > 0; }

double Jitter() { return RandomRange(-kJitter, kJitter); }

D3DXVECTOR3 Turned(const D3DXVECTOR3& v, const D3DXQUATERNION& rotation) {
    D3DXMATRIX matrix;
    D3DXVECTOR3 out;
    return *D3DXVec3TransformNormal(&out, &v, D3DXMatrixRotationQuaternion(&matrix, &rotation));
}

/// A point of the emitter's box, uniformly drawn.
D3DXVECTOR3 EmitPosition(const VisualEffectObject& emitter) {
    const D3DXVECTOR3& volume = emitter.sub_effect->emit.volume;
    const auto x = static_cast<float>(RandomRange(-0.5, 0.5));
    const auto y = static_cast<float>(RandomRange(-0.5, 0.5));
    const auto z = static_cast<float>(RandomRange(-0.5, 0.5));
    const D3DXVECTOR3 offset(x * emitter.scale.x * volume.x, y * emitter.scale.y * volume.y,
                             z * emitter.scale.z * volume.z);
    return emitter.position + Turned(offset, emitter.rotation);
}

}   // namespace

// ---- Starting

void EffectSimulation::StartEffect(const VisualEffect& effect, const D3DXVECTOR3& position) {
    starts_left_ = limits_.starts;
    Start(effect, position, 0);
    transforms_.Flush();
}

void EffectSimulation::Start(const VisualEffect& effect, const D3DXVECTOR3& position, double time_offset) {
    if (!MayStart(effect)) return;
    --starts_left_;
    ++depth_;
    for (int i = 0; i < effect.particles.GetCount(); ++i)
        StartSubEffect(*effect.particles.GetAt(i), position, time_offset, -1);
    for (int i = 0; i < effect.meshes.GetCount(); ++i)
        StartSubEffect(*effect.meshes.GetAt(i), position, time_offset, -1);
    std::optional<int> base;   // of this start's trace keys
    for (int i = 0; i < effect.specials.GetCount(); ++i) {
        SpecialEffect& special = *effect.specials.GetAt(i);
        const bool feeds_trace = special.emit.trace_number > 0;
        if (feeds_trace && !base) base = NextTraceKeyBase();
        StartSubEffect(special, position, time_offset, feeds_trace ? WrappingSum(*base, special.trace.id) : -1);
    }
    --depth_;
}

void EffectSimulation::StartSubEffect(SubEffect& sub, const D3DXVECTOR3& position, double time_offset, int trace_key) {
    for (int i = 0; i < sub.count && HasRoom(*sub.owner); ++i) AddInstance(sub, i, position, time_offset, trace_key);
}

void EffectSimulation::AddInstance(SubEffect& sub, int number, const D3DXVECTOR3& position, double time_offset,
                                   int trace_key) {
    const int id = instances_.AddNew();
    VisualEffectObject& object = *instances_.Get(id);
    object.base_position = position;
    object.trace_key = trace_key;
    if (sub.count_type == CountType::Random)
        object.count_value = static_cast<float>(Random01());
    else if (sub.count >= 2)
        object.count_value = static_cast<float>(number) / static_cast<float>(sub.count - 1);
    for (float& random : object.random) random = static_cast<float>(Random01());
    object.Bind(sub);
    object.time = time_offset + sub.start_time;
    transforms_.Add(object, id);
    if (object.Age() >= 0 && sub.emit.effect) EmitBeforeStart(object);
}

/// The children that the instance would have emitted since its birth, had it run until now.
void EffectSimulation::EmitBeforeStart(VisualEffectObject& object) {
    const SubEffect& sub = *object.sub_effect;
    const double age = object.Age();
    const int count = TruncateToInt(age * sub.emit.per_time);
    if (count <= 0) return;
    transforms_.Flush();
    for (int k = 0; k < count && MayStart(*sub.emit.effect); ++k) {
        const double jitter = sub.emit.random ? Jitter() : 0;
        Emit(object, (k + 0.5 + jitter) * age / count);
    }
}

int EffectSimulation::NextTraceKeyBase() {
    trace_key_counter_ = WrappingSum(trace_key_counter_, kTraceIds);
    return trace_key_counter_ % kTraceBlocks;
}

bool EffectSimulation::HasRoom(const VisualEffect& effect) {
    return instances_.GetCount() < limits_.live_instances || Refuse(effect, limits_.live_instances, "live instances");
}

bool EffectSimulation::MayStart(const VisualEffect& effect) {
    if (starts_left_ <= 0) return Refuse(effect, limits_.starts, "starts at once");
    if (depth_ > limits_.nesting) return Refuse(effect, limits_.nesting, "effects that start in one another");
    return HasRoom(effect);
}

bool EffectSimulation::Refuse(const VisualEffect& effect, int limit, const char* of_what) {
    if (!warned_)
        reporter_.Warning("Too many instances: effect '%s' is not started any more, the limit is %i %s",
                          effect.name.c_str(), limit, of_what);
    warned_ = true;
    return false;
}

void EffectSimulation::Emit(const VisualEffectObject& emitter, double offset) {
    const VisualEffect* effect = emitter.sub_effect->emit.effect;
    if (effect) Start(*effect, EmitPosition(emitter), offset);
}

// ---- Updating

void EffectSimulation::Update(float elapsed_seconds) {
    system_time_ += elapsed_seconds;
    emission_count_ = 0;
    int id = 0;
    instances_.ResetIteration();
    while (VisualEffectObject* object = instances_.GetNext(&id)) {
        const SubEffect& sub = *object->sub_effect;
        const auto step = static_cast<float>(sub.speed * elapsed_seconds);
        object->time += step;
        if (object->IsDead()) {
            instances_.Delete(id);
            continue;
        }
        if (sub.detail_level > detail_level_) continue;
        transforms_.Add(*object, id);
        if (Emits(sub) && object->Age() >= 0) RecordEmissions(*object, step);
    }
    transforms_.Flush();

    // Emission waits until the walk is over: an instance added now would age in the frame of its birth.
    starts_left_ = limits_.starts;
    for (std::size_t i = 0; i < emission_count_; ++i) Emit(*emissions_[i].emitter, emissions_[i].offset);
    transforms_.Flush();
}

void EffectSimulation::RecordEmissions(VisualEffectObject& object, float step) {
    if (object.sub_effect->emit.random)
        RecordRandom(object, step);
    else
        RecordEven(object, step);
}

/// One emission at each multiple of the period that the step has passed.
void EffectSimulation::RecordEven(VisualEffectObject& object, float step) {
    const double period = 1.0 / object.sub_effect->emit.per_time;
    const double rest = period - WrapFloat(object.Age() - step, period);
    if (!(rest <= step)) return;
    const double since_first = step - rest;
    const int count = TruncateToInt(since_first / period);
    for (int k = 0; k <= count && Record(object, since_first - k * period); ++k) {
    }
}

/// As many emissions as fall into the step on the average, each near the middle of its share of the step.
void EffectSimulation::RecordRandom(VisualEffectObject& object, float step) {
    const float per_time = object.sub_effect->emit.per_time;
    std::int64_t count = TruncateToInt(step * per_time);
    const float fraction = WrapFloat(step, 1 / per_time) * per_time;
    if (Random01() < fraction) ++count;
    for (int k = 0; k < count && emission_count_ < kMaxEmissions; ++k)
        Record(object, (k + 0.5 + Jitter()) * step / static_cast<double>(count));
}

bool EffectSimulation::Record(VisualEffectObject& object, double offset) {
    if (emission_count_ == kMaxEmissions) return false;
    emissions_[emission_count_++] = {&object, offset};
    return true;
}

void EffectSimulation::Clear() {
    instances_.Clear();
    emission_count_ = 0;
    system_time_ = 0;
    trace_key_counter_ = 0;
    warned_ = false;
}

// ---- Reloading

std::vector<EffectSimulation::Binding> EffectSimulation::GetBindings() const {
    std::vector<Binding> bindings;
    bindings.reserve(static_cast<std::size_t>(instances_.GetCount()));
    for (int position = 0; position < instances_.GetCount(); ++position) {
        const VisualEffectObject& object = *instances_.GetAt(position);
        const SubEffect& sub = *object.sub_effect;
        bindings.push_back({instances_.GetIdAt(position), sub.owner->name, object.kind, sub.index});
    }
    return bindings;
}

void EffectSimulation::Rebind(const std::vector<Binding>& bindings, EffectDefinitions& definitions) {
    for (const Binding& binding : bindings) {
        const VisualEffect* effect = definitions.effects.Find(binding.effect);
        SubEffect* sub = effect ? FindSubEffect(*effect, binding.kind, binding.sub_index) : nullptr;
        if (sub)
            instances_.Get(binding.id)->Bind(*sub);
        else
            instances_.Delete(binding.id);
    }
    RefreshRecords();
}

void EffectSimulation::SetDetailLevel(int level) {
    detail_level_ = level;
    RefreshRecords();   // what was passed over and is drawn now has aged
}

void EffectSimulation::RefreshRecords() {
    for (int position = 0; position < instances_.GetCount(); ++position)
        transforms_.RefreshRecord(*instances_.GetAt(position), instances_.GetIdAt(position));
}

}   // namespace sparkrig
