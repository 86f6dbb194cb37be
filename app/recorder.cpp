#include "app/recorder.h"

#include "app/json_text.h"

namespace sparkrig {

namespace {

void AddVector(JsonLine& line, const char* name, const D3DXVECTOR3& v) {
    const float values[] = {v.x, v.y, v.z};
    line.AddList(name, values);
}

std::string DescribeInstance(const EffectInstanceState& instance) {
    const D3DXQUATERNION& q = instance.rotation;
    const float rotation[] = {q.x, q.y, q.z, q.w};
    JsonLine line;
    line.Add("id", instance.id);
    line.Add("effect", instance.effect.c_str());
    line.Add("kind", instance.kind);
    line.Add("sub", instance.sub_index);
    line.Add("time", static_cast<float>(instance.time));
    line.Add("birth", static_cast<float>(instance.birth_delay));
    line.Add("count", instance.count);
    line.AddList("random", instance.random);
    AddVector(line, "base", instance.base);
    AddVector(line, "position", instance.position);
    AddVector(line, "scale", instance.scale);
    line.AddList("rotation", rotation);
    line.Add("angle", instance.angle);
    AddVector(line, "colour", instance.colour);
    line.Add("alpha", instance.alpha);
    return line.Finish();
}

}   // namespace

std::string DescribeFrame(const VisualEffectSystem& effects, int frame) {
    std::string instances;
    int live = 0;
    for (const EffectInstanceState& instance : effects.GetInstanceStates()) {
        instances += (instances.empty() ? "" : ",") + DescribeInstance(instance);
        ++live;
    }
    JsonLine line;
    line.Add("frame", frame);
    line.Add("time", static_cast<float>(effects.SystemTime()));
    line.Add("live", live);
    line.Add("drawn", effects.DrawnParticleCount());
    line.Add("draws", effects.DrawCallCount());
    line.AddJson("instances", "[" + instances + "]");
    return line.Finish();
}

}   // namespace sparkrig
