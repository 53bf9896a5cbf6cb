#include "tfmenucfg.h"
#include "tfqsscommon.h"
#include "tfsubjectmainframe.h"
#include "tfsubjectpage.h"

#include "tfcore/iplugin.h"
#include "tfcore/tfcore.h"
#include "tfcore/tfserviceconfig.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QPluginLoader>
#include <QSignalSpy>
#include <QtTest>

using Properties = QMap<QString, QVariant>;

class tst_TFSubjectPage : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();
    void parseUrl_data();
    void parseUrl();
    void queryItemsBecomeProperties_data();
    void queryItemsBecomeProperties();
    void refusedUrlLeavesThePageEmpty();
    void windowTitleRule_data();
    void windowTitleRule();
    void skinColoursReachTheCommonValues();
    void pluginMetadata();
    void pluginRegistersThePageType();

private:
    QList<QColor> m_colours; // the common header and highlight colours before the suite
};

void tst_TFSubjectPage::initTestCase()
{
    Q_INIT_RESOURCE(subjectpage);
    // The shipped menu, not one that happens to lie beside the test.
    QCOMPARE(TFMenuCfg::menuFilePath(), QStringLiteral(":/json/menu.json"));
    const TFQssCommon *common = TFQssCommon::instance();
    m_colours = {common->headerBorderColor, common->headerSplitColor, common->highlightColor};
    // No service is needed: nothing here refreshes the frame.
    TFServiceConfig::instance()->setHttpUrl(QStringLiteral("servercfg.ini:Subject"), QUrl("http://127.0.0.1:9"));
}

void tst_TFSubjectPage::cleanup()
{
    TFQssCommon::instance()->headerBorderColor = m_colours.at(0);
    TFQssCommon::instance()->headerSplitColor = m_colours.at(1);
    TFQssCommon::instance()->highlightColor = m_colours.at(2);
}

void tst_TFSubjectPage::parseUrl_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<int>("pNodeCode");
    QTest::addColumn<QString>("nodeCode");
    QTest::addColumn<QString>("objVwId");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("windowTitle");

    const QString stock = QStringLiteral("股票专题");
    QTest::newRow("default page") << QStringLiteral("view://subjectpage?pnodecode=2&nodecode=&objvwid=260&title=股票专题")
                                  << true << 2 << "" << "260" << stock << stock;
    QTest::newRow("capitals everywhere") << "VIEW://SUBJECTPAGE?PNODECODE=2&NODECODE=N1&OBJVWID=260&TITLE=ABC"
                                         << true << 2 << "n1" << "260" << "abc" << "abc";
    QTest::newRow("host contains the word") << "view://my.SubjectPage.host?pnodecode=2" << true << 2 << "" << ""
                                            << stock << stock;
    QTest::newRow("host without the word") << "view://subject?pnodecode=2" << false << -1 << "" << "" << "" << "";
    QTest::newRow("other scheme") << "http://subjectpage?pnodecode=2" << false << -1 << "" << "" << "" << "";
    QTest::newRow("word in the path only") << "view://host/subjectpage?pnodecode=2" << false << -1 << "" << "" << ""
                                           << "";
    QTest::newRow("title lowered") << "view://subjectpage?pnodecode=2&title=Hello%20World" << true << 2 << "" << ""
                                   << "hello world" << "hello world";
    QTest::newRow("pnodecode not a number: looked up by view")
        << "view://subjectpage?pnodecode=abc&objvwid=260" << true << 2 << "" << "260" << "" << "";
    QTest::newRow("pnodecode with trailing text") << "view://subjectpage?pnodecode=2x&objvwid=1641" << true << 190
                                                  << "" << "1641" << "" << "";
    QTest::newRow("pnodecode hexadecimal is not a number") << "view://subjectpage?pnodecode=0x10&objvwid=260" << true
                                                           << 2 << "" << "260" << "" << "";
    QTest::newRow("negative pnodecode taken as it is") << "view://subjectpage?pnodecode=-5&objvwid=260" << true << -5
                                                       << "" << "260" << "" << "";
    QTest::newRow("view only: code by view, caption by code 0")
        << "view://subjectpage?objvwid=1641" << true << 190 << "" << "1641" << "" << "";
    QTest::newRow("unknown view") << "view://subjectpage?objvwid=99999" << true << -1 << "" << "99999" << "" << "";
    QTest::newRow("leading zero is another text") << "view://subjectpage?objvwid=01641" << true << -1 << ""
                                                  << "01641" << "" << "";
    QTest::newRow("caption from the URL's own code") << "view://subjectpage?pnodecode=190&objvwid=260" << true << 190
                                                     << "" << "260" << "F9测试" << "F9测试";
    QTest::newRow("nothing") << "view://subjectpage" << true << -1 << "" << "" << "" << "";
}

