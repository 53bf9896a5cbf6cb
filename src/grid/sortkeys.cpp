#include "sortkeys.h"

#include <QDateTime>

#include <algorithm>

namespace BandGrid {

SortKeys::SortKeys(const QLocale &locale, bool localeAware)
    : m_collator(locale)
    , m_localeAware(localeAware)
{
    // Codes such as "A9" and "A10" read as people expect.
    m_collator.setNumericMode(true);
}

static bool isNumeric(const QVariant &v)
{
    switch (v.userType()) {
    case QMetaType::Int: case QMetaType::UInt: case QMetaType::LongLong:
    case QMetaType::ULongLong: case QMetaType::Double: case QMetaType::Float:
    case QMetaType::Short: case QMetaType::UShort: case QMetaType::Long: case QMetaType::ULong:
    case QMetaType::Char: case QMetaType::SChar: case QMetaType::UChar: case QMetaType::Bool:
        return true;
    default:
        return false;
    }
}

void SortKeys::append(const QVariant &value)
{
    if (!value.isValid() || value.isNull()) {
        m_keys.push_back({Empty, 0, -1});
    } else if (isNumeric(value)) {
        m_keys.push_back({Number, value.toDouble(), -1});
    } else if (value.userType() == QMetaType::QDateTime) {
        m_keys.push_back({Number, double(value.toDateTime().toMSecsSinceEpoch()), -1});
    } else if (value.userType() == QMetaType::QDate) {
        m_keys.push_back({Number, double(value.toDate().toJulianDay()), -1});
    } else {
        const QString text = value.toString();
        if (text.isEmpty()) {
            m_keys.push_back({Empty, 0, -1});
        } else if (m_localeAware) {
            m_keys.push_back({Text, 0, int(m_collated.size())});
            m_collated.push_back(m_collator.sortKey(text));
        } else {
            m_keys.push_back({Text, 0, int(m_texts.size())});
            m_texts.push_back(text);
        }
    }
}

int SortKeys::compare(int a, int b) const
{
    const Key &ka = m_keys[size_t(a)];
    const Key &kb = m_keys[size_t(b)];
    if (ka.kind != kb.kind)
        return ka.kind < kb.kind ? -1 : 1;
    switch (ka.kind) {
    case Number:
        return ka.number < kb.number ? -1 : (kb.number < ka.number ? 1 : 0);
    case Text: {
        const int c = m_localeAware
            ? m_collated[size_t(ka.text)].compare(m_collated[size_t(kb.text)])
            : m_texts[size_t(ka.text)].compare(m_texts[size_t(kb.text)]);
        return c < 0 ? -1 : (c > 0 ? 1 : 0);
    }
    case Empty:
        break;
    }
    return 0;
}

std::vector<int> SortKeys::order(Qt::SortOrder sortOrder) const
{
    std::vector<int> rows(m_keys.size());
    for (size_t i = 0; i < rows.size(); ++i)
        rows[i] = int(i);
    const bool descending = sortOrder == Qt::DescendingOrder;
    std::stable_sort(rows.begin(), rows.end(), [this, descending](int a, int b) {
        const Kind ka = m_keys[size_t(a)].kind;
        const Kind kb = m_keys[size_t(b)].kind;
        // Empty values stay at the end in both directions.
        if ((ka == Empty) != (kb == Empty))
            return kb == Empty;
        const int c = compare(a, b);
        return descending ? c > 0 : c < 0;
    });
    return rows;
}

} // namespace BandGrid
