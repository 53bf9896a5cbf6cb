#include "statusline.h"

#include "gridoptions.h"
#include "tableview.h"

#include <QItemSelectionModel>
#include <QTimer>

namespace BandGrid {

namespace {

// Up to four decimals, without trailing zeros, with the locale's separators.
QString number(double value, const QLocale &locale)
{
    QString text = locale.toString(value, 'f', 4);
    const QString point = locale.decimalPoint();
    if (text.contains(point)) {
        while (text.endsWith(locale.zeroDigit()))
            text.chop(1);
        if (text.endsWith(point))
            text.chop(point.size());
    }
    return text;
}

} // namespace

StatusLine::StatusLine(QWidget *parent)
    : QLabel(parent)
{
    setObjectName(QStringLiteral("gridStatusLine"));
    setContentsMargins(6, 2, 6, 2);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
    setAutoFillBackground(true);
}

void StatusLine::setView(TableView *view)
{
    for (const QMetaObject::Connection &connection : qAsConst(m_connections))
        disconnect(connection);
    m_connections.clear();
    m_view = view;
    if (view) {
        const auto schedule = [this] { scheduleRefresh(); };
        QAbstractItemModel *rows = view->model();
        m_connections << connect(view->selectionModel(), &QItemSelectionModel::selectionChanged, this, schedule)
                      << connect(rows, &QAbstractItemModel::modelReset, this, schedule)
                      << connect(rows, &QAbstractItemModel::layoutChanged, this, schedule)
                      << connect(rows, &QAbstractItemModel::dataChanged, this, schedule)
                      << connect(rows, &QAbstractItemModel::rowsInserted, this, schedule)
                      << connect(rows, &QAbstractItemModel::rowsRemoved, this, schedule)
                      << connect(view->options(), &GridOptions::changed, this, schedule);
    }
    scheduleRefresh();
}

void StatusLine::scheduleRefresh()
{
    if (m_pending)
        return;
    m_pending = true;
    QTimer::singleShot(0, this, [this] {
        m_pending = false;
        // A hidden line is brought up to date when it is shown.
        if (!isHidden())
            refresh();
    });
}

void StatusLine::refresh()
{
    setText(m_view ? format(m_view->selectionSummary(), m_view->options()->texts(), locale())
                   : QString());
}

QString StatusLine::format(const SelectionSummary &summary, const GridTexts &texts, const QLocale &locale)
{
    if (summary.count == 0)
        return QString();
    QString text = QStringLiteral("%1: %2").arg(texts.count, locale.toString(summary.count));
    if (summary.numbers > 0) {
        text += QStringLiteral("    %1: %2    %3: %4")
                    .arg(texts.sum, number(summary.sum, locale), texts.average,
                         number(summary.average(), locale));
    }
    return text;
}

void StatusLine::showEvent(QShowEvent *event)
{
    QLabel::showEvent(event);
    scheduleRefresh();
}

} // namespace BandGrid
