// A copy is a heading and items, each a letter and its contents: a census, a taxon of the census
// before it, or the end. Numbers are as in memory. What may be absent begins with whether it is
// there. A text is its number, from 0; if the number is new, its length and bytes follow.
#include "model/copied_records.h"

#include <cstring>
#include <utility>

#include "base/text.h"

namespace zorvel {
namespace {

constexpr std::string_view heading = "zorvel records 2\n";

// Reads from the front of the bytes. After the first failure everything fails.
class CopyReader {
  public:
    explicit CopyReader(std::string_view bytes) : rest_(bytes) {}

    [[nodiscard]] bool isGood() const { return good_; }
    [[nodiscard]] bool isAtEnd() const { return rest_.empty(); }

    std::string_view take(std::size_t size) {
        if (size > rest_.size()) good_ = false;
        if (!good_) return {};
        const std::string_view taken = rest_.substr(0, size);
        rest_.remove_prefix(size);
        return taken;
    }

    void read(auto&... values) { (readOne(values), ...); }

  private:
    template <class Number>
    void readOne(Number& number) {
        const std::string_view bytes = take(sizeof number);
        if (good_) std::memcpy(&number, bytes.data(), sizeof number);
    }
    void readOne(bool& flag) {
        unsigned char byte = 0;
        readOne(byte);
        if (byte > 1) good_ = false;
        flag = byte == 1;
    }
    template <class T>
    void readOne(std::optional<T>& value) {
        bool isThere = false;
        readOne(isThere);
        if (isThere) readOne(value.emplace());
    }
    void readOne(SharedText& text) {
        std::uint32_t number = 0;
        readOne(number);
        if (number == texts_.size()) texts_.push_back(newText());
        if (number >= texts_.size()) good_ = false;
        if (good_) text = texts_[number];
    }

    SharedText newText() {
        std::uint32_t size = 0;
        readOne(size);
        const std::string_view text = take(size);
        if (firstInvalidUtf8(text)) good_ = false;
        return text;
    }

    std::string_view rest_;
    bool good_ = true;
    std::vector<SharedText> texts_;
};

}  // namespace

RecordCopy::RecordCopy() : bytes_(heading) {}

template <class Number>
void RecordCopy::write(const Number& number) {
    bytes_.append(reinterpret_cast<const char*>(&number), sizeof number);
}

template <class T>
void RecordCopy::write(const std::optional<T>& value) {
    write(value.has_value());
    if (value) write(*value);
}

void RecordCopy::write(const SharedText& text) {
    const auto next = static_cast<std::uint32_t>(texts_.size());
    const auto [known, isNew] = texts_.emplace(&text.str(), next);
    write(known->second);
    if (!isNew) return;
    // A text too long for its length makes the copy too long as well.
    write(static_cast<std::uint32_t>(text.view().size()));
    bytes_ += text.view();
}

void RecordCopy::addCensus(const CensusAttributes& census) {
    if (isTooLong()) return;
    bytes_ += 'C';
    write(census.name);
    write(census.latitude);
    write(census.longitude);
    write(census.notes);
    write(census.timeStamp);
}

void RecordCopy::addTaxon(const TaxonValues& taxon) {
    if (isTooLong()) return;
    bytes_ += 'T';
    write(taxon.name);
    write(taxon.abundance);
    write(taxon.include);
}

void RecordCopy::addTaxa(const CensusBlock& census) {
    census.forEachTaxon([this](const TaxonRecord& taxon) { addTaxon(taxon.values); });
}

std::optional<std::string> RecordCopy::take() {
    bytes_ += 'E';
    if (isTooLong()) return std::nullopt;
    return std::move(bytes_);
}

std::optional<std::vector<CopiedCensus>> readCopiedRecords(std::string_view bytes) {
    if (bytes.size() > longestCopy) return std::nullopt;
    CopyReader reader(bytes);
    if (reader.take(heading.size()) != heading) return std::nullopt;
    std::vector<CopiedCensus> censuses;
    while (reader.isGood()) {
        const std::string_view item = reader.take(1);
        if (item == "C") {
            auto& [name, latitude, longitude, notes, time] = censuses.emplace_back().attributes;
            reader.read(name, latitude, longitude, notes, time);
        } else if (item == "T" && !censuses.empty()) {
            auto& [name, abundance, include] = censuses.back().taxa.emplace_back();
            reader.read(name, abundance, include);
        } else {
            const bool ends = item == "E" && reader.isAtEnd();
            return ends ? std::optional(std::move(censuses)) : std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace zorvel
