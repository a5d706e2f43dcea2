#pragma once

#include "Support/FileIdentity.h"

#include <QString>

#include <optional>

namespace torvane::Updates {

/// The program's file.
struct Executable final {
    QString path; // without symbolic links; empty where there is no such file
    std::optional<FileIdentity> identity;

    /// Follows the links of a path, now.
    static Executable at(const QString& path);
};

/// Why a program that was started from this file cannot be replaced by itself: "this copy belongs to another user".
/// Empty where it can. Asks the file system.
QString obstacleTo(const Executable& started);

} // namespace torvane::Updates
