#pragma once

#include <QtGlobal>

#include <chrono>

/// Limits that no caller chooses. The deadlines are variables for the sake of tests alone.
namespace torvane::NetworkLimits {

/// From the start of a request to its last byte, redirects included: a body that drips would otherwise never end.
inline std::chrono::milliseconds totalDeadline{60000};

/// The same for a download, which slow lines take long for.
inline std::chrono::milliseconds downloadDeadline{std::chrono::hours{1}};

inline constexpr int mostRedirects = 10;

/// What is remembered of earlier answers.
inline constexpr qsizetype mostAnswers = 8;
inline constexpr qsizetype mostAnswerBytes = qsizetype{16} * 1024 * 1024;

} // namespace torvane::NetworkLimits
