#include "effects/effect_simulation.h"

#include <tbb/parallel_for.h>

#include <cstddef>
#include <cstring>
#include <optional>

#include "base/numeric.h"
#include "base/random.h"
#include "effects/beyond_cache.h"
#include "effects/block_update.h"
#include "effects/motion.h"

namespace sparkrig {
namespace {

constexpr int kTraceIds = 3;                 // trail blocks of one started effect
constexpr int kWorthThreads = 10000;         // instances
constexpr int kBeyondCache = 200000;         // instances: an update moves 60 to 80 bytes of each
constexpr std::size_t kTasksTogether = 16;   // blocks that a thread takes at once

/// a + b, going round where an int ends.
std::int32_t WrappingSum(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

bool Emits(const SubEffect& sub) { return sub.emit.effect || sub.emit.trace_number > 0; }

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
    WriteStarted();
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
    const int group = instances_.GroupOf(sub);
    for (int i = 0; i < sub.count && HasRoom(*sub.owner); ++i) {
        const int id = AddInstance(group, i, position, time_offset);
        if (trace_key != -1) instances_.trace_keys.Set(id, trace_key);
        if (sub.emit.effect) EmitBeforeStart(GetInstance(instances_, id));
    }
}

int EffectSimulation::AddInstance(int group, int number, const D3DXVECTOR3& position, double time_offset) {
    const SubEffect& sub = *instances_.Group(group).sub;
    const int id = instances_.Add(group);
    const Lane lane = instances_.LaneOf(id), place = lane % kLanes;
    InstanceBlock& block = instances_.BlockOfLane(lane);
    block.base.x[place] = position.x;
    block.base.y[place] = position.y;
    block.base.z[place] = position.z;
    float count_value = 0;
    if (sub.count_type == CountType::Random)
        count_value = static_cast<float>(Random01());
    else if (sub.count >= 2)
        count_value = static_cast<float>(number) / static_cast<float>(sub.count - 1);
    block.count_value[place] = count_value;
    for (auto& random : block.random) random[place] = static_cast<float>(Random01());
    block.life[place] = LifeForCount(sub, count_value);
    block.time[place] = time_offset + sub.start_time;
    if (instances_.Group(group).keeps) KeepTransforms(instances_, id);
    return id;
}

/// The children that the instance would have emitted since its birth, had it run until now.
void EffectSimulation::EmitBeforeStart(const VisualEffectObject& object) {
    const EmitSettings& emit = object.sub_effect->emit;
    const double age = object.Age();
    if (!(age >= 0)) return;
    const int count = TruncateToInt(age * emit.per_time);
    for (int k = 0; k < count && MayStart(*emit.effect); ++k) {
        const double jitter = emit.random ? EmissionJitter() : 0;
        Emit(object, (k + 0.5 + jitter) * age / count);
    }
}

/// The first records of the instances that have been started since the last call.
void EffectSimulation::WriteStarted() {
    for (int number = 0; number < instances_.GroupCount(); ++number) {
        InstanceGroup& group = instances_.Group(number);
        while (group.evaluated < group.count) {
            const int first = group.evaluated % kLanes;
            const auto b = static_cast<std::size_t>(group.evaluated / kLanes);
            const int end = group.LanesIn(b);
            WriteRecords(*group.sub, instances_.Block(group.blocks[b]), first, end,
                         instances_.Records(group.blocks[b]));
            group.evaluated += end - first;
        }
    }
}

int EffectSimulation::NextTraceKeyBase() {
    trace_key_counter_ = WrappingSum(trace_key_counter_, kTraceIds);
    return trace_key_counter_ % kTraceBlocks;
}

bool EffectSimulation::HasRoom(const VisualEffect& effect) {
    return instances_.Count() < limits_.live_instances || Refuse(effect, limits_.live_instances, "live instances");
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
    const SubEffect& sub = *emitter.sub_effect;
    if (sub.emit.effect) return Start(*sub.emit.effect, EmitPosition(emitter), offset);
    const TraceSettings& trace = sub.trace;
    traces_.AddTracePoint(sub.emit.name.c_str() + std::strlen(kTracePrefix), emitter.trace_key,
                          sub.emit.trace_number - 1, emitter.position, trace.life_time,
                          trace.life_time - static_cast<float>(offset),
                          {trace.flag, sub.blend_mode, sub.use_z_buffer, trace.texture_scale});
}

// ---- Updating

void EffectSimulation::Update(float elapsed_seconds) {
    system_time_ += elapsed_seconds;
    PlanUpdate(elapsed_seconds);
    RunTasks();
    schedule_.Clear();
    const BlockTask* tasks = tasks_.data();
    for (int number = 0; number < instances_.GroupCount(); ++number) {
        InstanceGroup& group = instances_.Group(number);
        if (group.count == 0) continue;
        const std::size_t blocks = group.blocks.size();
        const bool evaluated = tasks->evaluate;
        RemoveDead(group, {tasks, blocks});
        tasks += blocks;
        if (!evaluated) continue;
        if (group.keeps) UpdateKept(instances_, group);
        if (Emits(*group.sub)) schedule_.Mark(instances_, group);
    }
    schedule_.Ask(instances_, elapsed_seconds);

    // Emission waits until the walk is over: an instance added now would age in the frame of its birth.
    starts_left_ = limits_.starts;
    for (const Emission& emission : schedule_.Emissions())
        Emit(GetInstance(instances_, emission.emitter), emission.offset);
    WriteStarted();
    traces_.UpdateTraces(elapsed_seconds);
}

/// The blocks of all groups, one group after the other.
void EffectSimulation::PlanUpdate(float elapsed_seconds) {
    tasks_.clear();
    for (int number = 0; number < instances_.GroupCount(); ++number) {
        InstanceGroup& group = instances_.Group(number);
        if (group.count == 0) continue;
        const SubEffect& sub = *group.sub;
        const auto step = static_cast<float>(sub.speed * elapsed_seconds);
        const bool evaluate = sub.detail_level <= detail_level_;
        if (!evaluate || !(step >= 0)) KeepTransforms(instances_, group);
        for (std::size_t b = 0; b < group.blocks.size(); ++b)
            tasks_.push_back({&sub, group.blocks[b], group.LanesIn(b), step, evaluate, false});
    }
}

void EffectSimulation::RunTasks() {
    const auto storing = instances_.Count() < kBeyondCache ? Storing::InCache : Storing::BeyondCache;
    const auto run = [this, storing](std::size_t first, std::size_t end) {
        for (std::size_t i = first; i < end; ++i) {
            BlockTask& task = tasks_[i];
            if (storing == Storing::BeyondCache && i + 1 < end)
                AskFor(&instances_.Block(tasks_[i + 1].block), offsetof(InstanceBlock, random));
            task.deaths = UpdateBlock(*task.sub, instances_.Block(task.block), task.count, task.step, task.evaluate,
                                      storing, instances_.Records(task.block));
        }
        FinishStoresBeyondCache();
    };
    if (instances_.Count() < kWorthThreads) return run(0, tasks_.size());
    tbb::parallel_for(tbb::blocked_range<std::size_t>(0, tasks_.size(), kTasksTogether),
                      [&](const auto& range) { run(range.begin(), range.end()); });
}

/// From the last to the first, so that what moves into a free place has been looked at.
void EffectSimulation::RemoveDead(InstanceGroup& group, std::span<const BlockTask> tasks) {
    for (std::size_t b = tasks.size(); b-- > 0;) {
        if (!tasks[b].deaths) continue;
        const InstanceBlock& block = instances_.Block(tasks[b].block);
        for (int place = tasks[b].count - 1; place >= 0; --place)
            if (IsDead(*group.sub, block, place)) instances_.Remove(block.id[place]);
    }
}

void EffectSimulation::Clear() {
    instances_.Clear();
    traces_.ClearTraces();
    system_time_ = 0;
    trace_key_counter_ = 0;
    warned_ = false;
}

// ---- Reloading

std::vector<EffectSimulation::Binding> EffectSimulation::Unbind() {
    std::vector<Binding> bindings;
    for (int number = 0; number < instances_.GroupCount(); ++number) {
        InstanceGroup& group = instances_.Group(number);
        if (!group.sub) continue;
        KeepTransforms(instances_, group);
        bindings.push_back({number, group.sub->owner->name, group.sub->kind, group.sub->index});
    }
    return bindings;
}

void EffectSimulation::Rebind(const std::vector<Binding>& bindings, EffectDefinitions& definitions) {
    for (const Binding& binding : bindings) {
        const VisualEffect* effect = definitions.effects.Find(binding.effect);
        SubEffect* sub = effect ? FindSubEffect(*effect, binding.kind, binding.sub_index) : nullptr;
        if (sub) {
            instances_.Rebind(binding.group, *sub);
            RefreshRecords(instances_, instances_.Group(binding.group));
        } else {
            instances_.RemoveAll(binding.group);
        }
    }
}

void EffectSimulation::SetDetailLevel(int level) {
    detail_level_ = level;
    for (int number = 0; number < instances_.GroupCount();
         ++number) {   // what was passed over and is drawn now has aged
        InstanceGroup& group = instances_.Group(number);
        if (group.keeps) RefreshRecords(instances_, group);
    }
}

}   // namespace sparkrig
