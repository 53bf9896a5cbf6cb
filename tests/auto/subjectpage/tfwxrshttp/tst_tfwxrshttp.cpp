#include "httpservice/tfwxrshttp.h"
#include "httptestserver.h"
#include "net/tfdm.h"
#include "net/tfworkthread.h"

#include "tfcore/tfappconfig.h"
#include "tfcore/tfserviceconfig.h"

#include <QSemaphore>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <atomic>
#include <memory>

using RawHeaders = TFWXRSHttp::RawHeaders;

namespace {

void setIdentity(const QString &token, const QString &user, const QString &product)
{
    TFAppConfig::USERINFO info;
    info.userId = user;
    TFAppConfig::instance()->setUserInfo(info);
    TFAppConfig::instance()->setProuctId(product);
    TFAppConfig::instance()->setAppToken(token);
}

// What reached a functor: how often, with what, on which thread.
struct Delivery
{
    std::atomic<int> calls{0};
    bool isOk = false;
    QByteArray data;
    QThread *thread = nullptr;
};

template<typename F>
void startRequest(const TFUc::TFRequestContent &content, F functor, QObject *receiver)
{
    auto *runnable = new TFWorkThread<F>(content, std::move(functor), receiver);
    runnable->setAutoDelete(true);
    QThreadPool::globalInstance()->start(runnable, 0);
}

TFUc::TFRequestContent content(const QUrl &url, const QByteArray &body)
{
    TFUc::TFRequestContent c;
    c.url = url;
    c.body = body;
    return c;
}

} // namespace

class tst_TFWXRSHttp : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void buildHeaders_data();
    void buildHeaders();
    void postSendsBodyAndHeaders_data();
    void postSendsBodyAndHeaders();
    void httpsWithUntrustedCertificate();
    void redirectToLessSafeSchemeNotFollowed();
    void serverErrorIsAFailureWithItsText();
    void refusedConnectionIsAFailure();
    void workThreadDeliversOnReceiverThread();
    void workThreadWithoutReceiver();
    void emptyTokenSendsNoTokenHeader();
    void dmFixesAddressAndIdentity();
    void requestsRunSideBySide();
    void destroyedReceiverGetsNothing();
    // Quits the application: keep it last.
    void quittingEndsThePoolThread();

private:
    QTemporaryDir m_dir;
    QSslCertificate m_certificate;
    QSslKey m_key;
};

void tst_TFWXRSHttp::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QString error;
    QVERIFY2(HttpTestServer::makeSelfSignedCertificate(m_dir.path(), &m_certificate, &m_key, &error),
             qPrintable(error));
    setIdentity(QStringLiteral("t1"), QStringLiteral("u1"), QStringLiteral("p1"));
}

void tst_TFWXRSHttp::buildHeaders_data()
{
    QTest::addColumn<QString>("token");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("language");
    QTest::addColumn<RawHeaders>("expected");

    QTest::newRow("none") << "" << "" << "" << RawHeaders{};
    QTest::newRow("token only") << "t" << "" << "" << RawHeaders{{"kvt-token", "t"}};
    QTest::newRow("all three in order") << "t" << "json" << "en"
                                        << RawHeaders{{"kvt-token", "t"}, {"kvt-format", "json"},
                                                      {"kvt-language", "en"}};
    QTest::newRow("format and language without token") << "" << "json" << "en"
                                                       << RawHeaders{{"kvt-format", "json"}, {"kvt-language", "en"}};
    QTest::newRow("utf-8") << QStringLiteral("令牌") << "" << "" << RawHeaders{{"kvt-token", "\xe4\xbb\xa4\xe7\x89\x8c"}};
}

void tst_TFWXRSHttp::buildHeaders()
{
    QFETCH(QString, token);
    QFETCH(QString, format);
    QFETCH(QString, language);
    QFETCH(RawHeaders, expected);
    QCOMPARE(TFWXRSHttp::buildHeaders(token, format, language), expected);
}

void tst_TFWXRSHttp::postSendsBodyAndHeaders_data()
{
    QTest::addColumn<bool>("tls");
    QTest::newRow("http") << false;
    QTest::newRow("https") << true;
}

