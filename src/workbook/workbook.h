// Workbooks of spreadsheet programs, .xlsx and .ods: their sheets, and the rows of each as text
// cells. The kind is known by the content. Messages are parts of sentences that follow the file's
// name. Any thread; each source of rows on one.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/result.h"
#include "tables/source.h"
#include "workbook/archive.h"

namespace zorvel {

class SheetReader;
struct XlsxBook;

// Whether a file that begins so is a workbook or an archive or document that may be one. Such a
// file is not a text, whatever its name is.
bool looksLikeWorkbook(std::string_view start);

struct SheetInfo {
    std::string name;
    bool hidden = false;
    bool empty = false;  // holds no value
};

// The rows of a sheet. Numbers are as short as they read back the same, dates in the ISO form, of
// formulas the value that was saved with them. The texts of merged cells stand in each of their
// columns, in the first of their rows, while that is a row of a header: among the first rows, above
// the first with a number. Error values come as they are shown: "#REF!".
class SheetRows final : public RowSource {
  public:
    // More rows than a header may have.
    static constexpr std::size_t mostHeadRows = 16;

    ~SheetRows() override;
    bool next(TableRow& row) override;
    [[nodiscard]] std::optional<Problem> problem() const override { return problem_; }

  private:
    friend class Workbook;
    struct Parts;
    SheetRows(std::unique_ptr<Parts> parts, std::stop_token stop, const WorkbookLimits& limits);
    explicit SheetRows(Problem problem);
    bool readOn();

    std::unique_ptr<Parts> parts_;
    std::stop_token stop_;
    WorkbookLimits limits_;
    std::optional<Problem> problem_;
    std::size_t given_ = 0;  // the number of the last row
    std::size_t left_ = 0;   // repetitions of the present row
    std::size_t headRows_ = 0;
    std::size_t cells_ = 0;
};

class Workbook {
  public:
    // Why it cannot be used says the problem, and what to do. Stopped: a problem without a message.
    static Result<Workbook> open(std::shared_ptr<const std::string> bytes,
                                 const std::stop_token& stop = {},
                                 const WorkbookLimits& limits = {});
    Workbook(Workbook&&) noexcept;
    ~Workbook();

    // At least one, hidden ones last.
    [[nodiscard]] const std::vector<SheetInfo>& sheets() const { return sheets_; }
    // The sheet of that name or else of that number, which counts from 1.
    [[nodiscard]] std::optional<std::size_t> findSheet(std::string_view nameOrNumber) const;
    // That is read where none was chosen: the first that is not hidden and not empty; if it holds
    // no table, such as a list of notes, the only other one that does. Absent where several others
    // do.
    [[nodiscard]] std::optional<std::size_t> usualSheet(const std::stop_token& stop = {}) const;
    // What a sheet seems to be; without choices it is found out once.
    [[nodiscard]] TableGuess guess(std::size_t sheet, const TableChoices& choices,
                                   const std::stop_token& stop) const;

    // sheet: its place in sheets(). From the first row, each time.
    [[nodiscard]] std::unique_ptr<SheetRows> rows(std::size_t sheet,
                                                  const std::stop_token& stop = {}) const;

  private:
    Workbook(std::shared_ptr<const std::string> bytes, std::shared_ptr<const XlsxBook> book,
             std::vector<SheetInfo> sheets, const WorkbookLimits& limits);
    static Result<Workbook> openArchive(std::shared_ptr<const std::string> bytes,
                                        const std::stop_token& stop, const WorkbookLimits& limits);

    std::shared_ptr<const std::string> bytes_;
    std::shared_ptr<const XlsxBook> book_;  // of Office Open XML
    std::vector<SheetInfo> sheets_;
    std::vector<std::size_t> places_;  // of each sheet in the workbook
    WorkbookLimits limits_;
    struct Guesses {
        std::mutex mutex;
        std::map<std::size_t, TableGuess> ofSheets;  // without choices
    };
    std::unique_ptr<Guesses> guesses_ = std::make_unique<Guesses>();
};

// A sheet as a table.
class SheetSource final : public TableSource {
  public:
    SheetSource(std::shared_ptr<const Workbook> workbook, std::size_t sheet)
        : workbook_(std::move(workbook)), sheet_(sheet) {}

    [[nodiscard]] std::unique_ptr<RowSource> rows(const TextForm& form,
                                                  const std::stop_token& stop) const override;
    [[nodiscard]] TableGuess guess(const TableChoices& choices,
                                   const std::stop_token& stop) const override {
        return workbook_->guess(sheet_, choices, stop);
    }

  private:
    std::shared_ptr<const Workbook> workbook_;
    std::size_t sheet_;
};

}  // namespace zorvel
