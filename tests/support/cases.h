// Cases that stand in a file of their own: each begins with a line "== HEAD", what is before the first does not count.
#pragma once
#include <fstream>
#include <string>
#include <vector>

namespace sparkrig {

struct Case {
    std::string head, text;
};

inline std::vector<Case> ReadCases(const std::string& file_name) {
    std::vector<Case> cases;
    std::ifstream file(file_name, std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("== "))
            cases.push_back({line.substr(3), ""});
        else if (!cases.empty())
            cases.back().text += line + "\n";
    }
    return cases;
}

}   // namespace sparkrig
