#include "Shell/CacheManager.h"

#include <algorithm>
#include <numeric>

namespace Korvi {

using namespace Qt::Literals;

CacheManager::CacheManager(std::vector<Cache> caches, QObject* parent)
    : QObject(parent)
    , m_caches(std::move(caches))
    , m_sizes(m_caches.size(), 0) {}

void CacheManager::refreshSizes() {
    std::ranges::transform(m_caches, m_sizes.begin(), [](const Cache& cache) { return cache.diskSize(); });
    emit sizesChanged();
}

void CacheManager::clearAll() {
    for (const Cache& cache : m_caches)
        cache.clear();
    std::ranges::fill(m_sizes, 0);
    emit sizesChanged();
}

QString CacheManager::formattedSize(qint64 bytes) {
    if (bytes == 0)
        return u"0 байт"_s;
    const auto text = [](double value, const QString& unit) { return QString::number(value, 'f', 1) + u' ' + unit; };
    const double kilobytes = static_cast<double>(bytes) / 1024;
    if (kilobytes < 1024)
        return text(kilobytes, u"КБ"_s);
    const double megabytes = kilobytes / 1024;
    return megabytes < 1024 ? text(megabytes, u"МБ"_s) : text(megabytes / 1024, u"ГБ"_s);
}

qint64 CacheManager::totalSize() const {
    return std::accumulate(m_sizes.begin(), m_sizes.end(), qint64(0));
}

qint64 CacheManager::size(Kind kind) const {
    qint64 sum = 0;
    for (std::size_t i = 0; i < m_caches.size(); ++i) {
        if (m_caches[i].kind == kind)
            sum += m_sizes[i];
    }
    return sum;
}

}
