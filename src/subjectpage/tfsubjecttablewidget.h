#pragma once

#include "tfbaseview.h"

#include "net/tfuc.h"

#include <QDateTime>
#include <QList>
#include <QPair>
#include <QTime>
#include <QVariant>

#include <functional>

class QFrame;
class QLabel;
class QVBoxLayout;
class TFDm;
class TFFilterWidget;
class TFPaginationBar;
class TFSubjectTableModel;
class TFSujectTableView;
class TFTreeStruct;

namespace TFSubject {
class TFJsonParser;
}

// The view that shows a data table: the filter bar on top, the grid in the
// middle, and below them the elapsed time and the page bar. It turns a
// query, a page number or a configuration into requests, and each reply
// into a new grid and model. As the main view of a page it announces its
// child views and its rows; as a child view in a tab it only shows.
class TFSubjectTableWidget : public TFBaseView
{
    Q_OBJECT
public:
    TFSubjectTableWidget(QWidget *parent, bool isMain);
    ~TFSubjectTableWidget() override;

    // Names the parts and lays them out; called once by whoever makes the view.
    void initLayout();

    bool isMain() const { return m_isMain; }
    void setFilterBarVisible(bool visible);
    bool isFilterBarVisible() const { return m_filterBarVisible; }
    void setPageBarVisible(bool visible);
    bool isPageBarVisible() const { return m_pageBarVisible; }

    // Updates the filters with the pair, then fetches the current page, or
    // the whole data set of a cross view.
    void loadData(const QPair<QString, QVariant> &pair);

    int total() const { return m_total; }
    TFSujectTableView *grid() const { return m_grid; }
    TFSubjectTableModel *model() const;
    TFFilterWidget *filterWidget() const { return m_filterWidget; }
    TFPaginationBar *paginationBar() const { return m_paginationBar; }
    QLabel *timeLabel() const { return m_timeLabel; }
    TFTreeStruct *header() const { return m_header; }
    TFSubject::TFJsonParser *parser() const { return m_parser; }
    TFUc::TFRequestContent sentContent() const { return m_sentContent; }
    TFUc::TFRequestContent appliedContent() const { return m_appliedContent; }

    // Overrides of the view operations.
    void clear() override;
    bool parseConfig(const QJsonValue &config, bool isNew) override;
    bool handleResponse(const QJsonValue &data, const QString &text, int flag) override;
    bool isDataSourceFilter(const QString &name) override;
    void setFilterArgs(QMap<QString, QVariant> args) override;
    void reset(qint64 viewId) override;
    void startLoading() override;
    void noData() override;
    void finished() override;
    FilterParam::DataSourceFilter order() override;
    QList<FilterParam::Cntrl> getCntrls() override;
    QList<TFTableModelData::FilterData> filterList() override;
    int viewType() override { return TableView; }
    QString caption() override;
    QTime startTime() override { return m_startTime; }
    void setChildFilters(const QList<FilterParam::Cntrl> &controls, const RowData &row,
                         const QString &linkText) override;
    bool isCross() override;

    static bool sameContent(const TFUc::TFRequestContent &a, const TFUc::TFRequestContent &b);

    // Export to a workbook. The export button's flow fetches every row of
    // the current filters, names the file after the page and either asks
    // where to save it (type other than 0) or saves it beside the
    // application and opens it (type 0).
    void exportToExcel(int type, const QString &saveType);
    // The same rows and the same workbook, written to fileName without a
    // dialog or message; signalExportFinished tells how it went.
    void exportToFile(const QString &fileName);

    // The two savings of the export: the first tells the user it is done,
    // the second opens the file. An empty path asks for one.
    bool saveToExcel(const QString &path, TFTreeStruct *header, const QList<QList<QVariant>> &rows,
                     QWidget *parent);
    bool saveToExcel(const QString &path, TFTreeStruct *header, const QList<QList<QVariant>> &rows);

    // The file name the export proposes: the page's title with ":" made "_",
    // or "新建工作簿", and ".xlsx".
    QString exportFileName() const;
    // Where the saving proposes to save when it is given no path.
    static QString defaultSavePath(const QDateTime &now);
    // A path that is free to write: an older file is removed; one that
    // cannot be removed is in use and gives way to a numbered name.
    static QString uniqueFileName(const QString &path);
    // Tables of at least this many rows show the progress of their writing.
    static constexpr int progressRowCount = 2000;

signals:
    void signalGetSubViewCfg(qlonglong objectViewID, QString caption, qlonglong pObjViewID);
    void sigSectorNumChanged(QString block, QString rootItem);
    void sigSectorNumChanged(QString block);
    void sigRowData(RowData values, bool isClicked);
    void updateChildren();
    void clearChildren();
    void signalCurrentPageChanged(int currentPage);
    // An export to a named file is over: ok, or what went wrong.
    void signalExportFinished(bool ok, QString message);

public slots:
    void showMessage(QString errorMsg, QString link);

private:
    void createConnections();
    void queryData();
    void pageRequest(int page, int size, bool noPaging);
    void wholeSetRequest();
    bool isCurrent();
    bool parseData(const QJsonValue &json);
    void updateFilters(QPair<QString, QVariant> pair);
    void setDataCount(int total, int pageIndex, int pageSize);
    void clearParserData();
    bool isOrder() const;
    void requestExportRows(std::function<void(const QList<QList<QVariant>> &rows)> done,
                           std::function<void(const QString &error)> failed);
    enum SaveMode { ShowMessage, OpenFile, Silent };
    bool saveWorkbook(QString path, TFTreeStruct *header, const QList<QList<QVariant>> &rows,
                      QWidget *parent, SaveMode mode, QString *error = nullptr);

    bool m_isMain;
    bool m_filterBarVisible;
    bool m_pageBarVisible = true;
    int m_total = 0;
    QVBoxLayout *m_layout;
    TFSujectTableView *m_grid = nullptr;
    TFFilterWidget *m_filterWidget;
    QFrame *m_pageLine;
    QLabel *m_timeLabel;
    TFPaginationBar *m_paginationBar;
    QTime m_startTime;
    TFTreeStruct *m_header;
    TFSubject::TFJsonParser *m_parser;
    QWidget *m_gridHolder;
    TFDm *m_dm;
    TFUc::TFRequestContent m_appliedContent;
    TFUc::TFRequestContent m_sentContent;
};
