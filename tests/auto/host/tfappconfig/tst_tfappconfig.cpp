#include "tfcore/tfappconfig.h"

#include <QtTest>

// Long values, so that a copy made without the lock would have time to see
// a string half freed or half replaced.
static QString valueNumber(const QString &stem, int n)
{
    return stem + QString::number(n) + QString(200, QLatin1Char('a' + n % 26));
}

class tst_TFAppConfig : public QObject
{
    Q_OBJECT
private slots:
    void defaultsAndSetters();
    void readsFromPoolThreadsWhileWritten();
};

// The terminal's defaults before it applies its command line, then what it sets.
void tst_TFAppConfig::defaultsAndSetters()
{
    TFAppConfig *config = TFAppConfig::instance();
    QCOMPARE(config->getAppToken(), QString());
    QCOMPARE(config->getProuctId(), QString("subject"));
    QCOMPARE(config->getUserInfo().userId, QString("demo"));
    config->setAppToken("t-1");
    config->setProuctId("p-1");
    config->setUserInfo({"u-1", "User One", "org-1"});
    const TFAppConfig::USERINFO user = config->getUserInfo();
    QCOMPARE(QStringList({config->getAppToken(), config->getProuctId(), user.userId, user.userName, user.orgId}),
             QStringList({"t-1", "p-1", "u-1", "User One", "org-1"}));
}

// Every value a reader sees must be one of those written, whole; under
// AddressSanitizer a copy taken outside the lock shows up as a use after free.
void tst_TFAppConfig::readsFromPoolThreadsWhileWritten()
{
    const int variants = 16;
    QSet<QString> written;
    for (int i = 0; i < variants; ++i)
        written << valueNumber("token-", i) << valueNumber("user-", i) << valueNumber("product-", i);
    TFAppConfig *config = TFAppConfig::instance();
    auto write = [config](int n) {
        config->setAppToken(valueNumber("token-", n));
        config->setUserInfo({valueNumber("user-", n), "name", "org"});
        config->setProuctId(valueNumber("product-", n));
    };
    write(0);

    QThreadPool pool;
    const int readers = 4;
    pool.setMaxThreadCount(readers);
    QAtomicInt stop, reads, strangers;
    for (int r = 0; r < readers; ++r) {
        pool.start([&] {
            while (!stop.loadAcquire()) {
                for (const QString &value : {config->getAppToken(), config->getUserInfo().userId, config->getProuctId()}) {
                    if (!written.contains(value))
                        strangers.ref();
                }
                reads.ref();
            }
        });
    }
    QElapsedTimer clock;
    clock.start();
    int writes = 0;
    while ((clock.elapsed() < 1500 || reads.loadAcquire() < 10000) && clock.elapsed() < 20000)
        write(++writes % variants);
    stop.storeRelease(1);
    QVERIFY(pool.waitForDone(10000));

    QVERIFY2(reads.loadAcquire() >= 10000, qPrintable(QString::number(reads.loadAcquire())));
    QVERIFY(writes > 100);
    QCOMPARE(strangers.loadAcquire(), 0);
}

QTEST_GUILESS_MAIN(tst_TFAppConfig)
#include "tst_tfappconfig.moc"
