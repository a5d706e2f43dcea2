#include "Support/JSONErrors.h"

#include <string>
#include <utility>

namespace torvane {

DecodingError::DecodingError(Cause cause, QByteArray description)
    : m_cause(cause)
    , m_description(std::move(description))
    , m_what(m_description) {}

void DecodingError::prepend(QByteArrayView key) {
    prependStep(key.toByteArray());
}

void DecodingError::prepend(qsizetype index) {
    prependStep('[' + QByteArray::fromStdString(std::to_string(index)) + ']');
}

void DecodingError::prependStep(const QByteArray& step) {
    const bool joined = m_path.isEmpty() || m_path.startsWith('[');
    m_path.prepend(joined ? step : step + '.');
    m_what = m_path + ": " + m_description;
}

} // namespace torvane
