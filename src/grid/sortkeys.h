#pragma once

#include "bandgrid_global.h"

#include <QCollator>
#include <QCollatorSortKey>
#include <QLocale>
#include <QVariant>

#include <vector>

namespace BandGrid {

// Keys of a run of values, made once so that sorting compares keys and
// never asks the model or the collator again. Numbers come before texts and
// empty values last, whatever the order.
class BANDGRID_EXPORT SortKeys
{
public:
    SortKeys(const QLocale &locale, bool localeAware);

    void append(const QVariant &value);
    int size() const { return int(m_keys.size()); }

    // -1, 0 or 1 for ascending order.
    int compare(int a, int b) const;
    // Indices 0..size()-1 in the order asked for; equal keys keep their order.
    std::vector<int> order(Qt::SortOrder order) const;

private:
    enum Kind { Number = 0, Text = 1, Empty = 2 };
    struct Key { Kind kind; double number; int text; };

    QCollator m_collator;
    bool m_localeAware;
    std::vector<Key> m_keys;
    std::vector<QCollatorSortKey> m_collated;
    std::vector<QString> m_texts;
};

} // namespace BandGrid
