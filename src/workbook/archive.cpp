#include "workbook/archive.h"

#include <zip.h>

#include <algorithm>
#include <utility>

namespace zorvel {
namespace {

std::string textOf(zip_error_t* error) {
    return zip_error_strerror(error);
}

}  // namespace

Problem problemWithin(const std::string& name, const std::string& what) {
    return {"cannot be used: " + name + " within it " + what};
}

std::size_t ArchiveFile::read(char* bytes, std::size_t size) {
    if (problem_) return 0;
    // One byte more than stated shows that the size is false.
    const auto most = static_cast<std::size_t>(std::min<std::uint64_t>(size, left_ + 1));
    const zip_int64_t count = zip_fread(file_.get(), bytes, most);
    if (count < 0) {
        problem_ =
            problemWithin(name_, "is damaged (" + textOf(zip_file_get_error(file_.get())) +
                                     "): save the workbook again, or copy or download it again");
        return 0;
    }
    const auto read = static_cast<std::uint64_t>(count);
    if (read > left_ || (read == 0 && left_ > 0)) {
        problem_ = problemWithin(name_,
                                 "has another size than the archive states: the file is "
                                 "damaged or was made to do harm");
        return 0;
    }
    left_ -= read;
    return static_cast<std::size_t>(read);
}

Result<Archive> Archive::open(std::shared_ptr<const std::string> bytes,
                              const WorkbookLimits& limits) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* const source = zip_source_buffer_create(bytes->data(), bytes->size(), 0, &error);
    zip_t* const opened = source ? zip_open_from_source(source, ZIP_RDONLY, &error) : nullptr;
    if (!opened) {
        zip_source_free(source);
        const std::string reason = textOf(&error);
        zip_error_fini(&error);
        return Problem{"cannot be used: the archive of the workbook is cut or damaged (" + reason +
                       "): copy or download the file again"};
    }
    // The archive reads from the bytes until it is closed.
    std::shared_ptr<zip> zip(opened, [bytes](zip_t* each) { zip_discard(each); });
    const auto entries = zip_get_num_entries(opened, 0);
    if (static_cast<std::uint64_t>(std::max<zip_int64_t>(entries, 0)) > limits.entries) {
        return Problem{"cannot be used: it holds more than " + std::to_string(limits.entries) +
                       " files, more than a workbook has"};
    }
    return Archive(std::move(bytes), std::move(zip), limits);
}

bool Archive::has(const std::string& name) const {
    return zip_name_locate(zip_.get(), name.c_str(), ZIP_FL_NOCASE) >= 0;
}

Result<ArchiveFile> Archive::file(const std::string& name) const {
    const zip_int64_t place = zip_name_locate(zip_.get(), name.c_str(), ZIP_FL_NOCASE);
    if (place < 0) return Problem{"cannot be used: " + name + " is missing within it"};
    const auto index = static_cast<zip_uint64_t>(place);
    zip_stat_t stat;
    zip_stat_init(&stat);
    zip_stat_index(zip_.get(), index, 0, &stat);
    if ((stat.valid & ZIP_STAT_ENCRYPTION_METHOD) && stat.encryption_method != ZIP_EM_NONE) {
        return Problem{"is protected by a password: save it without one and try again"};
    }
    if (!(stat.valid & ZIP_STAT_SIZE) || stat.size > limits_.inflatedBytes) {
        return problemWithin(name, "is larger than " + std::to_string(limits_.inflatedBytes >> 20) +
                                       " MB when unpacked");
    }
    zip_file_t* const opened = zip_fopen_index(zip_.get(), index, 0);
    if (!opened) {
        return problemWithin(name,
                             "cannot be unpacked (" + textOf(zip_get_error(zip_.get())) + ")");
    }
    return ArchiveFile(
        zip_, std::shared_ptr<zip_file>(opened, [](zip_file_t* each) { zip_fclose(each); }), name,
        stat.size);
}

std::string Archive::start(const std::string& name) const {
    Result<ArchiveFile> found = file(name);
    std::string bytes(512, '\0');
    bytes.resize(found ? found.value().read(bytes.data(), bytes.size()) : 0);
    return bytes;
}

}  // namespace zorvel
