#include "tfsubjectpage.h"

#include "tfmenucfg.h"
#include "tfpageurl.h"
#include "tfqsscommon.h"
#include "tfmainview.h"
#include "tfrightcontainer.h"
#include "tfsubjectmainframe.h"
#include "tfsubjecttablewidget.h"

#include "tfcore/tfcore.h"

#include <QDebug>
#include <QHBoxLayout>
#include <QMap>
#include <QPainter>
#include <QStackedWidget>
#include <QStyleOption>

TFSubjectPage::TFSubjectPage(QWidget *parent)
    : QWidget(parent)
    , m_mainFrame(new TFSubjectMainFrame(this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_mainFrame);
    setLayout(layout);
    TFCore::instance()->addStyle2View(this, QStringLiteral("subject/subject.css"));
}

TFSubjectPage::~TFSubjectPage()
{
    qDebug() << "subjectpage destroyed" << property("pageUrl").toString();
}

void TFSubjectPage::init(const QUrl &url, QVariant arg)
{
    Q_UNUSED(arg)
    qDebug() << "subjectpage init,url: " << url;
    if (!parseUrl(url))
        return;
    setUrl(url.toString());
    m_mainFrame->refresh();
}

const char *TFSubjectPage::signalWindowTitleChanged()
{
    return "2signalWindowTitleChanged(QString)";
}

const char *TFSubjectPage::signalWindowIconChanged()
{
    return "2signalWindowIconChanged(QIcon)";
}

QString TFSubjectPage::url()
{
    return property("pageUrl").toString();
}

void TFSubjectPage::setUrl(const QString &url)
{
    setProperty("pageUrl", url);
    m_mainFrame->setProperty("pageUrl", url);
}

void TFSubjectPage::applySkinStyle(const QVariant &style)
{
    if (!style.isValid())
        return;
    setStyleSheet(style.toString());
}

bool TFSubjectPage::parseUrl(const QUrl &url)
{
    TFPageUrl values;
    if (!TFPageUrl::read(url, &values)) {
        qWarning() << "url is unrecognizable";
        return false;
    }

    m_mainFrame->setNodeCode(values.nodeCode);
    m_mainFrame->setObjVwId(values.objVwId);
    m_mainFrame->setPNodeCode(values.pNodeCode != 0 ? values.pNodeCode
                                                    : TFMenuCfg::instance()->topicOfView(values.objVwId));

    // The caption falls back to the topic named by the URL's own code, not
    // the one found by the view.
    m_mainFrame->setCaption(values.title.isEmpty() ? TFMenuCfg::instance()->topicName(values.pNodeCode)
                                                   : values.title);

    announceTitleAndIcon(values.title);

    QMap<QString, QVariant> args;
    for (const auto &item : qAsConst(values.items)) {
        qDebug() << "setProperty:" << item;
        args.insert(item.first, item.second);
        setProperty(item.first.toLocal8Bit().constData(), item.second);
    }
    m_mainFrame->setF9Args(args);
    return true;
}

void TFSubjectPage::slotChangeWindowTitle(QString title)
{
    announceTitleAndIcon(title);
}

void TFSubjectPage::announceTitleAndIcon(const QString &urlTitle)
{
    const QString caption = m_mainFrame->caption();
    QString windowTitle;
    if (caption == urlTitle) {
        windowTitle = urlTitle;
    } else {
        windowTitle = caption;
        if (!urlTitle.isEmpty())
            windowTitle += QLatin1Char(':') + urlTitle;
    }
    emit signalWindowTitleChanged(windowTitle);
    emit signalWindowIconChanged(QIcon(TFCore::instance()->getCurrentSkinPath(QStringLiteral("subject.png"))));
}

void TFSubjectPage::setHeaderBorderColor(const QColor &color)
{
    m_headerBorderColor = color;
    TFQssCommon::instance()->headerBorderColor = color;
}

void TFSubjectPage::setHeaderSplitColor(const QColor &color)
{
    m_headerSplitColor = color;
    TFQssCommon::instance()->headerSplitColor = color;
}

void TFSubjectPage::setHighlightColor(const QColor &color)
{
    m_highlightColor = color;
    TFQssCommon::instance()->highlightColor = color;
}

void TFSubjectPage::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event)
    // Lets the style sheet paint the background of a plain QWidget subclass.
    QStyleOption option;
    option.initFrom(this);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
}

bool TFSubjectPage::exportMainTable(const QString &fileName, QString &error)
{
    // The right side shows the data page, not a web page, and its main view
    // is a table with columns.
    TFRightContainer *container = m_mainFrame->rightContainer();
    QStackedWidget *stack = m_mainFrame->stack();
    TFMainView *mainView = container ? container->mainView() : nullptr;
    auto *table = mainView ? qobject_cast<TFSubjectTableWidget *>(mainView->currentView()) : nullptr;
    if (!table || (stack && stack->currentIndex() != 0) || !table->isVisibleTo(this)) {
        error = tr("the page shows no table");
        return false;
    }
    connect(table, &TFSubjectTableWidget::signalExportFinished, this, &TFSubjectPage::signalExportFinished,
            Qt::UniqueConnection);
    table->exportToFile(fileName);
    return true;
}
