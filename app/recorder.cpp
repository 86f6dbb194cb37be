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

bool RecordFrame(const VisualEffectSystem& effects, int frame, OutputFile& file) {
    JsonLine line;
    line.Add("frame", frame);
    line.Add("time", static_cast<float>(effects.SystemTime()));
    line.Add("live", effects.LiveInstanceCount());
    line.Add("drawn", effects.DrawnParticleCount());
    line.Add("draws", effects.DrawCallCount());
    file.Write(line.Begin("instances"));
    const char* between = "";
    for (const EffectInstanceState& instance : effects.GetInstanceStates()) {
        if (!file.Write(between + DescribeInstance(instance))) break;
        between = ",";
    }
    return file.Write(std::string(JsonLine::kEnd) + "\n");
}

}   // namespace sparkrig
