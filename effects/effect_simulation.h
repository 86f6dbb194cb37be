// The live instances: started, aged, moved, emitted from, ended.
#pragma once
#include <array>
#include <vector>

#include "base/error.h"
#include "effects/effect_definitions.h"
#include "effects/effect_instance.h"
#include "effects/transform_update.h"

namespace sparkrig {

/// What an effects file can ask for at most; what goes beyond is not started.
struct EffectLimits {
    int live_instances = 1 << 22;
    int starts = 1 << 22;   // of effects, by one StartEffect or one Update
    int nesting = 64;       // of effects whose instances begin with children that they would have emitted before
};

class EffectSimulation {
  public:
    using Instances = DynaMem<VisualEffectObject, 1024, 1>;

    /// Borrows the reporter of the warnings.
    explicit EffectSimulation(const ErrorClass& reporter) : reporter_(reporter) {}

    /// Starts particle, then mesh, then special sub-effects.
    void StartEffect(const VisualEffect& effect, const D3DXVECTOR3& position);
    void Update(float elapsed_seconds);
    /// Ends every instance and starts the clock again.
    void Clear();

    /// What an instance plays, in words that outlive the definitions.
    struct Binding {
        int id;
        String effect;
        SubEffectKind kind;
        int sub_index;
    };
    std::vector<Binding> GetBindings() const;
    /// Binds the instances to new definitions; one whose effect or sub-effect is gone is deleted.
    void Rebind(const std::vector<Binding>& bindings, EffectDefinitions& definitions);

    Instances& Live() { return instances_; }
    const Instances& Live() const { return instances_; }
    double SystemTime() const { return system_time_; }
    /// What drawing needs of each instance, by id.
    const std::vector<DrawRecord>& Records() const { return transforms_.Records(); }
    void SetDetailLevel(int level);
    int DetailLevel() const { return detail_level_; }
    void SetLimits(const EffectLimits& limits) { limits_ = limits; }

  private:
    struct Emission {
        VisualEffectObject* emitter;   // borrowed
        double offset;                 // seconds that the child has already lived
    };
    static constexpr std::size_t kMaxEmissions = 256;   // of one Update; the rest is dropped

    void Start(const VisualEffect& effect, const D3DXVECTOR3& position, double time_offset);
    void StartSubEffect(SubEffect& sub, const D3DXVECTOR3& position, double time_offset, int trace_key);
    void AddInstance(SubEffect& sub, int number, const D3DXVECTOR3& position, double time_offset, int trace_key);
    void EmitBeforeStart(VisualEffectObject& object);
    void Emit(const VisualEffectObject& emitter, double offset);
    int NextTraceKeyBase();
    void RefreshRecords();
    // What the limits allow. The first time that they do not, a warning names the effect and the limit.
    bool HasRoom(const VisualEffect& effect);                                  // for one more instance
    bool MayStart(const VisualEffect& effect);                                 // one more effect
    bool Refuse(const VisualEffect& effect, int limit, const char* of_what);   // false

    void RecordEmissions(VisualEffectObject& object, float step);
    void RecordEven(VisualEffectObject& object, float step);
    void RecordRandom(VisualEffectObject& object, float step);
    bool Record(VisualEffectObject& object, double offset);

    const ErrorClass& reporter_;
    EffectLimits limits_;
    Instances instances_;
    TransformUpdate transforms_;
    std::array<Emission, kMaxEmissions> emissions_;
    std::size_t emission_count_ = 0;
    double system_time_ = 0;
    std::int32_t trace_key_counter_ = 0;
    int detail_level_ = 100;
    int starts_left_ = 0;
    int depth_ = 0;
    bool warned_ = false;   // of the limits, since the last Clear
};

}   // namespace sparkrig
