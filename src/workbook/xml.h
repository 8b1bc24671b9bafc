// XML of files within a workbook, read as a stream: the parser calls back for each element and
// text, and pauses where its user says so. Prefixes of names are dropped. Documents with a document
// type are refused, so there are no entities. The file is unpacked ahead on another thread, so that
// no other file of its archive may be read while the reader lives.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

#include "base/threads.h"
#include "workbook/archive.h"

struct XML_ParserStruct;

namespace zorvel {

// Of digits alone; otherwise the value given.
std::size_t wholeNumber(std::string_view digits, std::size_t otherwise);

// Of an element; valid during the call.
class XmlAttributes {
  public:
    explicit XmlAttributes(const char* const* pairs) : pairs_(pairs) {}

    // By the name without its prefix; absent where there is none.
    [[nodiscard]] std::optional<std::string_view> find(std::string_view name) const;
    [[nodiscard]] std::string_view text(std::string_view name) const {
        return find(name).value_or(std::string_view());
    }
    // Digits alone; otherwise, or where there is none, the value given.
    [[nodiscard]] std::size_t number(std::string_view name, std::size_t otherwise) const {
        return wholeNumber(text(name), otherwise);
    }
    [[nodiscard]] const char* const* pairs() const { return pairs_; }

  private:
    const char* const* pairs_;
};

std::string_view withoutPrefix(const char* name);

class XmlReader {
  public:
    XmlReader(ArchiveFile file, const WorkbookLimits& limits, std::stop_token stop);
    virtual ~XmlReader();
    XmlReader(const XmlReader&) = delete;
    XmlReader& operator=(const XmlReader&) = delete;

    // Reads on until pause() is called. False at the end, if stopped, or if there is a problem.
    bool advance();
    [[nodiscard]] const std::optional<Problem>& problem() const { return problem_; }

  protected:
    virtual void start(std::string_view name, const XmlAttributes& attributes) = 0;
    virtual void end(std::string_view /*name*/) {}
    virtual void text(std::string_view /*text*/) {}

    // Only from end(), and not for an element that may be empty.
    void pause();
    // Ends the reading. what: follows the name of the file within the workbook.
    void fail(const std::string& what);
    // Ends the reading without a problem.
    void finish();
    [[nodiscard]] const WorkbookLimits& limits() const { return limits_; }

  private:
    struct Calls;
    template <class Call>
    void guarded(const Call& call);
    bool isParsed(int status);

    // Of the file, unpacked.
    struct Piece {
        std::string bytes;
        bool isLast = false;
        std::optional<Problem> problem;  // why nothing follows
    };

    std::string name_;  // of the file
    WorkbookLimits limits_;
    std::stop_token stop_;
    std::unique_ptr<XML_ParserStruct, void (*)(XML_ParserStruct*)> parser_;
    std::optional<Problem> problem_;
    std::optional<Problem> problemAhead_;  // of the file, after the bytes that were parsed
    std::uint64_t fed_ = 0;
    std::size_t depth_ = 0;
    bool paused_ = false;
    bool atEnd_ = false;
    bool finished_ = false;
    MadeAhead<Piece> pieces_;
};

// Calls back for each element that begins, with its name and attributes, until it returns false.
std::optional<Problem> scanElements(
    Result<ArchiveFile> file, const WorkbookLimits& limits, const std::stop_token& stop,
    const std::function<bool(std::string_view name, const XmlAttributes& attributes)>& take);

}  // namespace zorvel
