#pragma once

#include "filterwidget/filterparam.h"
#include "jsonparser/tfchartviewjsontable.h"
#include "jsonparser/tffilterjsontable.h"

#include <QByteArray>
#include <QColor>
#include <QJsonValue>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

class TFBaseJsonTable;
class TFViewConfigTable;

// One series on its way to the chart page.
struct ChartSeries
{
    int index = 0;              // running number, from 0
    QString xName;
    QString name;               // as the legend shows it
    QColor color;               // never set
    bool visible = false;
    QString chartType;          // the configuration's name, "ColumnStacked"
    int stackGroup = 0;
    int yAxisSide = 0;          // 1: the right axis
    QString valueFormat;
    QStringList xLabels;        // the labels when the series was finished
    QString note;               // never set
    QList<double> values;
};

// Turns a chart view's configuration and the rows of its data set into the
// compact JSON messages the chart page draws. The page sees this object
// under the channel name "chartManager": it listens to the signals and calls
// the slots. Building a message is two steps: the series step (rows chosen,
// ordered and turned into series and labels) runs whenever configuration or
// rows arrive; the message step runs when the page can draw.
class TFDataSource : public QObject
{
    Q_OBJECT
public:
    explicit TFDataSource(QObject *parent = nullptr);
    ~TFDataSource() override;

    // Replaces every table with the document's; a chart that does not swap
    // its axes gets series of the rows at once, on top of those it has.
    void loadConfig(const QJsonValue &value);
    // Starts again from the document's tables (the others are kept) and
    // orders the rows before the series are built.
    void loadConfigAndData(const QJsonValue &value);
    // The rows of a table, shown on the chart in place of a reply's.
    void setRows(const QList<QVariantMap> &rows);
    void clear();

    bool hasSeries() const { return !m_series.isEmpty(); }
    QString caption() const;
    bool isCross() const;
    bool isFilterShown() const;
    bool isgetchartdata() const;
    FilterParam::DataSourceFilter order() const;
    QList<TFTableModelData::FilterData> filterList() const;
    bool isFilterLive(const QString &name) const;

    QList<ChartSeries> series() const { return m_series; }
    QStringList labels() const { return m_labels; }
    ChartViewConfig chart() const { return m_chart; }

    // Rules the steps are made of; each stands alone so that it can be checked alone.
    static QList<QVariantMap> selectRows(const QList<QVariantMap> &rows, int mode, int step);
    static ChartViewConfig crossExpand(const QList<QVariantMap> &rows, const ChartViewConfig &config);
    static double roundValue(double value, const QString &format);
    static double dataPoint(const ChartDataConfig &entry, const QVariantMap &row,
                            const QString &scaledField = QString());
    QString seriesType(const QString &chartType);

    QByteArray mixedMessage();
    QByteArray pieMessage() const;
    QByteArray pivotPieMessage() const;

signals:
    void signalMixedChartData(QByteArray message);
    void signalPieData(QByteArray message);
    void signalChangeTheme(QByteArray theme);
    void signalCanShowChart();
    void signalSaveImage(QString path);
    void signalCopyImage();
    void signalPrintImage();
    void signalClear();

public slots:
    void slotWebConnectFinished();
    void slotRefreshChartDaTa();
    void slotChangedTheme(QByteArray theme);
    void saveImage();
    void copyImage();
    void printImage();
    void slotAlert(QString text);

private:
    TFViewConfigTable *viewTable() const;
    TFChartViewJsonTable *chartTable() const;
    QList<QVariantMap> selectedRows(const ChartViewConfig &config) const;
    void readTables(const QJsonObject &document);
    void deleteTable(int id);
    void deleteTables();
    void emptySeries();
    void orderAndBuild();
    void buildSeries(const ChartViewConfig &config, const QList<QVariantMap> &rows,
                     QList<ChartSeries> &series, QStringList &labels) const;
    void buildColumnSeries(const ChartViewConfig &config, const QList<QVariantMap> &rows,
                           QList<ChartSeries> &series, QStringList &labels) const;
    void buildRowSeries(const ChartViewConfig &config, const QList<QVariantMap> &rows,
                        QList<ChartSeries> &series, QStringList &labels) const;
    void buildPivotPieSeries(const ChartViewConfig &config, const QList<QVariantMap> &rows,
                             QList<ChartSeries> &series, QStringList &labels) const;
    QString labelText(const ChartViewConfig &config, const QVariant &value) const;

    QMap<int, TFBaseJsonTable *> m_tables;
    QMap<QString, QString> m_typeMap;
    QList<ChartSeries> m_series;
    QStringList m_labels;
    ChartViewConfig m_chart;        // the chart in force, without its entries
};
