#include "gfx/shaders/shader_effect_search_list.h"

namespace sparkrig {

void ShaderSearchList::SetBaseName(const char* name) {
    base_name_ = name ? name : "";
    Rebuild();
}

void ShaderSearchList::SetShaderDirectory(const char* directory) {
    shader_directory_ = directory ? directory : "";
    Rebuild();
}

void ShaderSearchList::SetAlternativeDirectory(const char* directory) {
    alternative_directory_ = directory ? directory : "";
    Rebuild();
}

void ShaderSearchList::Rebuild() {
    files_.clear();
    for (const std::string& directory : {shader_directory_, alternative_directory_}) {
        if (directory.empty() || base_name_.empty()) continue;
        const bool separated = directory.back() == '\\' || directory.back() == '/';
        for (const char* extension : {".fxo", ".fx"})
            files_.push_back(directory + (separated ? "" : "\\") + base_name_ + extension);
    }
}

}   // namespace sparkrig
