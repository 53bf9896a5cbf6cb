#pragma once

#include "jsonparser/tftablemodeldata.h"
#include "net/tfjsp.h"
#include "tfverticalcontainer.h"

#include <QJsonValue>
#include <QMap>

class QMutex;
class QPushButton;
class QTabWidget;
class TFDm;
class TFMainView;
namespace TFSubject {
class TFJsonParser;
}

// The data page right of the tree. Given a view identifier it fetches the
// view's configuration, lets the main view build itself, makes a tab for
// each child view the main view announces, and carries the selected row of
// the main table into the child views as their filters.
class TFRightContainer : public TFVerticalContainer
{
    Q_OBJECT
public:
    explicit TFRightContainer(QWidget *parent = nullptr);
    ~TFRightContainer() override;

    void setMainViewVisible(bool visible);
    bool isMainViewVisible() const { return m_mainViewVisible; }
    void setChildViewsVisible(bool visible);
    bool childViewsVisible() const { return m_childViewsVisible; }
    qint64 currentView() const { return m_currentView; }
    QMap<qint64, bool> childState() const { return m_childState; }

    TFMainView *mainView() const { return m_mainView; }
    QTabWidget *tabWidget() const { return m_tabWidget; }
    QPushButton *cornerButton() const { return m_cornerButton; }

    // Held while a child view is made: shared by every page in the process.
    static QMutex *childViewMutex();
    // The tab text of a child view's caption: at most 10 characters, then "...".
    static QString tabText(const QString &caption);

signals:
    void sigSectorNumChanged(QString sectorNum, QString rootItem);
    void sigSectorNumChanged(QString sectorNum);
    void signalDataChanged();

public slots:
    void refreshPage(qlonglong obj_vw_id, QString title);
    void slotMainTableItemRowClicked(RowData values, bool isClicked = true);
    void updateChartUseMainTableData(qlonglong chartId);
    void slotHideTab(bool checked);
    void createSubWidgets(qlonglong id, QJsonValue data);

private:
    void requestChildConfig(qlonglong objectViewID, const QString &caption, qlonglong pObjViewID);
    void refreshChildren();
    void clearChildren();
    void applySplitterRule();

    TFMainView *m_mainView;
    QTabWidget *m_tabWidget;
    QPushButton *m_cornerButton;
    bool m_childViewsVisible = true;
    bool m_mainViewVisible = true;
    qint64 m_currentView = -1;
    QMap<qint64, bool> m_childState;
    QString m_spareText;
    int m_tabHeight = -1;
    TFSubject::TFJsonParser *m_parser;
    NtResponse *m_response;
    TFDm *m_dm;
};
