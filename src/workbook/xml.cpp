#include "workbook/xml.h"

#include <expat.h>

#include <charconv>
#include <new>
#include <utility>

namespace zorvel {

// Names are short, and there are millions.
std::string_view withoutPrefix(const char* name) {
    const char* start = name;
    for (; *name != '\0'; ++name) {
        if (*name == ':') start = name + 1;
    }
    return {start, static_cast<std::size_t>(name - start)};
}

std::optional<std::string_view> XmlAttributes::find(std::string_view name) const {
    for (const char* const* pair = pairs_; *pair != nullptr; pair += 2) {
        if (withoutPrefix(pair[0]) == name) return pair[1];
    }
    return std::nullopt;
}

std::size_t wholeNumber(std::string_view digits, std::size_t otherwise) {
    std::size_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    const bool read = error == std::errc() && end == digits.data() + digits.size();
    return read && !digits.empty() ? value : otherwise;
}

// The parser is written in C, which exceptions must not pass.
template <class Call>
void XmlReader::guarded(const Call& call) {
    if (problem_ || finished_) return;
    try {
        call();
    } catch (const std::bad_alloc&) {
        fail("needs more memory than there is");
    }
}

struct XmlReader::Calls {
    static XmlReader& reader(void* data) { return *static_cast<XmlReader*>(data); }

    static void start(void* data, const char* name, const char** attributes) {
        reader(data).guarded([&] {
            if (++reader(data).depth_ > reader(data).limits_.depth) {
                reader(data).fail("has elements that are nested too deeply");
                return;
            }
            reader(data).start(withoutPrefix(name), XmlAttributes(attributes));
        });
    }
    static void end(void* data, const char* name) {
        reader(data).guarded([&] {
            --reader(data).depth_;
            reader(data).end(withoutPrefix(name));
        });
    }
    static void text(void* data, const char* text, int size) {
        reader(data).guarded([&] { reader(data).text({text, static_cast<std::size_t>(size)}); });
    }
    static void documentType(void* data, const char*, const char*, const char*, int) {
        reader(data).guarded([&] {
            reader(data).fail("has a document type (DTD), which no spreadsheet program writes");
        });
    }
};

XmlReader::XmlReader(ArchiveFile file, const WorkbookLimits& limits, std::stop_token stop)
    : name_(file.name()),
      limits_(limits),
      stop_(std::move(stop)),
      parser_(XML_ParserCreate(nullptr), XML_ParserFree),
      pieces_([file = std::make_shared<ArchiveFile>(std::move(file))](Piece& piece) {
          constexpr std::size_t whole = 1 << 16;
          piece.bytes.resize(whole);
          std::size_t size = 0;
          for (std::size_t count = 1; size < whole && count > 0; size += count) {
              count = file->read(piece.bytes.data() + size, whole - size);
          }
          piece.bytes.resize(size);
          piece.isLast = size < whole;
          piece.problem = file->problem();
          return !piece.isLast;
      }) {
    if (!parser_) throw std::bad_alloc();
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(parser_.get(), Calls::start, Calls::end);
    XML_SetCharacterDataHandler(parser_.get(), Calls::text);
    XML_SetStartDoctypeDeclHandler(parser_.get(), Calls::documentType);
}

XmlReader::~XmlReader() = default;

void XmlReader::pause() {
    paused_ = XML_StopParser(parser_.get(), XML_TRUE) == XML_STATUS_OK;
}

void XmlReader::fail(const std::string& what) {
    const auto line = XML_GetCurrentLineNumber(parser_.get());
    const auto column = XML_GetCurrentColumnNumber(parser_.get()) + 1;
    problem_ = problemWithin(name_, what + " (line " + std::to_string(line) + ", character " +
                                        std::to_string(column) + ")");
    XML_StopParser(parser_.get(), XML_FALSE);
}

void XmlReader::finish() {
    finished_ = true;
    XML_StopParser(parser_.get(), XML_FALSE);
}

bool XmlReader::isParsed(int status) {
    if (status == XML_STATUS_ERROR && !problem_ && !finished_) {
        fail(std::string("is damaged: ") + XML_ErrorString(XML_GetErrorCode(parser_.get())));
    }
    return !problem_ && !finished_;
}

bool XmlReader::advance() {
    if (problem_ || finished_) return false;
    if (std::exchange(paused_, false) && !isParsed(XML_ResumeParser(parser_.get()))) return false;
    while (!paused_) {
        problem_ = problemAhead_;
        if (problem_ || atEnd_ || stop_.stop_requested()) return false;
        const Piece& piece = *pieces_.next();
        problemAhead_ = piece.problem;
        atEnd_ = piece.isLast && !piece.problem;
        fed_ += piece.bytes.size();
        const auto status = XML_Parse(parser_.get(), piece.bytes.data(),
                                      static_cast<int>(piece.bytes.size()), atEnd_ ? 1 : 0);
        if (!isParsed(status)) return false;
        const XML_Index done = XML_GetCurrentByteIndex(parser_.get());
        if (!paused_ && done >= 0 && fed_ - static_cast<std::uint64_t>(done) > limits_.tagBytes) {
            fail("has a tag that is too long");
            return false;
        }
    }
    return true;
}

namespace {

class ElementScan final : public XmlReader {
  public:
    using Take = std::function<bool(std::string_view, const XmlAttributes&)>;

    ElementScan(ArchiveFile file, const WorkbookLimits& limits, const std::stop_token& stop,
                const Take& take)
        : XmlReader(std::move(file), limits, stop), take_(take) {}

  private:
    void start(std::string_view name, const XmlAttributes& attributes) override {
        if (!take_(name, attributes)) finish();
    }

    const Take& take_;
};

}  // namespace

std::optional<Problem> scanElements(
    Result<ArchiveFile> file, const WorkbookLimits& limits, const std::stop_token& stop,
    const std::function<bool(std::string_view name, const XmlAttributes& attributes)>& take) {
    if (!file) return file.problem();
    ElementScan scan(std::move(file).value(), limits, stop, take);
    scan.advance();
    return scan.problem();
}

}  // namespace zorvel
