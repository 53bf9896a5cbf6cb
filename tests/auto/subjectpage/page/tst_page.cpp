#include "tfbaseview.h"
#include "tfmainview.h"
#include "tfmenucfg.h"
#include "tfrightcontainer.h"
#include "tfsubjectmainframe.h"
#include "tfsubjectpage.h"
#include "tfsubjecttablewidget.h"
#include "tfsubjecttreewidget.h"
#include "tftreemodel.h"
#include "tftreewidgetcontainer.h"

#include "mulittable/tfsubjecttablemodel.h"

#include "subjectservice.h"
#include "tfcore/tfserviceconfig.h"
#include "tfcore/tfwebview.h"

#include <QApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTreeView>
#include <QtTest>

#include "webenginetestmain.h"

#include <memory>

namespace {

const char kServiceKey[] = "servercfg.ini:Subject";
constexpr int kTimeout = 30000;

qlonglong secuIdOf(const RowData &row)
{
    for (const auto &cell : row) {
        if (cell.fieldName == QLatin1String("SECU_ID"))
            return cell.value.toLongLong();
    }
    return -1;
}

TFSubjectTableWidget *mainTable(TFSubjectMainFrame *frame)
{
    return qobject_cast<TFSubjectTableWidget *>(frame->rightContainer()->mainView()->currentView());
}

bool hasRows(TFSubjectTableWidget *table)
{
    return table && table->model() && table->model()->rowCount() > 0;
}

} // namespace

class tst_Page : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void stockPage();
    void rowClickRefreshesChildren();
    void nodeWithAWebPage();
    void everyTopicOpensFromItsTree_data();
    void everyTopicOpensFromItsTree();

private:
    std::unique_ptr<TFSubjectPage> openPage(const QString &url);

    QTemporaryDir m_dir;
    std::unique_ptr<SubjectService::Server> m_server;
};

void tst_Page::initTestCase()
{
    Q_INIT_RESOURCE(subjectpage);
    TFTableModelData::registerRowDataType();
    QVERIFY(m_dir.isValid());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir.path());
    SubjectService::Options options;
    options.dbPath = m_dir.filePath(QStringLiteral("page.sqlite"));
    m_server.reset(new SubjectService::Server(options));
    QString error;
    QVERIFY2(m_server->start(&error), qPrintable(error));
    TFServiceConfig::instance()->setHttpUrl(QLatin1String(kServiceKey), m_server->baseUrl());
}

void tst_Page::cleanupTestCase()
{
    if (m_server)
        m_server->stop();
}

std::unique_ptr<TFSubjectPage> tst_Page::openPage(const QString &url)
{
    std::unique_ptr<TFSubjectPage> page(new TFSubjectPage);
    page->resize(1400, 900);
    page->show();
    page->init(QUrl(url), QVariant());
    return page;
}

void tst_Page::stockPage()
{
    auto page = openPage(QStringLiteral("view://subjectpage?pnodecode=2&objvwid=260&title=股票专题"));
    TFSubjectMainFrame *frame = page->mainFrame();

    // The tree of the stock topic stands, with the node of the URL current.
    QTRY_VERIFY_WITH_TIMEOUT(frame->loadingLabel()->isHidden(), kTimeout);
    TFTreeWidgetContainer *tree = frame->leftContainer();
    QVERIFY(tree->mainTree()->hasRows());
    QCOMPARE(tree->mainTreeView()->currentIndex().data().toString(), QStringLiteral("沪深A股行情"));
    QCOMPARE(tree->title(), QStringLiteral("股票专题"));
    // The block tree came with the stock topic, hidden until a view asks for it.
    QVERIFY(tree->blockTree()->hasRows());

    // View 260 fills the main table and its three children become tabs.
    TFRightContainer *right = frame->rightContainer();
    QCOMPARE(frame->stack()->currentIndex(), 0);
    QCOMPARE(right->currentView(), 260);
    QTRY_COMPARE_WITH_TIMEOUT(right->tabWidget()->count(), 3, kTimeout);
    QTRY_VERIFY_WITH_TIMEOUT(hasRows(mainTable(frame)), kTimeout);
    QStringList captions;
    for (int index = 0; index < right->tabWidget()->count(); ++index)
        captions << right->tabWidget()->tabText(index);
    captions.sort();
    QStringList expected{QStringLiteral("财务摘要"), QStringLiteral("日线走势"), QStringLiteral("十大股东")};
    expected.sort();
    QCOMPARE(captions, expected);
    QCOMPARE(frame->windowTitle(), QStringLiteral("股票专题:行情中心"));
}

