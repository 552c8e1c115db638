// A folder that goes away with its test, and programs that are not ours run in it.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/wait.h>

namespace fs = std::filesystem;

class Scratch : public ::testing::Test {
  protected:
    Scratch() {
        std::string pattern = (fs::temp_directory_path() / "engine-scratch-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) std::abort();
        base = pattern;
    }
    ~Scratch() override {
        std::error_code ignored;
        fs::remove_all(base, ignored);
    }

    fs::path write(const std::string& name, const std::string& bytes) {
        std::ofstream(base / name, std::ios::binary) << bytes;
        return base / name;
    }
    static std::string bytesOf(const fs::path& path) {
        std::ostringstream bytes;
        bytes << std::ifstream(path, std::ios::binary).rdbuf();
        return bytes.str();
    }
    // Bytes that don't repeat, so that a block in a wrong place shows.
    static std::string noise(size_t count, uint64_t seed = 1) {
        std::string bytes(count, '\0');
        for (char& byte : bytes) {
            seed = seed * 6364136223846793005u + 1442695040888963407u;
            byte = static_cast<char>(seed >> 56);
        }
        return bytes;
    }
    // What the command prints, both ways; a failure is one of the test.
    std::string run(const std::string& command) {
        std::FILE* const pipe =
            ::popen(("cd '" + base.string() + "' && { " + command + "; } 2>&1").c_str(), "r");
        if (pipe == nullptr) std::abort();
        std::string told;
        for (int byte; (byte = std::fgetc(pipe)) != EOF;)
            told += static_cast<char>(byte);
        const int status = ::pclose(pipe);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << command << '\n' << told;
        return told;
    }

    fs::path base;
};
