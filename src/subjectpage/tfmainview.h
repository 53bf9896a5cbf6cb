#pragma once

#include "filterwidget/filterparam.h"
#include "jsonparser/tftablemodeldata.h"

#include <QJsonValue>
#include <QList>
#include <QPair>
#include <QStackedWidget>
#include <QVariantMap>

class TFBaseView;
class TFSubjectTableWidget;

// Makes the view that a configuration asks for: kind 0 a table, kind 1 a
// chart. A child table is silenced for good: it announces no further views
// and its row clicks go nowhere.
TFBaseView *createView(int kind, qint64 viewId, const QJsonValue &config, QWidget *parent, bool isMain);

// The main view of a page: a stack that holds at most one view of each kind,
// shows the one the configuration asks for, and stands between the right
// container and that view.
class TFMainView : public QStackedWidget
{
    Q_OBJECT
public:
    explicit TFMainView(QWidget *parent = nullptr);

    // 1 when View_Config says ObjViewType "ViewDataChart" (with case), else 0.
    static int viewKind(const QJsonValue &config);

    void parseConfig(const QJsonValue &config, bool isNew);

    void setViewId(qint64 viewId);
    void setFilterWidgetVisible(bool visible);
    void setPageBarVisible(bool visible);
    // The settings of a table on top; without a table, fallback.
    bool isFilterWidgetVisible(bool fallback) const;
    bool isPageBarVisible(bool fallback) const;
    void setRequestName(const QString &name);
    void startLoading();
    void finished();
    QList<FilterParam::CustomFilter> filters() const;
    QList<FilterParam::DataSourceFilter> params() const;
    QList<FilterParam::Cntrl> getCntrls() const;
    QString childLinkText(qint64 childViewId) const;
    RowData firstRow() const;
    QList<QVariantMap> allRows() const;
    void load(const QPair<QString, QVariant> &pair);

    TFBaseView *currentView() const;
    qint64 currentViewId() const;
    QList<int> kinds() const { return m_kinds; }

signals:
    void signalGetSubViewCfg(qlonglong objectViewID, QString caption, qlonglong pObjViewID);
    void sigSectorNumChanged(QString sectorNum, QString rootItem);
    void sigSectorNumChanged(QString sectorNum);
    void sigRowData(RowData values, bool isClicked);
    void updateChildren();
    void clearChildren();
    void signalCurrentPageChanged(int currentPage);

private:
    TFSubjectTableWidget *currentTable() const;
    int addView(int kind);

    QList<int> m_kinds;
    qint64 m_viewId = -1;
};
