// A copy is a heading and items, each a letter and its contents: a name (numbered from 0), a
// census, a taxon of the census before it, or the end. Numbers are little endian; a text is its
// length and its bytes.
#include "model/copied_records.h"

#include <bit>
#include <chrono>
#include <utility>

#include "base/text.h"

namespace zorvel {
namespace {

constexpr std::string_view heading = "zorvel records 1\n";

// The parts of a record, as bits.
constexpr std::uint64_t hasName = 1;
constexpr std::uint64_t hasNotes = 2;
constexpr std::uint64_t hasTime = 4;
constexpr std::uint64_t isIncluded = 8;

std::uint64_t flag(std::uint64_t what, bool on) {
    return on ? what : 0;
}

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

    std::uint64_t number(int size) {
        std::uint64_t number = 0;
        int shift = 0;
        for (const char byte : take(static_cast<std::size_t>(size))) {
            number |= std::uint64_t{static_cast<unsigned char>(byte)} << shift;
            shift += 8;
        }
        return number;
    }

    // Fails if another bit is set.
    std::uint64_t flags(std::uint64_t known) {
        const std::uint64_t flags = number(1);
        if ((flags & ~known) != 0) good_ = false;
        return flags;
    }

    SharedText text() {
        const std::string_view text = take(static_cast<std::size_t>(number(4)));
        if (firstInvalidUtf8(text)) good_ = false;
        return good_ ? SharedText(text) : SharedText();
    }

    SharedText nameOf(const std::vector<SharedText>& names) {
        const auto place = static_cast<std::size_t>(number(4));
        if (place >= names.size()) good_ = false;
        return good_ ? names[place] : SharedText();
    }

  private:
    std::string_view rest_;
    bool good_ = true;
};

CensusAttributes readCensus(CopyReader& reader, const std::vector<SharedText>& names) {
    CensusAttributes census;
    const std::uint64_t has = reader.flags(hasName | hasNotes | hasTime);
    census.latitude = std::bit_cast<double>(reader.number(8));
    census.longitude = std::bit_cast<double>(reader.number(8));
    if ((has & hasName) != 0) census.name = reader.nameOf(names);
    if ((has & hasNotes) != 0) census.notes = reader.text();
    if ((has & hasTime) != 0) {
        const auto time = static_cast<std::int64_t>(reader.number(8));
        census.timeStamp = TimeStamp(std::chrono::microseconds(time));
    }
    return census;
}

TaxonValues readTaxon(CopyReader& reader, const std::vector<SharedText>& names) {
    TaxonValues taxon;
    const std::uint64_t has = reader.flags(hasName | isIncluded);
    taxon.abundance = static_cast<std::int64_t>(reader.number(8));
    taxon.include = (has & isIncluded) != 0;
    if ((has & hasName) != 0) taxon.name = reader.nameOf(names);
    return taxon;
}

}  // namespace

RecordCopy::RecordCopy() : bytes_(heading) {}

void RecordCopy::append(std::uint64_t number, int bytes) {
    for (; bytes > 0; --bytes, number >>= 8) bytes_ += static_cast<char>(number & 0xFF);
}

void RecordCopy::append(const SharedText& text) {
    append(text.view().size(), 4);
    // A text too long for its length field makes the copy too long as well.
    bytes_ += text.view();
}

std::uint32_t RecordCopy::numberOf(const SharedText& name) {
    const auto next = static_cast<std::uint32_t>(names_.size());
    const auto [known, added] = names_.emplace(&name.str(), next);
    if (added) {
        bytes_ += 'N';
        append(name);
    }
    return known->second;
}

void RecordCopy::addCensus(const CensusAttributes& attributes) {
    if (isTooLong()) return;
    const std::uint32_t name = attributes.name ? numberOf(*attributes.name) : 0;
    bytes_ += 'C';
    append(flag(hasName, attributes.name.has_value()) |
               flag(hasNotes, attributes.notes.has_value()) |
               flag(hasTime, attributes.timeStamp.has_value()),
           1);
    append(std::bit_cast<std::uint64_t>(attributes.latitude), 8);
    append(std::bit_cast<std::uint64_t>(attributes.longitude), 8);
    if (attributes.name) append(name, 4);
    if (attributes.notes) append(*attributes.notes);
    if (attributes.timeStamp) {
        append(static_cast<std::uint64_t>(attributes.timeStamp->time_since_epoch().count()), 8);
    }
}

void RecordCopy::addTaxon(const TaxonValues& taxon) {
    if (isTooLong()) return;
    const std::uint32_t name = taxon.name ? numberOf(*taxon.name) : 0;
    bytes_ += 'T';
    append(flag(hasName, taxon.name.has_value()) | flag(isIncluded, taxon.include), 1);
    append(static_cast<std::uint64_t>(taxon.abundance), 8);
    if (taxon.name) append(name, 4);
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
    std::vector<SharedText> names;
    std::vector<CopiedCensus> censuses;
    while (reader.isGood()) {
        const std::string_view item = reader.take(1);
        if (item == "N") {
            names.push_back(reader.text());
        } else if (item == "C") {
            censuses.push_back({readCensus(reader, names), {}});
        } else if (item == "T" && !censuses.empty()) {
            censuses.back().taxa.push_back(readTaxon(reader, names));
        } else {
            const bool ends = item == "E" && reader.isAtEnd();
            return ends ? std::optional(std::move(censuses)) : std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace zorvel
