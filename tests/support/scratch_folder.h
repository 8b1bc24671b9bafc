// A folder of its own for one test, gone with all it holds at the end.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace zorvel {

class ScratchFolder : public testing::Test {
  protected:
    void SetUp() override { makeFolder(std::filesystem::temp_directory_path()); }
    void makeFolder(const std::filesystem::path& parent) {
        std::string name = (parent / "zorvel-XXXXXX").string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder_ = name;
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    [[nodiscard]] std::string path(const std::string& name) const { return folder_ / name; }
    void put(const std::string& name, const std::string& bytes) const {
        std::ofstream(path(name), std::ios::binary) << bytes;
    }
    [[nodiscard]] std::string bytesOf(const std::string& name) const {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    [[nodiscard]] unsigned modeOf(const std::string& name) const {
        struct stat status {};
        return stat(path(name).c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
    }
    [[nodiscard]] std::size_t entries() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(folder_), {}));
    }

    std::filesystem::path folder_;
};

// In memory where the system has a folder there, for tests that write and sync a lot.
class QuickScratchFolder : public ScratchFolder {
  protected:
    void SetUp() override {
        const char* const memory = "/dev/shm";
        if (access(memory, W_OK) != 0) return ScratchFolder::SetUp();
        makeFolder(memory);
    }
};

}  // namespace zorvel
