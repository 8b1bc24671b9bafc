// Any bytes as a project file: refused and left as they are, or records that are written, with an
// edit, and read back the same.
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

#include "fuzz/fuzz_input.h"
#include "store/project_file.h"
#include "tests/support/same_records.h"

using namespace zorvel;

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

namespace fs = std::filesystem;

// In memory where there is such a folder; gone at the end, if not after a crash.
class Folder {
  public:
    Folder() {
        std::string name = fs::exists("/dev/shm") ? "/dev/shm" : fs::temp_directory_path().string();
        name += "/zorvel-fuzz-XXXXXX";
        promise(mkdtemp(name.data()) != nullptr);
        path_ = name;
    }
    ~Folder() { fs::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    [[nodiscard]] std::string project() const { return path_ / "project.zorvel"; }
    [[nodiscard]] bool holdsOneFile() const {
        return std::distance(fs::directory_iterator(path_), {}) == 1;
    }

  private:
    fs::path path_;
};

std::string bytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void promiseInOrder(const ProjectRecords& records) {
    RecordId census = 0;
    for (const BlockPointer& block : records.censuses) {
        promise(block->id > census);
        census = block->id;
        RecordId taxon = 0;
        block->forEachTaxon([&](const TaxonRecord& record) {
            promise(record.id > taxon);
            taxon = record.id;
        });
    }
}

void edit(ObjectContext& context) {
    for (const Census& census : context.censuses()) {
        if (census.taxonCount() > 1) context.deleteTaxa({census.taxa().front()});
    }
    for (const Zorvel& taxon : context.taxa()) context.setName(taxon, SharedText("Abies alba"));
    const Census census = context.insertCensus();
    context.setName(context.insertTaxon(census), SharedText("Quercus"));
    if (context.censusCount() > 2) context.deleteCensuses({context.censuses().front()});
}

// Writes an edited state, and finds it in the file.
void promiseWritable(const std::string& path, std::unique_ptr<ProjectFile> file,
                     ProjectRecords records) {
    ObjectContext context;
    context.adopt(std::move(records));
    edit(context);
    promise(!file->write(context.frozenCopy()));
    file.reset();
    auto again = ProjectFile::open(path);
    promise(again.ok());
    const auto found = again.value()->load();
    promise(found.ok() && sameRecords(found.value().censuses, context.blocks()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Folder folder;
    const std::string path = folder.project();
    const std::string bytes(fuzzText(data, size));
    std::ofstream(path, std::ios::binary) << bytes;
    auto file = ProjectFile::open(path);
    auto records = file ? file.value()->load() : FileResult<ProjectRecords>(file.problem());
    promise(bytesOf(path) == bytes && folder.holdsOneFile());
    if (!records) return 0;
    promiseInOrder(records.value());
    promiseWritable(path, std::move(file.value()), std::move(records.value()));
    promise(folder.holdsOneFile());
    return 0;
}

// Most inputs keep a header that leads on to the pages.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    static constexpr char start[] = "SQLite format 3\0\2\0\1\1\0\x40\x20\x20";
    static constexpr char marks[] = "\0\0\0\1\0\0\0\1\0\0\0\0Zrvl";
    constexpr std::size_t marksAt = 56;
    constexpr std::size_t headerSize = 100;
    const std::size_t newSize = LLVMFuzzerMutate(data, size, maxSize);
    if (newSize < headerSize || seed % 16 == 0) return newSize;
    std::memcpy(data, start, sizeof start - 1);
    std::memcpy(data + marksAt, marks, sizeof marks - 1);
    return newSize;
}