void tst_TFWXRSHttp::postSendsBodyAndHeaders()
{
    QFETCH(bool, tls);
    HttpTestServer server;
    if (tls)
        server.setTls(m_certificate, m_key);
    server.setHandler([](const RecordedRequest &) {
        CannedReply reply;
        reply.body = HttpTestServer::envelope(QJsonArray{1, 2});
        return reply;
    });
    QVERIFY(server.start());

    const QByteArray body = R"({"auth":{"prodId":"p1","userId":"u1"},"objId":38})";
    const auto result = TFWXRSHttp::post(QUrl(server.baseUrl().toString() + "/bas/ds/data"), body,
                                         TFWXRSHttp::buildHeaders("t1", "", ""));
    QVERIFY2(result.ok, result.data.constData());
    QCOMPARE(result.data, HttpTestServer::envelope(QJsonArray{1, 2}));

    QCOMPARE(server.requestCount(), 1);
    const RecordedRequest request = server.requests().first();
    QCOMPARE(request.method, QByteArray("POST"));
    QCOMPARE(request.target, QByteArray("/bas/ds/data"));
    QCOMPARE(request.body, body);
    QCOMPARE(request.header("Content-Type"), QByteArray("application/json"));
    QCOMPARE(request.header("kvt-token"), QByteArray("t1"));
    QCOMPARE(request.header("userId"), QByteArray("u1"));
    QCOMPARE(request.header("prodId"), QByteArray("p1"));
    QVERIFY(!request.hasHeader("kvt-format"));
    QVERIFY(!request.hasHeader("kvt-language"));
}

void tst_TFWXRSHttp::httpsWithUntrustedCertificate()
{
    // The certificate is self-signed and names no trusted issuer.
    HttpTestServer server;
    server.setTls(m_certificate, m_key);
    QVERIFY(server.start());
    const auto result = TFWXRSHttp::post(server.baseUrl(), "{}", {});
    QVERIFY2(result.ok, result.data.constData());
    QCOMPARE(result.data, HttpTestServer::envelope(QJsonValue()));
}

void tst_TFWXRSHttp::redirectToLessSafeSchemeNotFollowed()
{
    HttpTestServer plain;
    QVERIFY(plain.start());
    HttpTestServer secure;
    secure.setTls(m_certificate, m_key);
    const QByteArray location = plain.baseUrl().toString().toUtf8() + "/bas/ds/data";
    secure.setHandler([location](const RecordedRequest &) {
        CannedReply reply;
        reply.status = 302;
        reply.reason = "Found";
        reply.headers = {{"Location", location}};
        reply.body = "moved";
        return reply;
    });
    QVERIFY(secure.start());

    // The network layer refuses the step down to plain http and reports
    // it as an error of the reply: the request ends there, as a failure.
    QTest::ignoreMessage(QtDebugMsg, "download error: \"Insecure redirect\"");
    const auto result = TFWXRSHttp::post(QUrl(secure.baseUrl().toString() + "/bas/ds/data"), "{}", {});
    QVERIFY(!result.ok);
    QCOMPARE(result.data, QByteArray("Insecure redirect"));
    QCOMPARE(secure.requestCount(), 1);
    // The post is over: a followed redirect would have reached the plain server by now.
    QCOMPARE(plain.requestCount(), 0);
}

void tst_TFWXRSHttp::serverErrorIsAFailureWithItsText()
{
    HttpTestServer server;
    server.setHandler([](const RecordedRequest &) {
        CannedReply reply;
        reply.status = 500;
        reply.reason = "Internal Server Error";
        reply.body = "the body of the error page";
        return reply;
    });
    QVERIFY(server.start());
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression("^download error: .*Internal Server Error"));
    const auto result = TFWXRSHttp::post(server.baseUrl(), "{}", {});
    QVERIFY(!result.ok);
    QVERIFY2(result.data.contains("Internal Server Error"), result.data.constData());
    QVERIFY(!result.data.contains("the body of the error page"));
    QVERIFY(!result.cookies.isValid());
}

void tst_TFWXRSHttp::refusedConnectionIsAFailure()
{
    quint16 port;
    {
        HttpTestServer closed;
        QVERIFY(closed.start());
        port = closed.baseUrl().port();
    }
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression("^download error: .*refused"));
    const auto result = TFWXRSHttp::post(QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(port)), "{}", {});
    QVERIFY(!result.ok);
    QVERIFY(result.data.contains("refused"));
}

