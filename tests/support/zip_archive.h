// ZIP archives, such as workbooks, made in memory.
#pragma once

#include <zip.h>

#include <string>
#include <utility>
#include <vector>

namespace zorvel::test {

using Files = std::vector<std::pair<std::string, std::string>>;  // names and contents

// The bytes of an archive of these files; empty if libzip refuses. method: of compression.
inline std::string archiveOf(const Files& files, const char* password = nullptr,
                             zip_int32_t method = ZIP_CM_DEFAULT) {
    zip_source_t* const source = zip_source_buffer_create(nullptr, 0, 0, nullptr);
    zip_source_keep(source);
    zip_t* const archive = zip_open_from_source(source, ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    for (const auto& [name, text] : files) {
        zip_source_t* const content = zip_source_buffer(archive, text.data(), text.size(), 0);
        const auto index = static_cast<zip_uint64_t>(
            zip_file_add(archive, name.c_str(), content, ZIP_FL_OVERWRITE));
        zip_set_file_compression(archive, index, method, 0);
        if (password) zip_file_set_encryption(archive, index, ZIP_EM_AES_256, password);
    }
    std::string bytes;
    if (zip_close(archive) == 0 && zip_source_open(source) == 0) {
        zip_stat_t stat;
        zip_source_stat(source, &stat);
        bytes.resize(stat.size);
        zip_source_read(source, bytes.data(), bytes.size());
        zip_source_close(source);
    }
    zip_source_free(source);
    return bytes;
}

}  // namespace zorvel::test
