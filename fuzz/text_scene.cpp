// Any bytes as a text scene.
#include "fuzz/scene_input.h"

void sparkrig::Try(Input input) { LoadAndPrint(input); }
