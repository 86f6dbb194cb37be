#include "platform/d3dx/effect_object.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <string_view>

#include "platform/system/ascii.h"

namespace sparkrig {

namespace {

constexpr DWORD kDoNotSaveState = 1;   // of Begin

bool IsScalar(VariableClass kind) { return kind == VariableClass::Scalar; }
bool IsScalarOrVector(VariableClass kind) { return kind == VariableClass::Scalar || kind == VariableClass::Vector; }
bool IsMatrix(VariableClass kind) { return kind == VariableClass::Matrix; }
bool IsTexture(VariableClass kind) { return kind == VariableClass::Texture; }

}   // namespace

Effect::Effect(IDirect3DDevice9* device, EffectFile effect, EffectPool* pool)
    : device_(DevicePtr<IDirect3DDevice9>::Share(device)),
      program_(*device, std::move(effect), pool),
      pool_(DevicePtr<EffectPool>::Share(pool)) {
    MakeHandles();
}

// ---- Handles

void Effect::MakeHandles() {
    const EffectFile& file = program_.File();
    for (std::size_t i = 0; i < file.parameters.size(); ++i)
        handles_.push_back({Kind::Parameter, i, &file.parameters[i].variable});
    for (std::size_t i = 0; i < file.techniques.size(); ++i) handles_.push_back({Kind::Technique, i});
    for (std::size_t i = 0; i < file.parameters.size(); ++i) AddAnnotations(i, file.parameters[i].annotations);
    for (std::size_t i = 0; i < file.techniques.size(); ++i) {
        const EffectTechnique& technique = file.techniques[i];
        const std::size_t handle = file.parameters.size() + i;
        AddAnnotations(handle, technique.annotations);
        handles_[handle].first_pass = handles_.size();
        for (std::size_t pass = 0; pass < technique.passes.size(); ++pass)
            handles_.push_back({Kind::Pass, pass, nullptr, &technique.passes[pass]});
        for (std::size_t pass = 0; pass < technique.passes.size(); ++pass)
            AddAnnotations(handles_[handle].first_pass + pass, technique.passes[pass].annotations);
    }
}

void Effect::AddAnnotations(std::size_t owner, const std::vector<EffectVariable>& annotations) {
    handles_[owner].first_child = handles_.size();
    handles_[owner].children = annotations.size();
    for (const EffectVariable& annotation : annotations) handles_.push_back({Kind::Annotation, 0, &annotation});
}

const D3DXHandleTag* Effect::Find(D3DXHANDLE handle, Kind kind) const {
    const std::less<> before;   // a foreign pointer is compared, never followed
    const D3DXHandleTag* const first = handles_.data();
    if (!handle || before(handle, first) || !before(handle, first + handles_.size())) return nullptr;
    return handle->kind == kind ? handle : nullptr;
}

const D3DXHandleTag* Effect::FindVariable(D3DXHANDLE handle) const {
    const D3DXHandleTag* parameter = Find(handle, Kind::Parameter);
    return parameter ? parameter : Find(handle, Kind::Annotation);
}

const std::vector<DWORD>& Effect::WordsOf(const D3DXHandleTag& variable) {
    return variable.kind == Kind::Parameter ? program_.Value(variable.index).words : variable.variable->words;
}

const D3DXHandleTag* Effect::FindParameter(D3DXHANDLE handle, bool (*good)(VariableClass), bool array) {
    const D3DXHandleTag* parameter = Find(handle, Kind::Parameter);
    if (!parameter || !good(parameter->variable->kind)) return nullptr;
    return array || parameter->variable->elements == 0 ? parameter : nullptr;
}

template <class Match>
D3DXHANDLE Effect::FindMember(D3DXHANDLE parent, const Match& match) const {
    const D3DXHandleTag* owner = Find(parent, Kind::Parameter);
    if (parent && !owner) return nullptr;
    const std::int32_t wanted = owner ? static_cast<std::int32_t>(owner->index) : -1;
    const std::vector<EffectParameter>& parameters = program_.File().parameters;
    for (std::size_t i = 0; i < parameters.size(); ++i)
        if (parameters[i].parent == wanted && match(parameters[i])) return &handles_[i];
    return nullptr;
}

D3DXHANDLE Effect::GetParameter(D3DXHANDLE parent, UINT index) {
    UINT left = index;
    return FindMember(parent, [&](const EffectParameter&) { return left-- == 0; });
}

D3DXHANDLE Effect::GetParameterByName(D3DXHANDLE parent, const char* name) {
    if (!name) return nullptr;
    return FindMember(parent, [&](const EffectParameter& parameter) { return parameter.variable.name == name; });
}

D3DXHANDLE Effect::GetParameterBySemantic(D3DXHANDLE parent, const char* semantic) {
    if (!semantic || !*semantic) return nullptr;
    return FindMember(parent, [&](const EffectParameter& parameter) {
        return std::ranges::equal(parameter.semantic, std::string_view(semantic), {}, AsciiLower, AsciiLower);
    });
}

D3DXHANDLE Effect::GetTechnique(UINT index) {
    const EffectFile& file = program_.File();
    return index < file.techniques.size() ? &handles_[file.parameters.size() + index] : nullptr;
}

D3DXHANDLE Effect::GetPass(D3DXHANDLE technique, UINT index) {
    const D3DXHandleTag* owner = Find(technique, Kind::Technique);
    if (!owner || index >= program_.File().techniques[owner->index].passes.size()) return nullptr;
    return &handles_[owner->first_pass + index];
}

D3DXHANDLE Effect::GetAnnotationByName(D3DXHANDLE object, const char* name) {
    if (!name) return nullptr;
    for (const Kind kind : {Kind::Parameter, Kind::Technique, Kind::Pass}) {
        const D3DXHandleTag* owner = Find(object, kind);
        for (std::size_t i = 0; owner && i < owner->children; ++i) {
            const D3DXHandleTag& annotation = handles_[owner->first_child + i];
            if (annotation.variable->name == name) return &annotation;
        }
    }
    return nullptr;
}

// ---- Descriptions

HRESULT Effect::GetDesc(D3DXEFFECT_DESC* desc) {
    if (!desc) return D3DERR_INVALIDCALL;
    const EffectFile& file = program_.File();
    const auto top = std::ranges::count(file.parameters, -1, &EffectParameter::parent);
    *desc = {"fxc", static_cast<UINT>(top), static_cast<UINT>(file.techniques.size()),
             static_cast<UINT>(file.functions.size())};
    return D3D_OK;
}

HRESULT Effect::GetTechniqueDesc(D3DXHANDLE handle, D3DXTECHNIQUE_DESC* desc) {
    const D3DXHandleTag* found = Find(handle, Kind::Technique);
    if (!found || !desc) return D3DERR_INVALIDCALL;
    const EffectTechnique& technique = program_.File().techniques[found->index];
    *desc = {technique.name.c_str(), static_cast<UINT>(technique.passes.size()),
             static_cast<UINT>(technique.annotations.size())};
    return D3D_OK;
}

HRESULT Effect::GetPassDesc(D3DXHANDLE handle, D3DXPASS_DESC* desc) {
    const D3DXHandleTag* found = Find(handle, Kind::Pass);
    if (!found || !desc) return D3DERR_INVALIDCALL;
    *desc = {found->pass->name.c_str(), static_cast<UINT>(found->pass->annotations.size()), nullptr, nullptr};
    for (const StateAssignment& state : found->pass->states) {
        const EffectFunction* found_function = program_.FunctionOf(state);
        const DWORD* function = found_function ? &found_function->code.inputs : nullptr;
        if (state.group == StateGroup::VertexShader) desc->pVertexShaderFunction = function;
        if (state.group == StateGroup::PixelShader) desc->pPixelShaderFunction = function;
    }
    return D3D_OK;
}

// ---- Values

HRESULT Effect::GetString(D3DXHANDLE parameter, const char** text) {
    const D3DXHandleTag* found = FindVariable(parameter);
    if (!found || !text || found->variable->kind != VariableClass::String) return D3DERR_INVALIDCALL;
    *text = found->variable->text.c_str();
    return D3D_OK;
}

HRESULT Effect::GetFloat(D3DXHANDLE parameter, float* value) {
    const D3DXHandleTag* found = FindVariable(parameter);
    if (!found || !value || !IsScalar(found->variable->kind)) return D3DERR_INVALIDCALL;
    *value = FloatOf(found->variable->number, WordsOf(*found)[0]);
    return D3D_OK;
}

HRESULT Effect::GetInt(D3DXHANDLE parameter, INT* value) {
    const D3DXHandleTag* found = FindVariable(parameter);
    if (!found || !value || !IsScalar(found->variable->kind)) return D3DERR_INVALIDCALL;
    *value = IntOf(found->variable->number, WordsOf(*found)[0]);
    return D3D_OK;
}

HRESULT Effect::GetVector(D3DXHANDLE parameter, D3DXVECTOR4* vector) {
    const D3DXHandleTag* found = FindVariable(parameter);
    if (!found || !vector || !IsScalarOrVector(found->variable->kind)) return D3DERR_INVALIDCALL;
    float components[4] = {};
    for (DWORD i = 0; i < found->variable->columns; ++i)
        components[i] = FloatOf(found->variable->number, WordsOf(*found)[i]);
    *vector = {components[0], components[1], components[2], components[3]};
    return D3D_OK;
}

template <class Number>
HRESULT Effect::SetScalar(D3DXHANDLE parameter, Number value) {
    const D3DXHandleTag* found = FindParameter(parameter, IsScalar, false);
    if (!found) return D3DERR_INVALIDCALL;
    program_.Value(found->index).words[0] = WordOf(found->variable->number, value);
    return D3D_OK;
}

HRESULT Effect::SetFloat(D3DXHANDLE parameter, float value) { return SetScalar(parameter, value); }
HRESULT Effect::SetInt(D3DXHANDLE parameter, INT value) { return SetScalar(parameter, value); }
HRESULT Effect::SetBool(D3DXHANDLE parameter, BOOL value) { return SetScalar(parameter, INT{value != 0}); }

HRESULT Effect::SetVector(D3DXHANDLE parameter, const D3DXVECTOR4* vector) {
    const D3DXHandleTag* found = FindParameter(parameter, IsScalarOrVector, false);
    if (!found || !vector) return D3DERR_INVALIDCALL;
    StoreVector(*found->variable, program_.Value(found->index).words, 0, *vector);
    return D3D_OK;
}

HRESULT Effect::SetVectorArray(D3DXHANDLE parameter, const D3DXVECTOR4* vectors, UINT count) {
    const D3DXHandleTag* found = FindParameter(parameter, IsScalarOrVector, true);
    if (!found || (!vectors && count > 0)) return D3DERR_INVALIDCALL;
    const UINT stored = std::min(count, std::max<UINT>(found->variable->elements, 1));
    for (UINT i = 0; i < stored; ++i) StoreVector(*found->variable, program_.Value(found->index).words, i, vectors[i]);
    return D3D_OK;
}

HRESULT Effect::SetMatrix(D3DXHANDLE parameter, const D3DXMATRIX* matrix) {
    const D3DXHandleTag* found = FindParameter(parameter, IsMatrix, false);
    if (!found || !matrix) return D3DERR_INVALIDCALL;
    StoreMatrix(*found->variable, program_.Value(found->index).words, 0, *matrix);
    return D3D_OK;
}

HRESULT Effect::SetMatrixArray(D3DXHANDLE parameter, const D3DXMATRIX* matrices, UINT count) {
    const D3DXHandleTag* found = FindParameter(parameter, IsMatrix, true);
    if (!found || (!matrices && count > 0)) return D3DERR_INVALIDCALL;
    const UINT stored = std::min(count, std::max<UINT>(found->variable->elements, 1));
    for (UINT i = 0; i < stored; ++i) StoreMatrix(*found->variable, program_.Value(found->index).words, i, matrices[i]);
    return D3D_OK;
}

HRESULT Effect::SetTexture(D3DXHANDLE parameter, IDirect3DTexture9* texture) {
    const D3DXHandleTag* found = FindParameter(parameter, IsTexture, false);
    if (!found) return D3DERR_INVALIDCALL;
    program_.Value(found->index).texture = DevicePtr<IDirect3DTexture9>::Share(texture);
    return D3D_OK;
}

// ---- Techniques and drawing

HRESULT Effect::ValidateTechnique(D3DXHANDLE technique) {
    const D3DXHandleTag* found =
        Find(technique ? technique : GetTechnique(static_cast<UINT>(technique_)), Kind::Technique);
    return found && program_.WhyNot(found->index).empty() ? D3D_OK : D3DERR_INVALIDCALL;
}

HRESULT Effect::SetTechnique(D3DXHANDLE technique) {
    const D3DXHandleTag* found = Find(technique, Kind::Technique);
    if (!found || begun_) return D3DERR_INVALIDCALL;
    technique_ = found->index;
    return D3D_OK;
}

HRESULT Effect::Begin(UINT* passes, DWORD flags) {
    const EffectFile& file = program_.File();
    if (begun_ || technique_ >= file.techniques.size()) return D3DERR_INVALIDCALL;
    if ((flags & kDoNotSaveState) == 0) {
        const HRESULT result = saved_.Capture(*device_, program_.ChangedStates(technique_));
        if (FAILED(result)) return result;
    }
    begun_ = true;
    if (passes) *passes = static_cast<UINT>(file.techniques[technique_].passes.size());
    return D3D_OK;
}

HRESULT Effect::BeginPass(UINT pass) {
    if (!begun_ || in_pass_) return D3DERR_INVALIDCALL;
    const EffectTechnique& technique = program_.File().techniques[technique_];
    if (pass >= technique.passes.size()) return D3DERR_INVALIDCALL;
    const HRESULT result = program_.ApplyPass(technique.passes[pass]);
    in_pass_ = SUCCEEDED(result);
    return result;
}

HRESULT Effect::EndPass() {
    in_pass_ = false;
    return D3D_OK;
}

HRESULT Effect::End() {
    in_pass_ = false;
    begun_ = false;
    return saved_.Restore(*device_);
}

HRESULT Effect::OnLostDevice() {
    saved_.Forget();
    begun_ = in_pass_ = false;
    program_.ReleaseDefaultPool();
    return D3D_OK;
}

HRESULT Effect::OnResetDevice() { return D3D_OK; }

}   // namespace sparkrig
