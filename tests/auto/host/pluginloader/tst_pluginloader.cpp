#include "pluginloader.h"
#include "terminalwindow.h"

#include "tfcore/invokerbase.h"
#include "tfcore/itfabstractpage.h"
#include "tfcore/tfcore.h"

#include <QTabWidget>
#include <QtTest>

class tst_PluginLoader : public QObject
{
    Q_OBJECT
private slots:
    void cleanup();
    void loadsAndReadsMetadata();
    void pagesInTabs();
    void failingInitialisationIsReported();
};

void tst_PluginLoader::cleanup()
{
    qunsetenv("FAKE_PLUGIN_FAIL");
}

void tst_PluginLoader::loadsAndReadsMetadata()
{
    PluginLoader loader(QStringLiteral(FAKE_PLUGIN_DIR));
    QVERIFY2(loader.loadAll(), qPrintable(loader.errorString()));
    QCOMPARE(loader.registrations().size(), 1);
    const PageRegistration registration = loader.registrations().first();
    QCOMPARE(registration.id, QString("TFApp.SUBJECT"));
    QCOMPARE(registration.pluginName, QString("FakePage"));
    QCOMPARE(QByteArray(QMetaType::typeName(registration.metaId)), QByteArray("FakePage"));
    QCOMPARE(loader.defaultPageUrl(), QUrl("view://fakepage?objvwid=7&title=Fake"));

    QString error;
    ITFAbstractPage *page = loader.createPage(QUrl("view://fakepage?objvwid=1"), &error);
    QVERIFY2(page, qPrintable(error));
    QCOMPARE(page->getWidget()->objectName(), QString("FakePage"));
    QVERIFY(!page->getWidget()->parent());
    delete page->getWidget();
}

// Pages follow their signals in tabs, and reach the main window through
// TFCore to call it by name.
void tst_PluginLoader::pagesInTabs()
{
    PluginLoader loader(QStringLiteral(FAKE_PLUGIN_DIR));
    QVERIFY(loader.loadAll());
    TerminalWindow window(&loader);
    QCOMPARE(TFCore::instance()->mainWindow(), &window);
    QString error;
    QVERIFY2(window.openPage(QUrl("view://fakepage?objvwid=42"), &error), qPrintable(error));
    QCOMPARE(window.pageCount(), 1);
    QCOMPARE(window.tabs()->tabText(0), QString("Fake 42"));
    QVERIFY(!window.tabs()->tabIcon(0).isNull());
    QCOMPARE(window.windowTitle(), QString("Fake 42 - Subject Terminal"));
    auto *page = dynamic_cast<ITFAbstractPage *>(window.pageAt(0));
    QVERIFY(page);
    QCOMPARE(page->url(), QString("view://fakepage?objvwid=42"));

    // A page that asks for another URL gets a new tab.
    QVERIFY(QMetaObject::invokeMethod(window.pageAt(0), "signalOpenNewUrl", Q_ARG(QString, "view://fakepage?objvwid=43")));
    QCOMPARE(window.pageCount(), 2);
    QCOMPARE(window.tabs()->tabText(1), QString("Fake 43"));
    QCOMPARE(window.tabs()->currentIndex(), 1);

    InvokerBase invoker;
    invoker.arg<QString>(QStringLiteral("VIEW://fakepage?objvwid=9"), "QString");
    QVERIFY(invoker.invoke(TFCore::instance()->mainWindow(), "openStringUrl"));
    QCOMPARE(window.pageCount(), 3);
    QCOMPARE(window.tabs()->tabText(2), QString("Fake 9"));

    QPointer<QWidget> first = window.pageAt(0);
    emit window.tabs()->tabCloseRequested(0);
    QCOMPARE(window.pageCount(), 2);
    QTRY_VERIFY(first.isNull());
    QCOMPARE(window.tabs()->tabText(0), QString("Fake 43"));
}

void tst_PluginLoader::failingInitialisationIsReported()
{
    qputenv("FAKE_PLUGIN_FAIL", "1");
    PluginLoader loader(QStringLiteral(FAKE_PLUGIN_DIR));
    QVERIFY(!loader.loadAll());
    QVERIFY2(loader.errorString().contains("failed to initialize: told to fail"), qPrintable(loader.errorString()));
    QVERIFY(loader.registrations().isEmpty());
}

QTEST_MAIN(tst_PluginLoader)
#include "tst_pluginloader.moc"
