#include "tfcore/tfcore.h"
#include "tfcore/tfserviceconfig.h"

#include <QtTest>

class tst_TFServiceConfig : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup() { TFServiceConfig::instance()->setCurrentLang(TFServiceConfig::Chinese); }
    void getHttpUrl_data();
    void getHttpUrl();
    void language();

private:
    QTemporaryDir m_dir;
};

void tst_TFServiceConfig::initTestCase()
{
    QFile file(m_dir.filePath("servercfg.ini"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[Macro]\nurl=http://10.0.0.9:9000/macro\n");
    file.close();
    TFCore::instance()->setIniDirectory(m_dir.path());
}

void tst_TFServiceConfig::getHttpUrl_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("base");        // set for the key; empty: read from the server list
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("expected");
    const QString subject = QStringLiteral("servercfg.ini:Subject");
    QTest::newRow("base only") << subject << "http://127.0.0.1:8080" << "" << "http://127.0.0.1:8080";
    QTest::newRow("path onto bare host") << subject << "http://127.0.0.1:8080" << "bas/subject/data"
                                         << "http://127.0.0.1:8080/bas/subject/data";
    QTest::newRow("leading slash") << subject << "http://h:1/" << "/bas/ds/data" << "http://h:1/bas/ds/data";
    QTest::newRow("base with path") << subject << "https://h/api" << "bas/subject/data" << "https://h/api/bas/subject/data";
    QTest::newRow("base with slash") << subject << "https://h/api/" << "/x" << "https://h/api/x";
    QTest::newRow("from the server list") << "servercfg.ini:Macro" << "" << "" << "http://10.0.0.9:9000/macro";
    QTest::newRow("nowhere") << "servercfg.ini:Absent" << "" << "x" << "";
}

void tst_TFServiceConfig::getHttpUrl()
{
    QFETCH(QString, key);
    QFETCH(QString, base);
    QFETCH(QString, path);
    QFETCH(QString, expected);
    if (!base.isEmpty())
        TFServiceConfig::instance()->setHttpUrl(key, QUrl(base));
    if (expected.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("no service address"));
    QCOMPARE(TFServiceConfig::instance()->getHttpUrl(key, path).toString(), expected);
}

void tst_TFServiceConfig::language()
{
    QCOMPARE(TFServiceConfig::instance()->getCurrentLang(), int(TFServiceConfig::Chinese));
    TFServiceConfig::instance()->setCurrentLang(TFServiceConfig::English);
    QCOMPARE(TFServiceConfig::instance()->getCurrentLang(), int(TFServiceConfig::English));
}

QTEST_GUILESS_MAIN(tst_TFServiceConfig)
#include "tst_tfserviceconfig.moc"
