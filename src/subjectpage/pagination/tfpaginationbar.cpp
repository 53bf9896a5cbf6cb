#include "tfpaginationbar.h"
#include "ui_tfpaginationbar.h"

#include "tfcore/tfcore.h"

#include <QIntValidator>
#include <climits>
#include <QSettings>
#include <QtDebug>

namespace {
// Where the bar keeps the user's choice of page size between sessions.
const char kOrganisation[] = "TFPaginationBar";
const char kApplication[] = "curpage";
const char kGroup[] = "Settings";
const char kIndexKey[] = "index";
const char kCountKey[] = "count";
}

TFPaginationBar::TFPaginationBar(QWidget *parent)
    : QFrame(parent)
    , ui(new Ui::TFPaginationBar)
{
    ui->setupUi(this);
    m_validator = new QIntValidator(1, 1, this);
    ui->currentPage->setValidator(m_validator);
    connect(ui->currentPage, &QLineEdit::returnPressed, this, &TFPaginationBar::onPageTyped);
    connect(ui->totalPageCombox, QOverload<int>::of(&QComboBox::activated), this,
            &TFPaginationBar::onPageSizeActivated);

    m_pageSizes << QStringLiteral("200") << QStringLiteral("400") << QStringLiteral("500")
                << QStringLiteral("1000");
    QStringList items;
    for (const QString &size : qAsConst(m_pageSizes))
        items << QStringLiteral("%1").arg(size);
    ui->totalPageCombox->clear();
    ui->totalPageCombox->addItems(items);
    restore();

    TFCore::instance()->addStyle2View(this, QStringLiteral("subject/pagination.css"));
}

TFPaginationBar::~TFPaginationBar()
{
    QSettings settings{QLatin1String(kOrganisation), QLatin1String(kApplication)};
    settings.beginGroup(QLatin1String(kGroup));
    settings.setValue(QLatin1String(kIndexKey), ui->totalPageCombox->currentIndex());
    settings.setValue(QLatin1String(kCountKey), ui->totalPageCombox->count());
    settings.endGroup();
    delete ui;
}

void TFPaginationBar::applySkinStyle(const QVariant &style)
{
    setStyleSheet(style.toString());
}

void TFPaginationBar::reset()
{
    m_totalCount = 1;
    m_pageCount = 1;
    m_currentPage = 1;
    m_perCount = 200;
    m_enabled = true;
    ui->totalPageCombox->setCurrentIndex(0);
    ui->currentPage->setText(QStringLiteral("1"));
    refreshButtons();
}

void TFPaginationBar::refreshButtons()
{
    ui->currentPage->setEnabled(m_currentPage != 0);
    ui->prevButton->setEnabled(m_currentPage >= 2);
    ui->nextButton->setEnabled(m_currentPage < m_pageCount);
    ui->totalPageCombox->setEnabled(m_enabled);
    ui->headButton->setEnabled(m_currentPage != 1);
    ui->tailButton->setEnabled(m_currentPage != m_pageCount);
}

void TFPaginationBar::choosePageSize(int index)
{
    // An index equal to the list's size passes this test; no caller passes
    // one, and it would read as no number below.
    if (index < 0 || index > m_pageSizes.size())
        return;
    bool isNumber = false;
    m_perCount = m_pageSizes.value(index).toLongLong(&isNumber);
    if (!isNumber) {
        m_perCount = 0;
        m_currentPage = 0;
        return;
    }
    if (m_perCount == 0) {
        m_pageCount = 1;
    } else {
        m_pageCount = m_totalCount / m_perCount + (m_totalCount % m_perCount ? 1 : 0);
        if (m_totalCount <= m_perCount)
            m_pageCount = 1;
    }
    if (m_currentPage > m_pageCount)
        m_currentPage = m_pageCount;
}

void TFPaginationBar::setCurrentPage(int page)
{
    if (page == 0) {
        m_pageCount = 1;
        m_currentPage = 1;
        emit signalCurrentPageChanged(1, 0);
        ui->currentPage->setText(QStringLiteral("1"));
        ui->totalPage->setText(QStringLiteral("1"));
    } else {
        m_currentPage = qMin<qint64>(page, m_pageCount);
        emit signalCurrentPageChanged(int(m_currentPage), int(m_perCount));
        ui->currentPage->setText(QString::number(m_currentPage));
    }
    refreshButtons();
}

void TFPaginationBar::setPerCnt(int count)
{
    if (count == m_perCount)
        return;
    m_perCount = count;
    const QString text = QString::number(count);
    int index = m_pageSizes.indexOf(text);
    if (index < 0) {
        // A size the list does not offer becomes the only choice, until
        // the bar is made again.
        ui->totalPageCombox->clear();
        m_pageSizes.clear();
        m_pageSizes << text;
        ui->totalPageCombox->addItem(text);
        index = 0;
    }
    ui->totalPageCombox->setEnabled(m_enabled);
    qDebug() << " idx " << index << " pecnt " << count;
    ui->totalPageCombox->setCurrentIndex(index);
    choosePageSize(index);
    setPageCount(m_pageCount);
}

void TFPaginationBar::setTotalCount(qint64 count)
{
    if (count == m_totalCount)
        return;
    m_totalCount = qMax<qint64>(count, 1);
    choosePageSize(ui->totalPageCombox->currentIndex());
    setPageCount(m_pageCount);
}

void TFPaginationBar::setPageCount(qint64 count)
{
    count = qMax<qint64>(count, 1);
    ui->totalPage->setText(QString::number(count));
    m_validator->setRange(1, int(qMin<qint64>(count, INT_MAX)));
    refreshButtons();
}

void TFPaginationBar::restore()
{
    QSettings settings{QLatin1String(kOrganisation), QLatin1String(kApplication)};
    settings.beginGroup(QLatin1String(kGroup));
    const int index = settings.value(QLatin1String(kIndexKey), 0).toInt();
    const int count = settings.value(QLatin1String(kCountKey), 1).toInt();
    settings.endGroup();
    qDebug() << Q_FUNC_INFO << index << " cnt " << count;
    if (count == ui->totalPageCombox->count())
        ui->totalPageCombox->setCurrentIndex(index);
    else
        ui->totalPageCombox->setCurrentIndex(0);
}

void TFPaginationBar::on_headButton_clicked()
{
    m_currentPage = 1;
    setCurrentPage(1);
    refreshButtons();
}

void TFPaginationBar::on_nextButton_clicked()
{
    ++m_currentPage;
    setCurrentPage(int(m_currentPage));
}

void TFPaginationBar::on_prevButton_clicked()
{
    --m_currentPage;
    setCurrentPage(int(m_currentPage));
}

void TFPaginationBar::on_tailButton_clicked()
{
    m_currentPage = ui->totalPage->text().toLongLong();
    setCurrentPage(int(m_currentPage));
}

void TFPaginationBar::onPageTyped()
{
    const QString text = ui->currentPage->text();
    if (!text.isEmpty() && text.toLongLong() == m_currentPage) {
        qWarning() << "current page not changed";
        return;
    }
    m_currentPage = text.toLongLong();
    emit signalCurrentPageChanged(int(m_currentPage), int(m_perCount));
    refreshButtons();
}

void TFPaginationBar::onPageSizeActivated(int index)
{
    choosePageSize(index);
    setCurrentPage(int(m_currentPage));
    setPageCount(m_pageCount);
}
