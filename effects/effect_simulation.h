// The live instances: started, aged, moved, emitted from, ended.
#pragma once
#include <span>
#include <vector>

#include "base/error.h"
#include "effects/effect_definitions.h"
#include "effects/effect_instance.h"
#include "effects/emission_schedule.h"
#include "effects/instance_store.h"
#include "effects/trace_effect_set.h"

namespace sparkrig {

/// What an effects file can ask for at most; what goes beyond is not started.
struct EffectLimits {
    int live_instances = 1 << 22;
    int starts = 1 << 22;   // of effects, by one StartEffect or one Update
    int nesting = 64;       // of effects whose instances begin with children that they would have emitted before
};

class EffectSimulation {
  public:
    /// Borrows the reporter of the warnings.
    explicit EffectSimulation(const ErrorClass& reporter) : reporter_(reporter) {}

    /// Starts particle, then mesh, then special sub-effects.
    void StartEffect(const VisualEffect& effect, const D3DXVECTOR3& position);
    /// Uses as many threads as there are processors when there is enough to do. Any number of them gives the same bits.
    void Update(float elapsed_seconds);
    /// Ends every instance and starts the clock again.
    void Clear();

    /// What the instances of a group play, in words that outlive the definitions.
    struct Binding {
        int group;
        String effect;
        SubEffectKind kind;
        int sub_index;
    };
    /// To be called while the definitions are still there. The instances keep their transforms until the next Update.
    std::vector<Binding> Unbind();
    /// Binds the instances to new definitions; one whose effect or sub-effect is gone is deleted.
    void Rebind(const std::vector<Binding>& bindings, EffectDefinitions& definitions);

    const InstanceStore& Instances() const { return instances_; }
    TraceEffectSet& Traces() { return traces_; }
    const TraceEffectSet& Traces() const { return traces_; }
    double SystemTime() const { return system_time_; }
    void SetDetailLevel(int level);
    int DetailLevel() const { return detail_level_; }
    void SetLimits(const EffectLimits& limits) { limits_ = limits; }

  private:
    /// A block's update, which has no regard to other blocks.
    struct BlockTask {
        const SubEffect* sub;
        std::uint32_t block;
        int count;
        float step;
        bool evaluate;
        bool deaths;   // set by the update
    };

    void Start(const VisualEffect& effect, const D3DXVECTOR3& position, double time_offset);
    void StartSubEffect(SubEffect& sub, const D3DXVECTOR3& position, double time_offset, int trace_key);
    int AddInstance(int group, int number, const D3DXVECTOR3& position, double time_offset);
    void EmitBeforeStart(const VisualEffectObject& object);
    void Emit(const VisualEffectObject& emitter, double offset);
    int NextTraceKeyBase();
    void WriteStarted();
    // What the limits allow. The first time that they do not, a warning names the effect and the limit.
    bool HasRoom(const VisualEffect& effect);                                  // for one more instance
    bool MayStart(const VisualEffect& effect);                                 // one more effect
    bool Refuse(const VisualEffect& effect, int limit, const char* of_what);   // false

    void PlanUpdate(float elapsed_seconds);
    void RunTasks();
    void RemoveDead(InstanceGroup& group, std::span<const BlockTask> tasks);

    const ErrorClass& reporter_;
    EffectLimits limits_;
    InstanceStore instances_;
    std::vector<BlockTask> tasks_;
    EmissionSchedule schedule_;
    TraceEffectSet traces_{kTraceBlocks};
    double system_time_ = 0;
    std::int32_t trace_key_counter_ = 0;
    int detail_level_ = 100;
    int starts_left_ = 0;
    int depth_ = 0;
    bool warned_ = false;   // of the limits, since the last Clear
};

}   // namespace sparkrig