void tst_TFWXRSHttp::workThreadDeliversOnReceiverThread()
{
    HttpTestServer server;
    QVERIFY(server.start());
    QObject receiver;
    auto delivery = std::make_shared<Delivery>();
    startRequest(content(server.baseUrl(), "{\"a\":1}"),
                 [delivery](bool isOk, const QByteArray &data) {
                     ++delivery->calls;
                     delivery->isOk = isOk;
                     delivery->data = data;
                     delivery->thread = QThread::currentThread();
                 },
                 &receiver);
    QTRY_COMPARE_WITH_TIMEOUT(delivery->calls.load(), 1, 10000);
    QVERIFY(delivery->isOk);
    QCOMPARE(delivery->data, HttpTestServer::envelope(QJsonValue()));
    QCOMPARE(delivery->thread, receiver.thread());
    QCOMPARE(server.requests().first().body, QByteArray("{\"a\":1}"));
    // Once the runnable is gone, a second delivery could only wait among the posted events.
    QVERIFY(QThreadPool::globalInstance()->waitForDone(10000));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(delivery->calls.load(), 1);
}

void tst_TFWXRSHttp::workThreadWithoutReceiver()
{
    HttpTestServer server;
    QVERIFY(server.start());
    auto delivery = std::make_shared<Delivery>();
    startRequest(content(server.baseUrl(), "{}"),
                 [delivery](bool isOk, const QByteArray &) {
                     ++delivery->calls;
                     delivery->isOk = isOk;
                     delivery->thread = QThread::currentThread();
                 },
                 nullptr);
    // The carrier lives on the starting thread, and takes the call there.
    QTRY_COMPARE_WITH_TIMEOUT(delivery->calls.load(), 1, 10000);
    QVERIFY(delivery->isOk);
    QCOMPARE(delivery->thread, QThread::currentThread());
}

void tst_TFWXRSHttp::emptyTokenSendsNoTokenHeader()
{
    setIdentity(QString(), QStringLiteral("u2"), QStringLiteral("p2"));
    HttpTestServer server;
    QVERIFY(server.start());
    QObject receiver;
    auto delivery = std::make_shared<Delivery>();
    startRequest(content(server.baseUrl(), "{}"), [delivery](bool, const QByteArray &) { ++delivery->calls; },
                 &receiver);
    QTRY_COMPARE_WITH_TIMEOUT(delivery->calls.load(), 1, 10000);
    setIdentity(QStringLiteral("t1"), QStringLiteral("u1"), QStringLiteral("p1"));

    const RecordedRequest request = server.requests().first();
    QVERIFY(!request.hasHeader("kvt-token"));
    QCOMPARE(request.header("userId"), QByteArray("u2"));
    QCOMPARE(request.header("prodId"), QByteArray("p2"));
}

void tst_TFWXRSHttp::dmFixesAddressAndIdentity()
{
    HttpTestServer server;
    QVERIFY(server.start());
    TFServiceConfig::instance()->setHttpUrl(QStringLiteral("servercfg.ini:Subject"), server.baseUrl());
    setIdentity(QStringLiteral("t3"), QStringLiteral("u3"), QStringLiteral("p3"));

    QObject owner;
    TFDm dm(&owner);
    QCOMPARE(dm.owner(), &owner);
    QCOMPARE(TFUc::baseUrl(), server.baseUrl().toString());
    QCOMPARE(TFUc::userId(), QStringLiteral("u3"));
    QCOMPARE(TFUc::productId(), QStringLiteral("p3"));

    auto delivery = std::make_shared<Delivery>();
    dm.start(TFUc::constantsRequest(), [delivery](bool isOk, const QByteArray &data) {
        ++delivery->calls;
        delivery->isOk = isOk;
        delivery->data = data;
    });
    QTRY_COMPARE_WITH_TIMEOUT(delivery->calls.load(), 1, 10000);
    setIdentity(QStringLiteral("t1"), QStringLiteral("u1"), QStringLiteral("p1"));
    QVERIFY(delivery->isOk);
    const RecordedRequest request = server.requests().first();
    QCOMPARE(request.target, QByteArray("/bas/ds/data"));
    QCOMPARE(request.body, QByteArray(R"({"auth":{"prodId":"p3","userId":"u3"},"objId":390})"));
    QCOMPARE(request.header("kvt-token"), QByteArray("t3"));
}

