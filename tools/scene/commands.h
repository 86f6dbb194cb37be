// What the scene tool does. Each command says on the error stream what is wrong with a file, one line a report, and
// answers whether all is well.
#pragma once
#include <string>
#include <vector>

namespace sparkrig {

bool PrintSceneInfo(const std::string& file);
bool PrintSceneDump(const std::string& file, float time, bool geometry);
bool ConvertScene(const std::string& in, const std::string& out);
/// What nearly every mesh has, more vertices than points, is told and counts as well all the same.
bool CheckScenes(const std::vector<std::string>& files);

}   // namespace sparkrig
