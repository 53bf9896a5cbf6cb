#pragma once

#include "tfbaseview.h"

#include <QVariantMap>

class QLabel;

// The view of the chart kind. In this form it draws no chart: it reads the
// view's caption from its configuration, shows it as "chart: caption", and
// requests no data. The rows a table hands it are kept, so that the page's
// flow through a chart tab stays whole.
class TFMultiCharts : public TFBaseView
{
    Q_OBJECT
public:
    explicit TFMultiCharts(QWidget *parent = nullptr);

    bool isgetchartdata() const { return m_isGetChartData; }
    void requestData() {}
    void setRows(const QList<QVariantMap> &rows) { m_rows = rows; }
    QList<QVariantMap> rows() const { return m_rows; }
    QString text() const;

public slots:
    void clear() override;
    bool parseConfig(const QJsonValue &config, bool isNew) override;
    bool handleResponse(const QJsonValue &data, const QString &text, int flag) override;
    bool isDataSourceFilter(const QString &name) override;
    void setFilterArgs(QMap<QString, QVariant> args) override;
    QList<FilterParam::Cntrl> getCntrls() override;
    QList<TFTableModelData::FilterData> filterList() override;
    int viewType() override;
    QString caption() override;
    bool isCross() override;

private:
    QLabel *m_label;
    QString m_caption;
    bool m_isGetChartData = false;
    QList<QVariantMap> m_rows;
};
