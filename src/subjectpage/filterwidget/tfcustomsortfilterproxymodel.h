#pragma once

#include <QSortFilterProxyModel>

// The proxy the sort dialog shows its model through; it adds nothing.
class TFCustomSortFilterProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT
public:
    explicit TFCustomSortFilterProxyModel(QObject *parent = nullptr) : QSortFilterProxyModel(parent) {}
};
