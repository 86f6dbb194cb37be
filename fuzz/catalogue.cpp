// Any bytes as a texture catalogue: pairs of name and file, or a report.
#include <cstring>

#include "base/log.h"
#include "fuzz/input_file.h"
#include "fuzz/require.h"
#include "gfx/textures/catalogue_file.h"

using namespace sparkrig;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const InputFile input;
    SilenceLog();
    input.Put(data, size);
    try {
        CatalogueFile catalogue(input.Name());
        String name, file;
        for (std::size_t pairs = 0; catalogue.Next(name, file); ++pairs) {
            Require(pairs <= size / 5);   // "a"="b" takes at least ""="" of it
            Require(!std::strchr(name.c_str(), '"') && !std::strchr(file.c_str(), '"'));
        }
    } catch (const ErrorMsg&) {
    }
    return 0;
}
