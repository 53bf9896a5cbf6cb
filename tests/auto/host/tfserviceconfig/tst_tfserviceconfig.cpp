#include "tfcore/tfcore.h"
#include "tfcore/tfserviceconfig.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class tst_TFServiceConfig : public QObject
{
    Q_OBJECT
private slots:
    void getHttpUrl_data();
    void getHttpUrl();
    void unsetKeyIsReadFromTheServerList();
    void language();
};

void tst_TFServiceConfig::getHttpUrl_data()
{
    QTest::addColumn<QString>("base");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("expected");
    QTest::newRow("base only") << "http://127.0.0.1:8080" << "" << "http://127.0.0.1:8080";
    QTest::newRow("path onto bare host") << "http://127.0.0.1:8080" << "bas/subject/data"
                                         << "http://127.0.0.1:8080/bas/subject/data";
    QTest::newRow("leading slash") << "http://h:1/" << "/bas/ds/data" << "http://h:1/bas/ds/data";
    QTest::newRow("base with path") << "https://h/api" << "bas/subject/data" << "https://h/api/bas/subject/data";
    QTest::newRow("base with slash") << "https://h/api/" << "/x" << "https://h/api/x";
}

void tst_TFServiceConfig::getHttpUrl()
{
    QFETCH(QString, base);
    QFETCH(QString, path);
    QFETCH(QString, expected);
    TFServiceConfig::instance()->setHttpUrl("servercfg.ini:Subject", QUrl(base));
    QCOMPARE(TFServiceConfig::instance()->getHttpUrl("servercfg.ini:Subject", path).toString(), expected);
}

void tst_TFServiceConfig::unsetKeyIsReadFromTheServerList()
{
    QTemporaryDir dir;
    QFile file(dir.filePath("servercfg.ini"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[Macro]\nurl=http://10.0.0.9:9000/macro\n");
    file.close();
    TFCore::instance()->setIniDirectory(dir.path());
    QCOMPARE(TFServiceConfig::instance()->getHttpUrl("servercfg.ini:Macro", "").toString(),
             QString("http://10.0.0.9:9000/macro"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("no service address"));
    QVERIFY(TFServiceConfig::instance()->getHttpUrl("servercfg.ini:Absent", "x").isEmpty());
}

void tst_TFServiceConfig::language()
{
    QCOMPARE(TFServiceConfig::instance()->getCurrentLang(), int(TFServiceConfig::Chinese));
    TFServiceConfig::instance()->setCurrentLang(TFServiceConfig::English);
    QCOMPARE(TFServiceConfig::instance()->getCurrentLang(), int(TFServiceConfig::English));
}

QTEST_GUILESS_MAIN(tst_TFServiceConfig)
#include "tst_tfserviceconfig.moc"
