// The records of a binary scene: each is one table of fields, read and written by the same rows. What differs between
// versions stands in the row that differs.
#pragma once
#include "scene/record_archive.h"
#include "scene/scene.h"

namespace sparkrig {

struct SceneRecords {
    template <class A>
    static void Node(A& a, Ref<A, KRN_3dObject> node);
    template <class A>
    static void TargetNode(A& a, Ref<A, KRN_Target3dObject> node);
    template <class A>
    static void Camera(A& a, Ref<A, KRN_Camera> camera);
    template <class A>
    static void Light(A& a, Ref<A, KRN_Light> light);
    template <class A>
    static void Material(A& a, Ref<A, MeshMaterial> material);
    template <class A>
    static void Textures(A& a, Ref<A, TextureRecord> textures);
    template <class A>
    static void Bone(A& a, Ref<A, KRN_BoneInfo> bone);
    template <class A>
    static void Header(A& a, Ref<A, SceneHeader> header);
    template <class A>
    static void Volume(A& a, Ref<A, KRN_ClipObject> volume);
    /// Of the scene record, what stands between the volume and the lists of nodes.
    template <class A>
    static void Settings(A& a, Ref<A, KRN_3dScene> scene);
    /// A mesh's record in front of its geometry and behind it.
    template <class A>
    static void MeshStart(A& a, Ref<A, KRN_MeshBase> mesh);
    template <class A>
    static void MeshEnd(A& a, Ref<A, KRN_MeshBase> mesh);
};

}   // namespace sparkrig
