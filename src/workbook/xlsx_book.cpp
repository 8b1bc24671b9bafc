// The parts of a workbook that its sheets share.
#include <algorithm>
#include <set>
#include <string>
#include <utility>

#include "workbook/xlsx.h"

namespace zorvel {
namespace {

std::string folderWithin(const std::string& file) {
    return file.substr(0, file.rfind('/') + 1);
}

Problem tooMany(const WorkbookLimits& limits) {
    return Problem{"cannot be used: it has " + std::to_string(limits.entries) +
                   " sheets or parts, or more"};
}

// Of the file that a relationship names: a path from the root, or from the folder.
std::string targetPath(const std::string& folder, std::string_view target) {
    std::string path =
        target.starts_with('/') ? std::string(target.substr(1)) : folder + std::string(target);
    for (std::size_t up = path.find("../"); up != std::string::npos; up = path.find("../")) {
        const std::size_t before = up < 2 ? std::string::npos : path.rfind('/', up - 2);
        const std::size_t start = before == std::string::npos ? 0 : before + 1;
        path.erase(start, up + 3 - start);
    }
    return path;
}

struct Relationship {
    std::string id;
    std::string type;  // after its last slash: "worksheet"
    std::string file;
};

// Empty where there are none.
Result<std::vector<Relationship>> relationshipsOf(const Archive& archive, const std::string& file,
                                                  const WorkbookLimits& limits,
                                                  const std::stop_token& stop) {
    std::vector<Relationship> found;
    const std::string folder = folderWithin(file);
    const std::string list = folder + "_rels/" + file.substr(folder.size()) + ".rels";
    if (!archive.has(list)) return found;
    const auto problem =
        scanElements(archive.file(list), limits, stop,
                     [&](std::string_view name, const XmlAttributes& attributes) {
                         if (name != "Relationship") return true;
                         if (found.size() == limits.entries) return false;
                         const std::string_view type = attributes.text("Type");
                         found.push_back({std::string(attributes.text("Id")),
                                          std::string(type.substr(type.rfind('/') + 1)),
                                          targetPath(folder, attributes.text("Target"))});
                         return true;
                     });
    if (problem) return *problem;
    if (found.size() == limits.entries) return tooMany(limits);
    return found;
}

std::string fileOfType(const std::vector<Relationship>& relationships, std::string_view type) {
    const auto found = std::find_if(relationships.begin(), relationships.end(),
                                    [type](const Relationship& each) { return each.type == type; });
    return found == relationships.end() ? std::string() : found->file;
}

constexpr std::size_t mostFormats = 1'000'000;  // spreadsheet programs allow some 65,000

// For each style of cells how it shows numbers.
std::optional<Problem> readFormats(const Archive& archive, const std::string& file, XlsxBook& book,
                                   const WorkbookLimits& limits, const std::stop_token& stop) {
    std::map<std::size_t, NumberFormat> codes;
    bool ofCells = false;
    return scanElements(
        archive.file(file), limits, stop,
        [&](std::string_view name, const XmlAttributes& attributes) {
            if (name == "numFmt") {
                codes[attributes.number("numFmtId", 0)] =
                    formatOfCode(attributes.text("formatCode"));
            } else if (name == "cellStyleXfs" || name == "cellXfs") {
                ofCells = name == "cellXfs";
            } else if (name == "xf" && ofCells) {
                if (book.formats.size() == mostFormats) return false;
                const std::size_t id = attributes.number("numFmtId", 0);
                const auto code = codes.find(id);
                book.formats.push_back(code == codes.end() ? formatOfId(id) : code->second);
            }
            return true;
        });
}

class TextsReader final : public XmlReader {
  public:
    TextsReader(ArchiveFile file, SharedTexts& texts, const WorkbookLimits& limits,
                const std::stop_token& stop)
        : XmlReader(std::move(file), limits, stop), texts_(texts) {}

