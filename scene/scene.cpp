#include "scene/scene.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <unordered_map>

#include "platform/system/ascii.h"

namespace sparkrig {

namespace {

std::string_view View(const String& text) { return {text.c_str(), static_cast<std::size_t>(text.GetLength())}; }

bool SameName(const String& name, const char* wanted, bool case_sensitive) {
    return case_sensitive ? name == wanted : EqualNoCase(name.c_str(), wanted);
}

template <class List>
auto* FindIn(const List& list, const char* name, bool case_sensitive) {
    for (auto& node : list)
        if (SameName(node.Name(), name, case_sensitive)) return &node;
    return static_cast<decltype(&list[0])>(nullptr);
}

/// Which nodes hang together, so that a ring is seen before it is closed.
class Trees {
  public:
    const KRN_3dObject* RootOf(const KRN_3dObject* node) {
        const KRN_3dObject* root = node;
        while (const KRN_3dObject* above = Above(root)) root = above;
        while (const KRN_3dObject* above = Above(node)) {   // the next search is short
            above_[node] = root;
            node = above;
        }
        return root;
    }
    void Hang(const KRN_3dObject* node, const KRN_3dObject* parent) { above_[node] = parent; }

  private:
    const KRN_3dObject* Above(const KRN_3dObject* node) const {
        const auto place = above_.find(node);
        return place == above_.end() || place->second == node ? nullptr : place->second;
    }
    std::unordered_map<const KRN_3dObject*, const KRN_3dObject*> above_;
};

}   // namespace

std::string LowerCase(const String& text) {
    std::string lower(View(text));
    for (char& c : lower) c = AsciiLower(c);
    return lower;
}

KRN_3dScene::KRN_3dScene() { SetName("KRN_3dScene"); }

template <class Action>
void KRN_3dScene::ForEachNode(Action action) const {
    for (KRN_Mesh& mesh : meshes) action(mesh);
    for (KRN_Camera& camera : cameras) action(camera);
    for (KRN_3dObject& helper : helpers) action(helper);
    for (KRN_Light& light : lights) action(light);
}

// ---- Nodes by name

KRN_3dObject* KRN_3dScene::FindObject(const char* name, bool case_sensitive) const {
    if (KRN_Mesh* mesh = FindMesh(name, case_sensitive)) return mesh;
    if (KRN_3dObject* helper = FindIn(helpers, name, case_sensitive)) return helper;
    if (KRN_Camera* camera = FindIn(cameras, name, case_sensitive)) return camera;
    return FindIn(lights, name, case_sensitive);
}

KRN_Mesh* KRN_3dScene::FindMesh(const char* name, bool case_sensitive) const {
    return FindIn(meshes, name, case_sensitive);
}

// ---- Time

std::vector<KRN_3dScene::Settling> KRN_3dScene::NodesByDepth() const {
    std::vector<Settling> nodes, line;
    std::unordered_map<const KRN_3dObject*, bool> placed;
    ForEachNode([&](KRN_3dObject& node) {
        for (KRN_3dObject* n = &node; n && !placed[n]; n = n->Parent()) {
            placed[n] = true;
            const bool looks = dynamic_cast<KRN_Target3dObject*>(n) != nullptr;
            line.push_back({n, !looks && !dynamic_cast<KRN_MeshBase*>(n), looks});
        }
        nodes.insert(nodes.end(), line.rbegin(), line.rend());
        line.clear();
    });
    return nodes;
}

void KRN_3dScene::SetSceneTime(double time, bool include_helpers) {
    const double t = time * static_cast<double>(speed);
    if (settling_order_.empty()) settling_order_ = NodesByDepth();
    for (const Settling& place : settling_order_) {
        if (place.looks) {
            place.node->KRN_3dObject::Animate(t, true, false);
        } else if (!place.is_helper || include_helpers) {
            place.node->Animate(t, true, false);
        }
    }
    for (KRN_Camera& camera : cameras) camera.TurnToTarget();
    for (KRN_Light& light : lights) light.TurnToTarget();
    Animate(t, true, false);
}

void KRN_3dScene::SetAnimationLength(float seconds) {
    ForEachNode([seconds](KRN_3dObject& node) { node.SetAnimationLength(seconds); });
    KRN_3dObject::SetAnimationLength(seconds);
}

void KRN_3dScene::SetSceneLooping(bool loops) {
    ForEachNode([loops](KRN_3dObject& node) { node.SetLooping(loops); });
    SetLooping(loops);
}

bool KRN_3dScene::SelectCamera(int number) {
    if (number >= cameras.Count()) {
        Warning("Camera nr %i does not exist", number);
        return false;
    }
    active_camera = number < 0 ? -1 : number;
    return true;
}

// ---- Steps of loading

void KRN_3dScene::LinkHierarchy() {
    std::unordered_map<std::string_view, KRN_3dObject*> by_name;   // the first of each name
    for (KRN_Mesh& mesh : meshes) by_name.try_emplace(View(mesh.Name()), &mesh);
    for (KRN_3dObject& helper : helpers) by_name.try_emplace(View(helper.Name()), &helper);
    for (KRN_Camera& camera : cameras) by_name.try_emplace(View(camera.Name()), &camera);
    for (KRN_Light& light : lights) by_name.try_emplace(View(light.Name()), &light);
    const auto find = [&](const String& name, const char* what, const KRN_3dObject& child) -> KRN_3dObject* {
        if (name.GetLength() == 0) return nullptr;
        const auto place = by_name.find(View(name));
        if (place != by_name.end()) return place->second;
        Warning("%s '%s' not found in scene '%s'. Child: '%s'", what, name.c_str(), Name().c_str(),
                child.Name().c_str());
        return nullptr;
    };
    Trees trees;
    const auto link_parent = [&](KRN_3dObject& node) {
        KRN_3dObject* parent = find(node.ParentName(), "Parent object", node);
        if (parent && trees.RootOf(parent) == &node) {
            node.Warning("Parent object '%s' descends from it", parent->Name().c_str());
            parent = nullptr;
        }
        node.HangOn(parent);
        if (parent) trees.Hang(&node, parent);
    };
    const auto link_target = [&](KRN_Target3dObject& node) {
        node.SetTarget(find(node.TargetName(), "Target object", node));
    };
    settling_order_.clear();
    ForEachNode([](KRN_3dObject& node) { node.HangOn(nullptr); });
    for (KRN_Mesh& mesh : meshes) {
        link_parent(mesh);
        mesh.bone_nodes.clear();
        for (const KRN_BoneInfo& bone : mesh.bones) mesh.bone_nodes.push_back(find(bone.name, "Bone", mesh));
    }
    for (KRN_Camera& camera : cameras) {
        link_parent(camera);
        link_target(camera);
    }
    for (KRN_3dObject& helper : helpers) link_parent(helper);
    for (KRN_Light& light : lights) {
        link_parent(light);
        link_target(light);
    }
}

void KRN_3dScene::ResolveClones() {
    enum class State { Open, OnTheWay, Settled };
    std::unordered_map<std::string, KRN_Mesh*> by_name;
    for (KRN_Mesh& mesh : meshes) by_name.try_emplace(LowerCase(mesh.Name()), &mesh);
    std::unordered_map<const KRN_Mesh*, State> states;
    for (KRN_Mesh& mesh : meshes) {
        std::vector<KRN_Mesh*> line;   // from the mesh to the first that has its geometry
        KRN_Mesh* source = &mesh;
        while (source->clone_source.GetLength() > 0 && states[source] == State::Open) {
            states[source] = State::OnTheWay;
            line.push_back(source);
            const auto place = by_name.find(LowerCase(source->clone_source));
            if (place == by_name.end()) Error("Clone Mesh '%s' not found", source->clone_source.c_str());
            source = place->second;
        }
        if (states[source] == State::OnTheWay) Warning("Clone Mesh '%s' is its own source", source->Name().c_str());
        for (; !line.empty(); line.pop_back()) {
            if (states[source] != State::OnTheWay) source->CopyMeshTo(*line.back(), true, true);
            source = line.back();
            states[source] = State::Settled;
        }
    }
}

void KRN_3dScene::SortBlendedMeshes() {
    for (KRN_Mesh& mesh : meshes) {
        bool blends = false;
        for (int group = 0; group < mesh.MaterialCount(); ++group) blends |= mesh.Material(group).blending;
        mesh.uses_blending = mesh.visible && blends;
    }
    const int count = meshes.Count();
    int front = 0;
    for (int next = 0; front < count; ++front) {
        if (meshes[front].uses_blending == 0) continue;
        next = std::max(next, front + 1);
        while (next < count && meshes[next].uses_blending != 0) ++next;
        if (next == count) break;
        meshes.Swap(front, next);
    }
    opaque_meshes = front;
}

void KRN_3dScene::Clear() {
    environment.reset();
    meshes.Clear();
    cameras.Clear();
    helpers.Clear();
    lights.Clear();
    settling_order_.clear();
    CopyNode(KRN_3dObject(), *this, false);
    static_cast<KRN_ClipObject&>(*this) = {};
    header = {};
    render_settings = {};
    speed = 1;
    active_camera = file_size = -1;
    opaque_meshes = 0;
    ambient = background = kOpaqueBlack;
}

/// Nobody may point at a node that goes.
void KRN_3dScene::ForgetNode(const KRN_3dObject& gone) {
    ForEachNode([&](KRN_3dObject& node) {
        if (node.Parent() == &gone) node.HangOn(nullptr);
    });
    for (KRN_Mesh& mesh : meshes)
        std::ranges::replace(mesh.bone_nodes, const_cast<KRN_3dObject*>(&gone), static_cast<KRN_3dObject*>(nullptr));
    for (KRN_Camera& camera : cameras)
        if (camera.Target() == &gone) camera.SetTarget(nullptr);
    for (KRN_Light& light : lights)
        if (light.Target() == &gone) light.SetTarget(nullptr);
    settling_order_.clear();
}

bool KRN_3dScene::TakeBoundsMesh() {
    KRN_Mesh* bounds = FindMesh("Bounds", false);
    if (!bounds) return false;
    SetSceneTime(0, true);
    static_cast<KRN_ClipObject&>(*this) = TransformedBounds(*bounds, bounds->WorldMatrix());
    clip_mode = 3;
    ForgetNode(*bounds);
    for (int i = 0; i < meshes.Count(); ++i)
        if (&meshes[i] == bounds) return meshes.Delete(i), true;
    return true;
}

void KRN_3dScene::MeasureBounds() {
    constexpr float kFar = 89999998976.0f;
    static_cast<KRN_ClipObject&>(*this) = {};
    if (meshes.Count() == 0) return;
    KRN_ClipObject all;
    all.box_minimum = {kFar, kFar, kFar};
    all.box_maximum = -all.box_minimum;
    for (const KRN_Mesh& mesh : meshes) {
        D3DXMATRIX placed;
        D3DXMatrixMultiply(&placed, &mesh.PivotMatrix(), &mesh.WorldMatrix());
        const KRN_ClipObject box = TransformedBounds(mesh, placed);
        all.box_minimum = Smaller(all.box_minimum, box.box_minimum);
        all.box_maximum = Larger(all.box_maximum, box.box_maximum);
    }
    all.sphere_centre = (all.box_minimum + all.box_maximum) * 0.5f;
    all.sphere_radius = D3DXVec3Length(all.box_maximum - all.box_minimum) * 0.5f;
    all.clip_mode = 3;
    static_cast<KRN_ClipObject&>(*this) = all;
}

}   // namespace sparkrig