void tst_Page::rowClickRefreshesChildren()
{
    auto page = openPage(QStringLiteral("view://subjectpage?pnodecode=2&objvwid=260"));
    TFSubjectMainFrame *frame = page->mainFrame();
    TFRightContainer *right = frame->rightContainer();
    QTRY_VERIFY_WITH_TIMEOUT(right && right->tabWidget()->count() == 3, kTimeout);
    QTRY_VERIFY_WITH_TIMEOUT(mainTable(frame) && mainTable(frame)->model()
                                 && mainTable(frame)->model()->rowCount() > 2, kTimeout);

    TFSubjectTableWidget *holders = nullptr;
    for (int index = 0; index < right->tabWidget()->count(); ++index) {
        auto *view = qobject_cast<TFSubjectTableWidget *>(right->tabWidget()->widget(index));
        if (view && view->viewId() == 263)
            holders = view;
    }
    QVERIFY(holders);
    auto childSecu = [&] {
        if (!hasRows(holders))
            return qlonglong(-2);
        return secuIdOf(holders->model()->index(0, 0).data(TFSubjectTableModel::RowDataRole).value<RowData>());
    };
    // The first row feeds the children.
    const qlonglong first = secuIdOf(right->mainView()->firstRow());
    QTRY_COMPARE_WITH_TIMEOUT(childSecu(), first, kTimeout);

    // A click on the third row refreshes them.
    TFSubjectTableModel *model = mainTable(frame)->model();
    const RowData third = model->index(2, 0).data(TFSubjectTableModel::RowDataRole).value<RowData>();
    QVERIFY(secuIdOf(third) != first);
    emit mainTable(frame)->sigRowData(third, true);
    QTRY_COMPARE_WITH_TIMEOUT(childSecu(), secuIdOf(third), kTimeout);
    for (int row = 0; row < holders->model()->rowCount(); ++row) {
        QCOMPARE(secuIdOf(holders->model()->index(row, 0).data(TFSubjectTableModel::RowDataRole).value<RowData>()),
                 secuIdOf(third));
    }
}

void tst_Page::nodeWithAWebPage()
{
    auto page = openPage(QStringLiteral("view://subjectpage?pnodecode=2&objvwid=260"));
    TFSubjectMainFrame *frame = page->mainFrame();
    QTRY_VERIFY_WITH_TIMEOUT(frame->loadingLabel()->isHidden(), kTimeout);
    QTreeView *view = frame->leftContainer()->mainTreeView();
    const QModelIndex help = view->model()->match(view->model()->index(0, 0), Qt::DisplayRole,
                                                  QStringLiteral("专题说明"), 1,
                                                  Qt::MatchExactly | Qt::MatchRecursive).value(0);
    QVERIFY(help.isValid());
    const QString url = help.data(TFTreeItem::UrlRole).toString();
    QVERIFY(url.startsWith(m_server->baseUrl().toString()));
    emit view->clicked(help);
    QCOMPARE(frame->stack()->currentIndex(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(QUrl(frame->webView()->url()), QUrl::fromUserInput(url), kTimeout);
    QCOMPARE(frame->rightContainer()->currentView(), 260);

    // Back to a view: the data page again, and the web page keeps its place in the stack.
    const QModelIndex other = view->model()->match(view->model()->index(0, 0), Qt::DisplayRole,
                                                   QStringLiteral("板块成分股"), 1,
                                                   Qt::MatchExactly | Qt::MatchRecursive).value(0);
    emit view->clicked(other);
    QCOMPARE(frame->stack()->currentIndex(), 0);
    QCOMPARE(frame->rightContainer()->currentView(), 269);
    QCOMPARE(frame->stack()->count(), 2);
}

void tst_Page::everyTopicOpensFromItsTree_data()
{
    QTest::addColumn<int>("topic");
    // One topic per menu of the demo catalogue.
    for (int topic : {2, 61, 311, 50, 758, 4781, 159, 4782, 4785, 4808, 4837})
        QTest::newRow(qPrintable(QString::number(topic))) << topic;
}

void tst_Page::everyTopicOpensFromItsTree()
{
    QFETCH(int, topic);
    auto page = openPage(QStringLiteral("view://subjectpage?pnodecode=%1&nodecode=0").arg(topic));
    TFSubjectMainFrame *frame = page->mainFrame();
    QTRY_VERIFY_WITH_TIMEOUT(frame->loadingLabel()->isHidden(), kTimeout);
    TFTreeWidgetContainer *tree = frame->leftContainer();
    QVERIFY(tree->mainTree()->hasRows());
    // The first leaf opened by itself; each view leaf of the tree opens in turn.
    QTreeView *view = tree->mainTreeView();
    QList<QModelIndex> leaves;
    QList<QModelIndex> walk{QModelIndex()};
    while (!walk.isEmpty()) {
        const QModelIndex parent = walk.takeFirst();
        for (int row = 0; row < view->model()->rowCount(parent); ++row) {
            const QModelIndex child = view->model()->index(row, 0, parent);
            if (view->model()->hasChildren(child))
                walk << child;
            else if (child.data(TFTreeItem::ViewIdRole).toLongLong() > 0)
                leaves << child;
        }
    }
    QVERIFY(!leaves.isEmpty());
    for (const QModelIndex &leaf : qAsConst(leaves)) {
        const qint64 id = leaf.data(TFTreeItem::ViewIdRole).toLongLong();
        emit view->clicked(leaf);
        QCOMPARE(frame->rightContainer()->currentView(), id);
        QTRY_VERIFY2_WITH_TIMEOUT(frame->rightContainer()->mainView()->currentViewId() == id,
                                  qPrintable(leaf.data().toString()), kTimeout);
        TFBaseView *shown = frame->rightContainer()->mainView()->currentView();
        QVERIFY(shown);
        QCOMPARE(shown->caption().isEmpty(), false);
    }
}

SUBJECT_WEBENGINE_TEST_MAIN(tst_Page)

#include "tst_page.moc"
