#include "ui/tables/table_input.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <stop_token>
#include <utility>

#include "base/files.h"
#include "tables/guess.h"
#include "workbook/workbook.h"

namespace zorvel {

namespace {

// The rows of a file; of one that cannot be read on, with the reason.
class FileRows final : public RowSource {
  public:
    FileRows(int descriptor, const TextForm& form)
        : descriptor_(descriptor),
          rows_([this](char* bytes, std::size_t size) { return read(bytes, size); }, form) {}

    bool next(TableRow& row) override { return rows_.next(row); }
    bool nextSparse(SparseRow& row) override { return rows_.nextSparse(row); }
    [[nodiscard]] std::optional<Problem> problem() const override { return problem_; }

  private:
    std::size_t read(char* bytes, std::size_t size) {
        ssize_t count = 0;
        do {
            count = pread(descriptor_, bytes, size, place_);
        } while (count < 0 && errno == EINTR);
        if (count < 0) problem_ = systemProblem("cannot be read", errno);
        if (count <= 0) return 0;
        place_ += count;
        return static_cast<std::size_t>(count);
    }

    int descriptor_;
    off_t place_ = 0;
    std::optional<Problem> problem_;
    TextRows rows_;
};

// A text too long to be kept in memory.
class FileSource final : public TableSource {
  public:
    FileSource(OpenFile file, std::string start)
        : file_(std::move(file)), start_(std::move(start)) {}

    [[nodiscard]] std::unique_ptr<RowSource> rows(const TextForm& form,
                                                  const std::stop_token& /*stop*/) const override {
        return std::make_unique<FileRows>(file_.descriptor(), form);
    }
    [[nodiscard]] TableGuess guess(const TableChoices& choices,
                                   const std::stop_token& /*stop*/) const override {
        return guessTable(start_, false, choices);
    }

  private:
    OpenFile file_;
    std::string start_;
};

Result<TableInput> workbookInput(std::string bytes, const std::stop_token& stop) {
    constexpr std::size_t shortWorkbook = 1U << 19U;  // bytes, which are compressed
    const bool isShort = bytes.size() <= shortWorkbook;
    Result<Workbook> opened =
        Workbook::open(std::make_shared<const std::string>(std::move(bytes)), stop);
    if (!opened) return opened.problem();
    const auto workbook = std::make_shared<const Workbook>(std::move(opened).value());
    const std::vector<SheetInfo>& sheets = workbook->sheets();
    const auto filled = std::find_if(sheets.begin(), sheets.end(), [](const SheetInfo& sheet) {
        return !sheet.hidden && !sheet.empty;
    });
    const auto first = static_cast<std::size_t>(filled - sheets.begin());
    TableInput input{{}, workbook->usualSheet(stop).value_or(first), isShort};
    for (std::size_t i = 0; i < workbook->sheets().size(); ++i) {
        const SheetInfo& sheet = workbook->sheets()[i];
        input.sheets.push_back({sheet.name + (sheet.hidden ? " (hidden)" : ""),
                                std::make_shared<const SheetSource>(workbook, i)});
    }
    return input;
}

}  // namespace

TableInput tableInput(std::string text) {
    return {{{{}, std::make_shared<const TextSource>(std::move(text), true)}}, 0, true};
}

Result<TableInput> tableInput(Result<InputFile> file, const std::stop_token& stop) {
    if (!file) return file.problem();
    InputFile& input = file.value();
    input.readStart(TableSample::mostBytes + 1);
    if (looksLikeWorkbook(input.start())) {
        Result<std::string> bytes = std::move(input).bytes();
        if (!bytes) return bytes.problem();
        return workbookInput(std::move(bytes).value(), stop);
    }
    if (input.atEnd()) {
        Result<std::string> bytes = std::move(input).bytes();
        if (!bytes) return bytes.problem();
        if (bytes.value().empty()) return Problem{"is empty"};
        return tableInput(std::move(bytes).value());
    }
    std::string start = input.start().substr(0, TableSample::mostBytes);
    auto source = std::make_shared<const FileSource>(std::move(input).file(), std::move(start));
    return TableInput{{{{}, std::move(source)}}, 0, false};
}

}  // namespace zorvel
