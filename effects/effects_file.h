// Reads the effects file into the definitions, for playing or for a check.
#pragma once
#include <string>
#include <vector>

#include "base/error.h"
#include "base/report_listener.h"
#include "effects/effect_definitions.h"

namespace sparkrig {

/// Adds the effects of a file. What is wrong in it is an error of `reporter`, which ends the loading; a block of an
/// unknown name is a warning, as is a number that does not fit into its field.
void LoadEffectsFile(const char* file, const ErrorClass& reporter, EffectDefinitions& definitions);

/// Something that the effects file names and that lies elsewhere.
struct NamedThing {
    enum class Kind { Texture, TraceTexture, Scene } kind;   // the catalogue's or a file; the catalogue's; a file
    std::string name;
    TextPlace place;   // of the key
};

/// The same for a check, which wants every mistake at once: errors are reported and do not end it, and neither unknown
/// keys nor unknown words pass in silence; each comes with the nearest known word. Returns what the file names, in its
/// order.
std::vector<NamedThing> CheckEffectsFile(const char* file, const ErrorClass& reporter, EffectDefinitions& definitions);

}   // namespace sparkrig
