// Cases that stand in a file of their own: each begins with a line "== HEAD", or another mark; what is before the
// first, and empty lines at the end of a case, do not count.
#pragma once
#include <fstream>
#include <string>
#include <vector>

namespace sparkrig {

struct Case {
    std::string head, text;
};

inline std::vector<Case> ReadCases(const std::string& file_name, const std::string& mark = "== ") {
    std::vector<Case> cases;
    std::ifstream file(file_name, std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(mark))
            cases.push_back({line.substr(mark.size()), ""});
        else if (!cases.empty())
            cases.back().text += line + "\n";
    }
    return cases;
}

}   // namespace sparkrig
