// Simulated power cuts. DiskRecorder writes down what a program does to its files; SimulatedDisk
// repeats it step by step and says, at any step, what a disk might hold if the power failed there.
//
// What is assumed of the disk: a sync of a file makes its bytes and its size safe, a sync of the
// folder the names in it. Of the writes and truncations since, any may have reached the disk,
// whatever their order, a write also in part, by sectors of 512 bytes; a file may have grown
// without the bytes that were to fill it, which then are zeros. Bytes outside a write stay as they
// are. Creations, removals and renamings of files reach the disk in their order, each as a whole,
// but any number of the last ones may be undone. What is given at the start is safe.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/support/file_calls.h"

namespace zorvel {

// Bytes by path.
using FileImages = std::map<std::string, std::string>;

struct RecordedCall {
    FileCall call;
    std::string bytes;  // of a write: those of the call last only as long as the call
};

class DiskRecorder : public CallListener {
  public:
    void after(const FileCall& call) override;
    [[nodiscard]] const std::vector<RecordedCall>& calls() const { return calls_; }

  private:
    std::vector<RecordedCall> calls_;
};

class SimulatedDisk {
  public:
    explicit SimulatedDisk(const FileImages& start);

    void repeat(const RecordedCall& recorded);
    // What the disk might hold now.
    [[nodiscard]] FileImages afterCut(std::mt19937& random) const;

  private:
    struct Change {
        bool truncates = false;
        std::size_t offset = 0;  // of a truncation the new size
        std::string bytes;
    };
    struct File {
        std::string safe;
        std::vector<Change> unsafe;
    };
    using FilePointer = std::shared_ptr<File>;
    using Names = std::map<std::string, FilePointer>;

    void openFile(const FileCall& call);
    void changeNames(const Names& names);
    void sync(const FileCall& call);
    static void apply(const Change& change, std::string& bytes);
    static void applyTorn(const Change& change, std::string& bytes, std::mt19937& random);
    static std::string survivor(const File& file, double share, std::mt19937& random);

    // The names as they were safe, and as they stood after each change since.
    std::vector<Names> names_;
};

}  // namespace zorvel
