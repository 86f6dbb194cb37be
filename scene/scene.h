// A scene: named nodes in four lists, what binds them to each other, and the settings of the whole. Start here.
//
//     KRN_3dScene scene;
//     LoadScene(scene, "models\\rock.3sc");      // scene/load_scene.h
//     scene.SetSceneTime(1.5, true);             // every node stands where it belongs at 1.5 s
//     for (const KRN_Mesh& mesh : scene.meshes) ...
//
// Plain data: no device is needed to load, animate or write it.
#pragma once
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/dyna_mem.h"
#include "scene/camera.h"
#include "scene/light.h"
#include "scene/mesh.h"

namespace sparkrig {

/// Owns nodes of one type. Their addresses stay; their positions change with Delete and Swap.
template <class Node, int N>
class NodeList {
  public:
    Node& Add() {
        std::unique_ptr<Node>& slot = *slots_.Get(slots_.AddNew());
        slot = std::make_unique<Node>();
        return *slot;
    }
    int Count() const { return slots_.GetCount(); }
    Node& operator[](int position) const { return **slots_.GetAt(position); }
    void Delete(int position) { slots_.DeleteAt(position); }
    void Swap(int a, int b) { slots_.GetAt(a)->swap(*slots_.GetAt(b)); }
    void Clear() { slots_.Clear(); }

    class Iterator {
      public:
        Iterator(const NodeList& list, int position) : list_(list), position_(position) {}
        Node& operator*() const { return list_[position_]; }
        Iterator& operator++() {
            ++position_;
            return *this;
        }
        bool operator!=(const Iterator& other) const { return position_ != other.position_; }

      private:
        const NodeList& list_;
        int position_;
    };
    Iterator begin() const { return {*this, 0}; }
    Iterator end() const { return {*this, Count()}; }

  private:
    DynaMem<std::unique_ptr<Node>, N, 1> slots_;
};

/// For names whose letter case does not count.
std::string LowerCase(const String& text);

/// What stands in a file beside the scene itself.
struct SceneHeader {
    bool binary = false;
    int version = 100;   // as the file writes it: 211 for 2.11, 106
    String name;         // of the scene's record, which stays when the file is given another name
    float first_frame = 0, frame_speed = 30;
    std::uint32_t spare_value = 0;
    String sound, spare_name;

    /// When the animation starts: seconds, 0 in a scene without speed.
    double StartTime() const { return frame_speed != 0 ? static_cast<double>(first_frame / frame_speed) : 0; }
};

/// The seventeen words of a scene's render settings. Those without a name are kept.
struct RenderSettings {
    static constexpr std::size_t kWords = 17, kFogOn = 7, kFogColour = 10;
    std::array<std::uint32_t, kWords> words = {};

    bool FogOn() const { return words[kFogOn] != 0; }
    D3DCOLOR FogColour() const { return words[kFogColour]; }
};

class KRN_3dScene : public KRN_3dClipObject {
  public:
    KRN_3dScene();
    KRN_3dScene(const KRN_3dScene&) = delete;
    KRN_3dScene& operator=(const KRN_3dScene&) = delete;
    ~KRN_3dScene() override = default;

    // ---- Nodes by name. The first one of meshes, helpers, cameras and lights, or null.
    KRN_3dObject* FindObject(const char* name, bool case_sensitive) const;
    KRN_Mesh* FindMesh(const char* name, bool case_sensitive) const;

    // ---- Time
    /// Places every node as it stands at a time (seconds, times the scene's speed), each after its parent. Without
    /// helpers these stay where they are.
    void SetSceneTime(double time, bool include_helpers);
    /// Of every node, and of the scene.
    void SetAnimationLength(float seconds);
    void SetSceneLooping(bool loops);
    /// A negative number selects none. False, with a warning, when there is no such camera.
    bool SelectCamera(int number);

    // ---- Steps of loading
    /// Binds parents, bones and targets by name. What is missing is a warning.
    void LinkHierarchy();
    /// Gives clones the geometry of their sources. A source that is not there is an error; in a ring of clones nobody
    /// has any.
    void ResolveClones();
    /// Puts the meshes that blend behind those that do not.
    void SortBlendedMeshes();
    /// The volume around the meshes as they stand now, or none.
    void MeasureBounds();
    /// Makes the mesh called "Bounds" the volume of the scene and deletes it. False when there is none.
    bool TakeBoundsMesh();
    /// Empty, as made.
    void Clear();

    void Write(File& file) const override;

    SceneHeader header;
    int active_camera = -1;   // -1 for none
    int file_size = -1;
    int opaque_meshes = 0;   // how many meshes, from the front, do not blend
    float speed = 1;
    D3DCOLOR ambient = kOpaqueBlack, background = kOpaqueBlack;
    std::optional<TextureRecord> environment;
    RenderSettings render_settings;
    NodeList<KRN_Mesh, 16> meshes;   // in drawing order
    NodeList<KRN_Camera, 4> cameras;
    NodeList<KRN_3dObject, 32> helpers;   // bones and targets too
    NodeList<KRN_Light, 4> lights;

  private:
    static constexpr D3DCOLOR kOpaqueBlack = 0xFF000000;

    template <class Action>
    void ForEachNode(Action action) const;
    /// A node and what it takes to place it.
    struct Settling {
        KRN_3dObject* node;
        bool is_helper, looks;   // looks: at a target, when all stand
    };
    std::vector<Settling> NodesByDepth() const;
    void ForgetNode(const KRN_3dObject& node);

    std::vector<Settling> settling_order_;   // parents first; empty when it has to be made anew
};

}   // namespace sparkrig