void tst_TFSubjectPage::parseUrl()
{
    QFETCH(QString, url);
    QFETCH(bool, accepted);
    QFETCH(int, pNodeCode);
    QFETCH(QString, nodeCode);
    QFETCH(QString, objVwId);
    QFETCH(QString, caption);
    QFETCH(QString, windowTitle);

    TFSubjectPage page;
    QSignalSpy titles(&page, SIGNAL(signalWindowTitleChanged(QString)));
    QSignalSpy icons(&page, SIGNAL(signalWindowIconChanged(QIcon)));
    if (!accepted)
        QTest::ignoreMessage(QtWarningMsg, "url is unrecognizable");
    QCOMPARE(page.parseUrl(QUrl(url)), accepted);

    TFSubjectMainFrame *frame = page.mainFrame();
    if (!accepted) {
        QCOMPARE(frame->pNodeCode(), -1);
        QVERIFY(frame->f9Args().isEmpty());
        QCOMPARE(titles.count(), 0);
        QCOMPARE(icons.count(), 0);
        return;
    }
    QCOMPARE(frame->pNodeCode(), pNodeCode);
    QCOMPARE(frame->nodeCode(), nodeCode);
    QCOMPARE(frame->objVwId(), objVwId);
    QCOMPARE(frame->caption(), caption);
    QCOMPARE(titles.count(), 1);
    QCOMPARE(titles.first().first().toString(), windowTitle);
    QCOMPARE(icons.count(), 1);
}

void tst_TFSubjectPage::queryItemsBecomeProperties_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<Properties>("expected");

    QTest::newRow("known keys") << "view://subjectpage?pnodecode=2&nodecode=&objvwid=260&title=T"
                                << Properties{{"pnodecode", "2"}, {"nodecode", ""}, {"objvwid", "260"}, {"title", "t"}};
    QTest::newRow("an extra key, lowered") << "view://subjectpage?SecuId=600000&Mode=A"
                                           << Properties{{"secuid", "600000"}, {"mode", "a"}};
    QTest::newRow("a repeated key keeps the last value") << "view://subjectpage?k=1&k=2" << Properties{{"k", "2"}};
    QTest::newRow("encoded text") << "view://subjectpage?name=%E8%82%A1%E7%A5%A8"
                                  << Properties{{"name", QStringLiteral("股票")}};
}

void tst_TFSubjectPage::queryItemsBecomeProperties()
{
    QFETCH(QString, url);
    QFETCH(Properties, expected);

    TFSubjectPage page;
    QVERIFY(page.parseUrl(QUrl(url)));
    for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
        const QVariant value = page.property(it.key().toLocal8Bit().constData());
        QVERIFY2(value.isValid(), qPrintable(it.key()));
        QCOMPARE(value.userType(), int(QMetaType::QString));
        QCOMPARE(value, it.value());
    }
    QCOMPARE(page.mainFrame()->f9Args(), expected);
}

void tst_TFSubjectPage::refusedUrlLeavesThePageEmpty()
{
    TFSubjectPage page;
    QTest::ignoreMessage(QtWarningMsg, "url is unrecognizable");
    page.init(QUrl("view://elsewhere?pnodecode=2&objvwid=260"), QVariant());
    // Not refreshed: no right side, no web page, no URL.
    QVERIFY(!page.mainFrame()->rightContainer() && !page.mainFrame()->webView());
    QVERIFY(page.url().isEmpty());
    QVERIFY(!page.mainFrame()->property("pageUrl").isValid());
    // The URL is kept on the page and its frame.
    page.setUrl(QStringLiteral("view://subjectpage?x=1"));
    QCOMPARE(page.url(), QStringLiteral("view://subjectpage?x=1"));
    QCOMPARE(page.mainFrame()->property("pageUrl").toString(), QStringLiteral("view://subjectpage?x=1"));
}

void tst_TFSubjectPage::windowTitleRule_data()
{
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("expected");
    QTest::newRow("same") << "A" << "A" << "A";
    QTest::newRow("empty title") << "A" << "" << "A";
    QTest::newRow("different") << "A" << "B" << "A:B";
    QTest::newRow("empty caption") << "" << "B" << ":B";
    QTest::newRow("both empty") << "" << "" << "";
}

void tst_TFSubjectPage::windowTitleRule()
{
    QFETCH(QString, caption);
    QFETCH(QString, title);
    QFETCH(QString, expected);
    TFSubjectPage page;
    page.mainFrame()->setCaption(caption);
    // The host connects by the texts the page gives; they must name its signals.
    QVERIFY(!page.signalUrlChanged());
    QSignalSpy titles(&page, page.signalWindowTitleChanged());
    QSignalSpy icons(&page, page.signalWindowIconChanged());
    QVERIFY(titles.isValid() && icons.isValid());
    page.slotChangeWindowTitle(title);
    QCOMPARE(titles.count(), 1);
    QCOMPARE(titles.first().first().toString(), expected);
    QCOMPARE(icons.count(), 1);
}