  private:
    void start(std::string_view name, const XmlAttributes& /*attributes*/) override {
        if (name == "si") text_.clear();
        if (name == "rPh") ++phonetic_;
        inText_ = name == "t" && phonetic_ == 0;
    }
    void end(std::string_view name) override {
        inText_ = false;
        if (name == "rPh") --phonetic_;
        if (name != "si") return;
        unescaped_.clear();
        appendUnescaped(unescaped_, text_);
        texts_.add(unescaped_);
        if (texts_.bytes() > limits().sharedBytes || texts_.count() > limits().cells) {
            fail("holds more than " + std::to_string(limits().sharedBytes >> 20) + " MB of texts");
        }
    }
    void text(std::string_view text) override {
        if (!inText_) return;
        text_ += text;
        if (text_.size() > limits().cellBytes) fail("has a text of more than 1 MB");
    }

    SharedTexts& texts_;
    std::string text_;
    std::string unescaped_;
    std::size_t phonetic_ = 0;
    bool inText_ = false;
};

}  // namespace

void SharedTexts::add(std::string_view text) {
    bytes_ += text;
    ends_.push_back(static_cast<std::uint32_t>(bytes_.size()));
}

std::string_view SharedTexts::text(std::size_t index) const {
    const std::size_t start = index == 0 ? 0 : ends_[index - 1];
    return std::string_view(bytes_).substr(start, ends_[index] - start);
}

std::string xlsxBookFile(const Archive& archive, const WorkbookLimits& limits,
                         const std::stop_token& stop) {
    const auto relationships = relationshipsOf(archive, "", limits, stop);
    std::string file =
        relationships ? fileOfType(relationships.value(), "officeDocument") : std::string();
    if (archive.has(file)) return file;
    return archive.has("xl/workbook.xml") ? "xl/workbook.xml" : std::string();
}

Result<XlsxBook> readXlsxBook(const Archive& archive, const std::string& bookFile,
                              const WorkbookLimits& limits, const std::stop_token& stop) {
    XlsxBook book;
    const auto relationships = relationshipsOf(archive, bookFile, limits, stop);
    if (!relationships) return relationships.problem();
    auto problem = scanElements(
        archive.file(bookFile), limits, stop,
        [&](std::string_view name, const XmlAttributes& attributes) {
            if (name == "workbookPr") {
                const std::string_view mark = attributes.text("date1904");
                book.from1904 = mark == "1" || mark == "true";
            }
            if (name == "calcPr") {
                const std::string_view mark = attributes.text("fullCalcOnLoad");
                book.isToBeComputed = mark == "1" || mark == "true";
            }
            if (name != "sheet") return true;
            if (book.sheets.size() == limits.entries) return false;
            const std::string_view id = attributes.text("id");
            for (const Relationship& each : relationships.value()) {
                // The others are charts and the like.
                if (each.id != id || each.type != "worksheet") continue;
                const bool hidden = attributes.text("state").ends_with("idden");
                book.sheets.push_back({std::string(attributes.text("name")), hidden, true});
                book.files.push_back(each.file);
                break;
            }
            return true;
        });
    if (!problem && book.sheets.size() == limits.entries) return tooMany(limits);
    const std::string styles = fileOfType(relationships.value(), "styles");
    if (!problem && !styles.empty()) {
        problem = readFormats(archive, styles, book, limits, stop);
    }
    const std::string texts = fileOfType(relationships.value(), "sharedStrings");
    if (!problem && !texts.empty()) {
        Result<ArchiveFile> file = archive.file(texts);
        if (!file) return file.problem();
        TextsReader reader(std::move(file).value(), book.texts, limits, stop);
        reader.advance();
        problem = reader.problem();
    }
    std::set<std::string> seen;
    for (std::size_t i = 0; !problem && i < book.sheets.size(); ++i) {
        if (!seen.insert(book.files[i]).second)
            return Problem{"cannot be used: two of its sheets are one file"};
        problem = scanElements(archive.file(book.files[i]), limits, stop,
                               [&](std::string_view name, const XmlAttributes& /*attributes*/) {
                                   const bool value = name == "v" || name == "is" || name == "f";
                                   if (value) book.sheets[i].empty = false;
                                   return book.sheets[i].empty && name != "mergeCells";
                               });
    }
    if (problem) return *problem;
    return book;
}

}  // namespace zorvel
