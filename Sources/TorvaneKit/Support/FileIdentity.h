#pragma once

#include <optional>
#include <sys/stat.h>

namespace torvane {

/// Which file it is, whatever name it has by now.
struct FileIdentity final {
    dev_t device;
    ino_t number;

    bool operator==(const FileIdentity&) const = default;

    static std::optional<FileIdentity> of(int descriptor) {
        struct stat status {};
        return ::fstat(descriptor, &status) == 0 ? std::optional(FileIdentity{status.st_dev, status.st_ino})
                                                 : std::nullopt;
    }

    /// Of what has this path now; symbolic links are not followed.
    static std::optional<FileIdentity> of(const char* path) {
        struct stat status {};
        return ::lstat(path, &status) == 0 ? std::optional(FileIdentity{status.st_dev, status.st_ino}) : std::nullopt;
    }
};

} // namespace torvane