void tst_TFSubjectPage::skinColoursReachTheCommonValues()
{
    // The skin's sheet sets the colours as properties; a sheet takes its
    // properties at the first polish, so the first sheet the page gets counts.
    const QString sheet = QStringLiteral("TFSubjectPage { qproperty-headerBorderColor: #102030;"
                                         " qproperty-headerSplitColor: #405060; qproperty-highlightColor: #708090; }");
    // No skin of the build folder may polish the page before the test's sheet.
    QTemporaryDir noSkins;
    TFCore::instance()->setSkinsRoot(noSkins.path());
    TFSubjectPage page;
    TFCore::instance()->setSkinsRoot(QString());
    page.applySkinStyle(sheet);
    page.applySkinStyle(QVariant()); // no sheet: the last one stays
    QCOMPARE(page.styleSheet(), sheet);
    page.ensurePolished();
    QCOMPARE(page.headerBorderColor(), QColor("#102030"));
    QCOMPARE(TFQssCommon::instance()->headerBorderColor, QColor("#102030"));
    QCOMPARE(TFQssCommon::instance()->headerSplitColor, QColor("#405060"));
    QCOMPARE(TFQssCommon::instance()->highlightColor, QColor("#708090"));
    page.setProperty("highlightColor", QColor(Qt::red));
    QCOMPARE(TFQssCommon::instance()->highlightColor, QColor(Qt::red));
    QCOMPARE(page.highlightColor(), QColor(Qt::red));
}

void tst_TFSubjectPage::pluginMetadata()
{
    QPluginLoader loader(QStringLiteral(SUBJECT_BIN_DIR "/plugins/libsubjectpage.so"));
    const QJsonObject meta = loader.metaData();
    QCOMPARE(meta.value(QStringLiteral("IID")).toString(), QStringLiteral("TFAppPlugin"));
    QCOMPARE(meta.value(QStringLiteral("className")).toString(), QStringLiteral("TFSubjectPagePlugin"));
    const QString url = QStringLiteral("view://subjectpage?pnodecode=2&nodecode=&objvwid=260&title=股票专题");
    const QJsonObject expected{{"Name", "SubjectPage"}, {"Version", "1.0.0"}, {"CompatVersion", "1.0.0"},
                               {"Required", false}, {"Category", "Subject"}, {"Arguments", QJsonArray()},
                               {"Dependencies", QJsonArray()}, {"Url", url}, {"Description", url}};
    const QJsonObject data = meta.value(QStringLiteral("MetaData")).toObject();
    for (auto it = expected.begin(); it != expected.end(); ++it)
        QVERIFY2(data.value(it.key()) == it.value(), qPrintable(it.key()));
    // The default URL is one the page accepts.
    TFSubjectPage page;
    QVERIFY(page.parseUrl(QUrl(url)));
    QCOMPARE(page.mainFrame()->pNodeCode(), 2);
}

void tst_TFSubjectPage::pluginRegistersThePageType()
{
    QPluginLoader loader(QStringLiteral(SUBJECT_BIN_DIR "/plugins/libsubjectpage.so"));
    auto *plugin = qobject_cast<IPlugin *>(loader.instance());
    QVERIFY2(plugin, qPrintable(loader.errorString()));
    QVERIFY(plugin->initialize({}, nullptr));
    plugin->extensionsInitialized();
    const QVector<QObject *> objects = plugin->autoReleasedObjects();
    QCOMPARE(objects.size(), 1);
    QObject *registration = objects.first();
    QCOMPARE(registration->objectName(), QStringLiteral("SubjectPage"));
    QCOMPARE(registration->property("id").toString(), QStringLiteral("TFApp.SUBJECT"));
    const int metaId = registration->property("metaId").toInt();
    QCOMPARE(QByteArray(QMetaType::typeName(metaId)), QByteArray("TFSubjectPage"));

    // What the host does with it: make a page from the type and talk to it through its interfaces.
    void *made = QMetaType::create(metaId);
    auto *widget = qobject_cast<QWidget *>(static_cast<QObject *>(made));
    QVERIFY(widget && !widget->parent());
    QCOMPARE(QByteArray(widget->metaObject()->className()), QByteArray("TFSubjectPage"));
    auto *page = dynamic_cast<ITFAbstractPage *>(widget);
    QVERIFY(page && page->getWidget() == widget);
    QMetaType::destroy(metaId, made);
}

QTEST_MAIN(tst_TFSubjectPage)
#include "tst_tfsubjectpage.moc"
