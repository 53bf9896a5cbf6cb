#pragma once

#include "tfcore/itfskin.h"

#include <QFrame>
#include <QStringList>

class QIntValidator;

namespace Ui {
class TFPaginationBar;
}

// The row of paging controls under a table. It only keeps numbers: the
// table widget fetches a page when signalCurrentPageChanged arrives, and
// feeds the bar the summary of each reply with signals blocked.
class TFPaginationBar : public QFrame, public ITFSkin
{
    Q_OBJECT
public:
    explicit TFPaginationBar(QWidget *parent = nullptr);
    ~TFPaginationBar() override;

    void reset();
    void setTotalCount(qint64 count);
    void setCurrentPage(int page);
    void setPerCnt(int count);
    void setPageCount(qint64 count);
    void restore();

    qint64 totalCount() const { return m_totalCount; }
    qint64 pageCount() const { return m_pageCount; }
    qint64 currentPage() const { return m_currentPage; }
    qint64 perCount() const { return m_perCount; }

    QWidget *getWidget() override { return this; }
    void applySkinStyle(const QVariant &style) override;

signals:
    void signalCurrentPageChanged(int curPage, int perSize);

private slots:
    void on_prevButton_clicked();
    void on_nextButton_clicked();
    void on_headButton_clicked();
    void on_tailButton_clicked();

private:
    void refreshButtons();
    void choosePageSize(int index);
    void onPageTyped();
    void onPageSizeActivated(int index);

    Ui::TFPaginationBar *ui;
    qint64 m_totalCount = 1;
    qint64 m_pageCount = 1;
    qint64 m_currentPage = 1;
    qint64 m_perCount = 200;
    bool m_enabled = true;
    QIntValidator *m_validator = nullptr;
    QStringList m_pageSizes;
};
