// Runs as another user while the object lives, if the tests run as root, whom no permission stops.
#pragma once

#include <unistd.h>

#include <QString>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace zorvel {

class WithoutPower {
  public:
    explicit WithoutPower(const QString& folder) {
        if (::geteuid() != 0) return;
        const std::string root = folder.toStdString();
        std::vector<std::string> paths{root};
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
            paths.push_back(entry.path().string());
        }
        for (const std::string& path : paths)
            changed_ |= ::chown(path.c_str(), nobody, nobody) == 0;
        changed_ = changed_ && ::seteuid(nobody) == 0;
    }
    ~WithoutPower() {
        if (changed_ && ::seteuid(0) != 0) std::abort();
    }
    WithoutPower(const WithoutPower&) = delete;
    WithoutPower& operator=(const WithoutPower&) = delete;

  private:
    static constexpr uid_t nobody = 65534;
    bool changed_ = false;
};

}  // namespace zorvel
