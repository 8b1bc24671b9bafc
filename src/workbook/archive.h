// The files within a ZIP archive in memory, inflated as they are read; nothing is unpacked to the
// disk. Messages are parts of sentences that follow the name of the archive's file. One thread at a
// time per archive.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "base/result.h"

struct zip;
struct zip_file;

namespace zorvel {

// What a workbook may hold at most. Larger ones are refused.
struct WorkbookLimits {
    std::size_t entries = 10'000;
    std::uint64_t inflatedBytes = std::uint64_t{4} << 30;  // of one file within it
    std::size_t depth = 256;                               // of XML elements
    std::size_t tagBytes = 2 << 20;
    std::size_t cellBytes = 1 << 20;
    std::size_t rowBytes = 64 << 20;
    std::size_t sharedBytes = 256 << 20;  // of texts that cells share
    std::size_t cells = 50'000'000;       // that are not empty, of one sheet
};

// A file within an archive, read once from its beginning. The checksum is compared at the end.
class ArchiveFile {
  public:
    // The number of bytes read; 0 at the end, or where the file cannot be read on.
    std::size_t read(char* bytes, std::size_t size);
    [[nodiscard]] const std::optional<Problem>& problem() const { return problem_; }
    [[nodiscard]] const std::string& name() const { return name_; }

  private:
    friend class Archive;
    ArchiveFile(std::shared_ptr<zip> zip, std::shared_ptr<zip_file> file, std::string name,
                std::uint64_t size)
        : zip_(std::move(zip)), file_(std::move(file)), name_(std::move(name)), left_(size) {}

    std::shared_ptr<zip> zip_;  // outlives the file
    std::shared_ptr<zip_file> file_;
    std::string name_;
    std::uint64_t left_;  // of the size that the archive states
    std::optional<Problem> problem_;
};

class Archive {
  public:
    static Result<Archive> open(std::shared_ptr<const std::string> bytes,
                                const WorkbookLimits& limits);

    // Case does not matter.
    [[nodiscard]] bool has(const std::string& name) const;
    [[nodiscard]] Result<ArchiveFile> file(const std::string& name) const;
    // The start of a small file; empty where there is none.
    [[nodiscard]] std::string start(const std::string& name) const;

  private:
    Archive(std::shared_ptr<const std::string> bytes, std::shared_ptr<zip> zip,
            const WorkbookLimits& limits)
        : bytes_(std::move(bytes)), zip_(std::move(zip)), limits_(limits) {}

    std::shared_ptr<const std::string> bytes_;
    std::shared_ptr<zip> zip_;
    WorkbookLimits limits_;
};

// The problem of a file within an archive.
Problem problemWithin(const std::string& name, const std::string& what);

}  // namespace zorvel
