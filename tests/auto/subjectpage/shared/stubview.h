#pragma once

#include "tfbaseview.h"

// The smallest view: it answers every question with nothing and lists the
// filter rows the test gives it. Tests of what the base class and the filter
// bar do with a view's rows derive from it.
class StubView : public TFBaseView
{
public:
    QList<TFTableModelData::FilterData> rows;

    void clear() override {}
    bool parseConfig(const QJsonValue &, bool) override { return true; }
    bool handleResponse(const QJsonValue &, const QString &, int) override { return true; }
    bool isDataSourceFilter(const QString &) override { return false; }
    void setFilterArgs(QMap<QString, QVariant>) override {}
    QList<FilterParam::Cntrl> getCntrls() override { return {}; }
    QList<TFTableModelData::FilterData> filterList() override { return rows; }
    QString caption() override { return QString(); }
    bool isCross() override { return false; }
};
