// The process's time zone, for as long as this lives. Rules are spelled out (POSIX), so that no
// time zone database is needed. The C library is not told: who needs the zone has to look.
#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace zorvel {

inline constexpr const char* easternZone = "EST5EDT,M3.2.0,M11.1.0";
inline constexpr const char* lordHoweZone = "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0";

class Zone {
  public:
    explicit Zone(const char* rules) {
        if (const char* before = std::getenv("TZ")) before_ = before;
        setenv("TZ", rules, 1);
    }
    ~Zone() {
        if (before_) {
            setenv("TZ", before_->c_str(), 1);
        } else {
            unsetenv("TZ");
        }
        tzset();
    }
    Zone(const Zone&) = delete;
    Zone& operator=(const Zone&) = delete;

  private:
    std::optional<std::string> before_;
};

}  // namespace zorvel
