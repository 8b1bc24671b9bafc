// A table that is to be imported: a file, or a text that was pasted or dropped. A file stays open
// from the first look until the import, so that what was looked at is what is read. Any thread, any
// number of passes at once.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "base/files.h"
#include "base/result.h"
#include "tables/rows.h"

namespace zorvel {

// The bytes of one pass, in order. A file that cannot be read on ends; the problem says why.
class TableBytes {
  public:
    // Of a file, whose descriptor must stay open, or of a text, which must outlive this.
    explicit TableBytes(int descriptor) : descriptor_(descriptor) {}
    explicit TableBytes(const std::string& text) : text_(&text) {}

    std::size_t read(char* bytes, std::size_t size);
    [[nodiscard]] const std::optional<Problem>& problem() const { return problem_; }

  private:
    int descriptor_ = -1;
    const std::string* text_ = nullptr;
    std::size_t place_ = 0;
    std::optional<Problem> problem_;
};

class TableInput {
  public:
    // Waits for the disk. A regular file.
    static Result<std::shared_ptr<const TableInput>> open(const std::string& path);
    static std::shared_ptr<const TableInput> ofText(std::string text);

    [[nodiscard]] TableBytes bytes() const {
        return file_ ? TableBytes(file_.descriptor()) : TableBytes(text_);
    }

  private:
    TableInput(OpenFile file, std::string text) : file_(std::move(file)), text_(std::move(text)) {}

    OpenFile file_;
    std::string text_;
};

// The first bytes, at most TableSample::mostBytes.
struct TableStart {
    std::string bytes;
    bool whole = true;  // there are no others
};

Result<TableStart> startOf(const TableInput& input);

}  // namespace zorvel
