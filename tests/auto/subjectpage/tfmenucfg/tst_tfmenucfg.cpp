#include "tfmenucfg.h"

#include "tfcore/tfserviceconfig.h"

#include <QtTest>

class tst_TFMenuCfg : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();
    void fileBesideTheApplicationWins();
    void shippedMenus();
    void ofView_data();
    void ofView();
    void documentShapes_data();
    void documentShapes();
    void englishNames();

private:
    QString besidePath() const { return QCoreApplication::applicationDirPath() + QStringLiteral("/menu.json"); }
    QTemporaryDir m_dir;
};

void tst_TFMenuCfg::initTestCase()
{
    Q_INIT_RESOURCE(subjectpage);
    QVERIFY(m_dir.isValid());
    QVERIFY(!QFile::exists(besidePath()));
}

void tst_TFMenuCfg::cleanup()
{
    QFile::remove(besidePath());
    TFServiceConfig::instance()->setCurrentLang(TFServiceConfig::Chinese);
}

void tst_TFMenuCfg::fileBesideTheApplicationWins()
{
    QCOMPARE(TFMenuCfg::menuFilePath(), QStringLiteral(":/json/menu.json"));
    {
        QFile beside(besidePath());
        QVERIFY(beside.open(QIODevice::WriteOnly));
        beside.write("{}");
    }
    QCOMPARE(TFMenuCfg::menuFilePath(), besidePath());
    // An empty object beside the application: the resource is not consulted.
    TFMenuCfg *menu = TFMenuCfg::instance();
    QCOMPARE(menu->topicOfView(QStringLiteral("260")), -1);
    QCOMPARE(menu->topicName(2), QString());
    QCOMPARE(menu->itemOfView(QStringLiteral("260")).obj_vw_id, 0);
}

// The menus the plug-in ships know every topic of the catalogue.
void tst_TFMenuCfg::shippedMenus()
{
    const TFMenuCfg menu(QStringLiteral(":/json/menu.json"));
    for (int code : {190, 2, 61, 311, 50, 758, 4781, 159, 4782, 4785, 4808, 4837})
        QVERIFY2(!menu.topicName(code).isEmpty(), qPrintable(QString::number(code)));
    QCOMPARE(menu.topicOfView(QStringLiteral("260")), 2);
}

static const char *kMenus = "{\"windowTitle\":\"t\",\"menubar\":[\n"
" {\"menu\":\"六十一\",\"menu_en\":\"Sixty-one\",\"P_NODE_CODE\":61,\"menuItem\":[\n"
"   {\"sectorName\":\"s\",\"sectorCode\":\"S\",\"itemName\":\"thirty\",\"obj_vw_id\":\"30\"},\n"
"   {\"sectorName\":\"s\",\"sectorCode\":\"S\",\"itemName\":\"twenty in 61\",\"obj_vw_id\":\"20\"}]},\n"
" {\"menu\":\"五\",\"menu_en\":\"\",\"P_NODE_CODE\":5,\"menuItem\":[\n"
"   {\"sectorName\":\"t\",\"sectorCode\":\"T\",\"itemName\":\"twenty in 5\",\"obj_vw_id\":\"20\"},\n"
"   {\"sectorName\":\"t\",\"sectorCode\":\"T\",\"itemName\":\"zero\",\"obj_vw_id\":\"x\"}]},\n"
" {\"menu\":\"七\",\"P_NODE_CODE\":7,\"menuItem\":[{\"sectorName\":\"u\",\"itemName\":\"forty\",\"obj_vw_id\":\"40\"}]},\n"
" {\"menu\":\"七 again\",\"P_NODE_CODE\":7,\"menuItem\":[{\"sectorName\":\"v\",\"itemName\":\"forty-one\",\"obj_vw_id\":\"41\"}]},\n"
" {\"menu\":\"no items\",\"P_NODE_CODE\":8,\"menuItem\":{}},\n"
" \"not a menu\"\n"
"]}";

// A view's topic compares identifiers as text and takes the smallest code;
// its item compares them as numbers and takes the first in file order.
void tst_TFMenuCfg::ofView_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<int>("topic");
    QTest::addColumn<QString>("itemName");

    QTest::newRow("listed once") << "30" << 61 << "thirty";
    QTest::newRow("in two menus") << "20" << 5 << "twenty in 61";
    QTest::newRow("leading zero") << "020" << -1 << "twenty in 61";
    QTest::newRow("text") << "abc" << -1 << "zero";
    QTest::newRow("in a replaced menu") << "40" << -1 << "forty";
    QTest::newRow("in the menu that replaced it") << "41" << 7 << "forty-one";
    QTest::newRow("unknown") << "99" << -1 << QString();
}

void tst_TFMenuCfg::ofView()
{
    QFETCH(QString, id);
    QFETCH(int, topic);
    QFETCH(QString, itemName);

    QTemporaryFile file(m_dir.path() + QStringLiteral("/menuXXXXXX.json"));
    QVERIFY(file.open());
    file.write(kMenus);
    file.close();
    const TFMenuCfg menu(file.fileName());
    QCOMPARE(menu.topicOfView(id), topic);
    QCOMPARE(menu.itemOfView(id).itemName, itemName);
    QCOMPARE(menu.topicName(7), QStringLiteral("七 again"));
    QCOMPARE(menu.topicName(8), QString());
}

void tst_TFMenuCfg::documentShapes_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("not JSON") << QByteArray("{menubar:");
    QTest::newRow("array") << QByteArray("[{\"menubar\":[]}]");
    QTest::newRow("menubar not an array") << QByteArray("{\"menubar\":{\"menu\":\"x\",\"P_NODE_CODE\":2,\"menuItem\":[{\"obj_vw_id\":\"1\"}]}}");
}

void tst_TFMenuCfg::documentShapes()
{
    QFETCH(QByteArray, text);
    TFMenuCfg menu(QString{});
    menu.parse(text);
    QCOMPARE(menu.topicOfView(QStringLiteral("1")), -1);
    QCOMPARE(menu.topicName(2), QString());
    QCOMPARE(menu.itemOfView(QStringLiteral("1")).obj_vw_id, 0);
}

void tst_TFMenuCfg::englishNames()
{
    TFServiceConfig::instance()->setCurrentLang(TFServiceConfig::English);
    TFMenuCfg menu(QString{});
    menu.parse(kMenus);
    QCOMPARE(menu.topicName(61), QStringLiteral("Sixty-one"));
    QCOMPARE(menu.topicName(5), QString()); // an empty English name is used as it is
}

QTEST_MAIN(tst_TFMenuCfg)
#include "tst_tfmenucfg.moc"
