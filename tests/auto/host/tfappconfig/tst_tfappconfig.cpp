#include "tfcore/tfappconfig.h"

#include <QAtomicInt>
#include <QRunnable>
#include <QSet>
#include <QThreadPool>
#include <QtTest>

namespace {

// Long values, so that a copy made without the lock would have time to see
// a string half freed or half replaced.
QString valueNumber(const QString &stem, int n)
{
    return stem + QString::number(n) + QString(200, QLatin1Char('a' + n % 26));
}

class Reader : public QRunnable
{
public:
    Reader(const QSet<QString> &tokens, const QSet<QString> &users, const QSet<QString> &products,
           QAtomicInt *stop, QAtomicInt *reads, QAtomicInt *strangers)
        : m_tokens(tokens), m_users(users), m_products(products)
        , m_stop(stop), m_reads(reads), m_strangers(strangers)
    {
    }

    void run() override
    {
        TFAppConfig *config = TFAppConfig::instance();
        while (!m_stop->loadAcquire()) {
            const QString token = config->getAppToken();
            const TFAppConfig::USERINFO user = config->getUserInfo();
            const QString product = config->getProuctId();
            if (!m_tokens.contains(token) || !m_users.contains(user.userId) || !m_products.contains(product))
                m_strangers->ref();
            m_reads->ref();
        }
    }

private:
    const QSet<QString> &m_tokens;
    const QSet<QString> &m_users;
    const QSet<QString> &m_products;
    QAtomicInt *m_stop;
    QAtomicInt *m_reads;
    QAtomicInt *m_strangers;
};

} // namespace

class tst_TFAppConfig : public QObject
{
    Q_OBJECT
private slots:
    void defaults();
    void settersAreSeenByGetters();
    void readsFromPoolThreadsWhileWritten();
};

// The terminal's defaults before it applies its command line.
void tst_TFAppConfig::defaults()
{
    TFAppConfig *config = TFAppConfig::instance();
    QCOMPARE(config->getAppToken(), QString());
    QCOMPARE(config->getProuctId(), QString("subject"));
    QCOMPARE(config->getUserInfo().userId, QString("demo"));
}

void tst_TFAppConfig::settersAreSeenByGetters()
{
    TFAppConfig *config = TFAppConfig::instance();
    config->setAppToken("t-1");
    config->setProuctId("p-1");
    config->setUserInfo({"u-1", "User One", "org-1"});
    QCOMPARE(config->getAppToken(), QString("t-1"));
    QCOMPARE(config->getProuctId(), QString("p-1"));
    const TFAppConfig::USERINFO user = config->getUserInfo();
    QCOMPARE(user.userId, QString("u-1"));
    QCOMPARE(user.userName, QString("User One"));
    QCOMPARE(user.orgId, QString("org-1"));
}

// Every value a reader sees must be one of those written, whole; under
// AddressSanitizer a copy taken outside the lock shows up as a use after free.
void tst_TFAppConfig::readsFromPoolThreadsWhileWritten()
{
    const int variants = 16;
    QSet<QString> tokens, users, products;
    for (int i = 0; i < variants; ++i) {
        tokens.insert(valueNumber("token-", i));
        users.insert(valueNumber("user-", i));
        products.insert(valueNumber("product-", i));
    }
    TFAppConfig *config = TFAppConfig::instance();
    config->setAppToken(valueNumber("token-", 0));
    config->setUserInfo({valueNumber("user-", 0), "name", "org"});
    config->setProuctId(valueNumber("product-", 0));

    QThreadPool pool;
    const int readers = 4;
    pool.setMaxThreadCount(readers);
    QAtomicInt stop, reads, strangers;
    for (int r = 0; r < readers; ++r)
        pool.start(new Reader(tokens, users, products, &stop, &reads, &strangers));

    QElapsedTimer clock;
    clock.start();
    int writes = 0;
    while (clock.elapsed() < 1500 || reads.loadAcquire() < 10000) {
        const int n = writes % variants;
        config->setAppToken(valueNumber("token-", n));
        config->setUserInfo({valueNumber("user-", n), "name", "org"});
        config->setProuctId(valueNumber("product-", n));
        ++writes;
        if (clock.elapsed() > 20000)
            break;
    }
    stop.storeRelease(1);
    QVERIFY(pool.waitForDone(10000));

    QVERIFY2(reads.loadAcquire() >= 10000, qPrintable(QString::number(reads.loadAcquire())));
    QVERIFY(writes > 100);
    QCOMPARE(strangers.loadAcquire(), 0);
}

QTEST_GUILESS_MAIN(tst_TFAppConfig)
#include "tst_tfappconfig.moc"
