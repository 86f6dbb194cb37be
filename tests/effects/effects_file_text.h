#pragma once
#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace sparkrig {

/// The name of a new file with this text.
inline std::string WriteEffectsFile(const std::string& text) {
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    const std::string file = testing::TempDir() + test->test_suite_name() + "_" + test->name() + ".cfg";
    std::ofstream(file, std::ios::binary) << text;
    return file;
}

}   // namespace sparkrig
