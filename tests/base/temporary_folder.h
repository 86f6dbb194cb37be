// A folder of its own for each test, current while the test runs and gone afterwards.
#pragma once
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace sparkrig {

class TemporaryFolder : public testing::Test {
  protected:
    TemporaryFolder() : before_(std::filesystem::current_path()) {
        std::string name = (std::filesystem::temp_directory_path() / "sparkrig.XXXXXX").string();
        folder_ = mkdtemp(name.data());
        std::filesystem::current_path(folder_);
    }
    ~TemporaryFolder() override {
        std::filesystem::current_path(before_);
        std::error_code error;
        std::filesystem::remove_all(folder_, error);
    }

    const std::filesystem::path& Folder() const { return folder_; }

    static void WriteFile(const std::filesystem::path& name, const std::string& content) {
        std::ofstream(name, std::ios::binary) << content;
    }
    static std::string ReadFile(const std::filesystem::path& name) {
        std::ifstream file(name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static std::vector<std::string> ReadLines(const std::filesystem::path& name) {
        std::ifstream file(name);
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);) lines.push_back(line);
        return lines;
    }

  private:
    std::filesystem::path before_, folder_;
};

}   // namespace sparkrig