void tst_TFWXRSHttp::requestsRunSideBySide()
{
    // Each request holds its connection until all of them have arrived: this
    // only finishes when the posts run in parallel, each with its own manager.
    constexpr int kParallel = 3;
    QThreadPool::globalInstance()->setMaxThreadCount(qMax(QThreadPool::globalInstance()->maxThreadCount(), 4));
    auto arrived = std::make_shared<QSemaphore>(0);
    HttpTestServer server;
    server.setHandler([arrived](const RecordedRequest &request) {
        arrived->release();
        CannedReply reply;
        reply.body = request.body;
        return reply;
    });
    QVERIFY(server.start());

    QObject receiver;
    auto delivery = std::make_shared<Delivery>();
    QSet<QByteArray> bodies;
    auto results = std::make_shared<QSet<QByteArray>>();
    for (int i = 0; i < kParallel; ++i) {
        const QByteArray body = QByteArray::number(i);
        startRequest(content(server.baseUrl(), body),
                     [delivery, results](bool isOk, const QByteArray &data) {
                         ++delivery->calls;
                         if (isOk)
                             results->insert(data);
                     },
                     &receiver);
        bodies.insert(body);
    }
    QTRY_COMPARE_WITH_TIMEOUT(delivery->calls.load(), kParallel, 10000);
    QCOMPARE(*results, bodies);
}

void tst_TFWXRSHttp::destroyedReceiverGetsNothing()
{
    auto release = std::make_shared<QSemaphore>(0);
    HttpTestServer server;
    server.setHandler([release](const RecordedRequest &) {
        // Answer only once the test has destroyed the receiver.
        release->tryAcquire(1, 10000);
        return CannedReply{200, "OK", {}, HttpTestServer::envelope(QJsonArray{1}), false};
    });
    QVERIFY(server.start());

    auto *receiver = new QObject;
    auto delivery = std::make_shared<Delivery>();
    startRequest(content(server.baseUrl(), "{}"), [delivery](bool, const QByteArray &) { ++delivery->calls; },
                 receiver);
    QTRY_COMPARE_WITH_TIMEOUT(server.requestCount(), 1, 10000);
    delete receiver;
    release->release();

    QVERIFY(QThreadPool::globalInstance()->waitForDone(10000));
    // The runnable is gone: a delivery could only wait among the posted events.
    QCoreApplication::sendPostedEvents();
    QCOMPARE(delivery->calls.load(), 0);
}

void tst_TFWXRSHttp::quittingEndsThePoolThread()
{
    HttpTestServer server;
    server.setHandler([](const RecordedRequest &) {
        CannedReply reply;
        reply.hold = true;      // the service never answers
        return reply;
    });
    QVERIFY(server.start());

    QObject receiver;
    auto delivery = std::make_shared<Delivery>();
    startRequest(content(server.baseUrl(), "{}"),
                 [delivery](bool isOk, const QByteArray &data) {
                     ++delivery->calls;
                     delivery->isOk = isOk;
                     delivery->data = data;
                 },
                 &receiver);
    QTRY_COMPARE_WITH_TIMEOUT(server.requestCount(), 1, 10000);
    QVERIFY(QThreadPool::globalInstance()->activeThreadCount() >= 1);

    QTest::ignoreMessage(QtDebugMsg, QRegularExpression("^download error: "));
    QTimer::singleShot(100, QCoreApplication::instance(), &QCoreApplication::quit);
    QCoreApplication::exec();   // emits aboutToQuit as it returns

    QVERIFY(QThreadPool::globalInstance()->waitForDone(10000));
    QTRY_COMPARE_WITH_TIMEOUT(delivery->calls.load(), 1, 5000);
    QVERIFY(!delivery->isOk);
    QVERIFY2(delivery->data.contains("canceled"), delivery->data.constData());
}

QTEST_GUILESS_MAIN(tst_TFWXRSHttp)
#include "tst_tfwxrshttp.moc"
