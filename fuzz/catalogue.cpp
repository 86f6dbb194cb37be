// Any bytes as a texture catalogue: pairs of name and file, or a report.
#include "fuzz/target.h"
#include "gfx/textures/catalogue_file.h"

void sparkrig::Try(Input input) {
    CatalogueFile catalogue(Put(input).c_str());
    String name, file;
    for (std::size_t pairs = 0; catalogue.Next(name, file); ++pairs) {
        Require(pairs <= input.size() / 5);   // "a"="b" takes at least ""="" of it
        Require(name.IndexOf("\"") < 0 && file.IndexOf("\"") < 0);
    }
}
