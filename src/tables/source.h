// Where the rows of a table come from, as often as they are needed: a text in memory, a file, or a
// sheet of a workbook. Any thread, several passes at once.
#pragma once

#include <memory>
#include <stop_token>
#include <string>
#include <utility>

#include "tables/guess.h"
#include "tables/rows.h"

namespace zorvel {

class TableSource {
  public:
    TableSource() = default;
    virtual ~TableSource() = default;
    TableSource(const TableSource&) = delete;
    TableSource& operator=(const TableSource&) = delete;

    // From the first row on; the source must outlive them. form: of a text; a sheet has none.
    [[nodiscard]] virtual std::unique_ptr<RowSource> rows(const TextForm& form,
                                                          const std::stop_token& stop) const = 0;
    // What the table seems to be, from its first rows. Stopped: any guess.
    [[nodiscard]] virtual TableGuess guess(const TableChoices& choices,
                                           const std::stop_token& stop) const = 0;
};

// A text in memory: all of it, or the start of a file that is read on elsewhere.
class TextSource final : public TableSource {
  public:
    TextSource(std::string bytes, bool whole) : bytes_(std::move(bytes)), whole_(whole) {}

    [[nodiscard]] std::unique_ptr<RowSource> rows(const TextForm& form,
                                                  const std::stop_token& /*stop*/) const override {
        return std::make_unique<TextRows>(bytesOf(bytes_), form);
    }
    [[nodiscard]] TableGuess guess(const TableChoices& choices,
                                   const std::stop_token& /*stop*/) const override {
        return guessTable(bytes_, whole_, choices);
    }

  private:
    std::string bytes_;
    bool whole_;
};

}  // namespace zorvel
