// The process entry.
#include "app/program.h"

int main(int count, char** words) { return sparkrig::RunProgram({words + 1, words + count}); }
