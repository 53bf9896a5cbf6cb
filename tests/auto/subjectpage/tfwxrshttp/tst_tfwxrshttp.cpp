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

enum class Peer { Answers, Fails500, Refuses, RedirectsToPlain };
enum class Receiver { Alive, None, DestroyedFirst };

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

// Starts a request the way a view does, with a functor that records the delivery.
std::shared_ptr<Delivery> start(const QUrl &url, const QByteArray &body, QObject *receiver)
{
    auto delivery = std::make_shared<Delivery>();
    TFUc::TFRequestContent content;
    content.url = url;
    content.body = body;
    auto functor = [delivery](bool isOk, const QByteArray &data) {
        ++delivery->calls;
        delivery->isOk = isOk;
        delivery->data = data;
        delivery->thread = QThread::currentThread();
    };
    auto *runnable = new TFWorkThread<decltype(functor)>(content, functor, receiver);
    runnable->setAutoDelete(true);
    QThreadPool::globalInstance()->start(runnable, 0);
    return delivery;
}

} // namespace

Q_DECLARE_METATYPE(Peer)
Q_DECLARE_METATYPE(Receiver)

class tst_TFWXRSHttp : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();
    void buildHeaders_data();
    void buildHeaders();
    void post_data();
    void post();
    void delivery_data();
    void delivery();
    void dmFixesAddressAndIdentity();
    void requestsRunSideBySide();
    // Quits the application: keep it last.
    void quittingEndsThePoolThread();

private:
    QTemporaryDir m_dir;
    QSslCertificate m_certificate;
    QSslKey m_key;
    int m_poolSize = 0;
};

void tst_TFWXRSHttp::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QString error;
    QVERIFY2(HttpTestServer::makeSelfSignedCertificate(m_dir.path(), &m_certificate, &m_key, &error),
             qPrintable(error));
    m_poolSize = QThreadPool::globalInstance()->maxThreadCount();
    cleanup();
}

void tst_TFWXRSHttp::cleanup()
{
    setIdentity(QStringLiteral("t1"), QStringLiteral("u1"), QStringLiteral("p1"));
    QThreadPool::globalInstance()->setMaxThreadCount(m_poolSize);
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
                                        << RawHeaders{{"kvt-token", "t"}, {"kvt-format", "json"}, {"kvt-language", "en"}};
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

void tst_TFWXRSHttp::post_data()
{
    QTest::addColumn<Peer>("peer");
    QTest::addColumn<bool>("tls");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QByteArray>("data");     // the body, or a part of the error text

    const QByteArray answer = HttpTestServer::envelope(QJsonArray{1, 2});
    QTest::newRow("http") << Peer::Answers << false << true << answer;
    // The certificate is self-signed and names no trusted issuer.
    QTest::newRow("https, untrusted certificate") << Peer::Answers << true << true << answer;
    QTest::newRow("HTTP 500: its text, not its body") << Peer::Fails500 << false << false << QByteArray("Internal Server Error");
    QTest::newRow("connection refused") << Peer::Refuses << false << false << QByteArray("refused");
    // The network layer refuses the step down to plain http and reports it
    // as an error of the reply: the request ends there, as a failure.
    QTest::newRow("https redirected to http") << Peer::RedirectsToPlain << true << false << QByteArray("Insecure redirect");
}

void tst_TFWXRSHttp::post()
{
    QFETCH(Peer, peer);
    QFETCH(bool, tls);
    QFETCH(bool, ok);
    QFETCH(QByteArray, data);

    HttpTestServer plain;   // where a redirect points
    QVERIFY(plain.start());
    const QByteArray location = plain.baseUrl().toString().toUtf8() + "/bas/ds/data";
    HttpTestServer server;
    if (tls)
        server.setTls(m_certificate, m_key);
    server.setHandler([peer, location](const RecordedRequest &) {
        return peer == Peer::Fails500           ? CannedReply{500, "Internal Server Error", {}, "the body of the error page"}
               : peer == Peer::RedirectsToPlain ? CannedReply{302, "Found", {{"Location", location}}, "moved"}
                                                : CannedReply{200, "OK", {}, HttpTestServer::envelope(QJsonArray{1, 2})};
    });
    QVERIFY(server.start());
    QUrl url(server.baseUrl().toString() + "/bas/ds/data");
    if (peer == Peer::Refuses) {
        HttpTestServer closed;
        QVERIFY(closed.start());
        url.setPort(closed.baseUrl().port());
    }

    if (!ok)
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression("^download error: .*" + QRegularExpression::escape(data)));
    const QByteArray body = R"({"auth":{"prodId":"p1","userId":"u1"},"objId":38})";
    const auto result = TFWXRSHttp::post(url, body, TFWXRSHttp::buildHeaders("t1", "", ""));
    QCOMPARE(result.ok, ok);
    QVERIFY2(ok ? result.data == data : result.data.contains(data) && !result.data.contains("the body"), result.data.constData());
    QVERIFY(ok || !result.cookies.isValid());
    // The post is over: a followed redirect would have reached the plain server by now.
    QCOMPARE(plain.requestCount(), 0);
    QCOMPARE(server.requestCount(), peer == Peer::Refuses ? 0 : 1);
    if (peer != Peer::Answers)
        return;
    const RecordedRequest request = server.requests().first();
    QCOMPARE(request.method + ' ' + request.target + ' ' + request.body, "POST /bas/ds/data " + body);
    QCOMPARE(request.header("Content-Type") + ' ' + request.header("kvt-token"), QByteArray("application/json t1"));
    QVERIFY(!request.hasHeader("kvt-format") && !request.hasHeader("kvt-language"));
}

void tst_TFWXRSHttp::delivery_data()
{
    QTest::addColumn<Receiver>("receiver");
    QTest::addColumn<QString>("token");
    QTest::newRow("to the receiver") << Receiver::Alive << "t2";
    // The carrier lives on the starting thread, and takes the call there.
    QTest::newRow("without a receiver, no token") << Receiver::None << "";
    QTest::newRow("to a receiver destroyed meanwhile") << Receiver::DestroyedFirst << "t2";
}

// One request through a work thread: the result comes once, on the
// receiver's thread, or not at all when the receiver is gone.
void tst_TFWXRSHttp::delivery()
{
    QFETCH(Receiver, receiver);
    QFETCH(QString, token);
    setIdentity(token, QStringLiteral("u2"), QStringLiteral("p2"));
    // The server answers only once the test has destroyed the receiver.
    auto release = std::make_shared<QSemaphore>(receiver == Receiver::DestroyedFirst ? 0 : 1);
    HttpTestServer server;
    server.setHandler([release](const RecordedRequest &) {
        release->tryAcquire(1, 10000);
        return CannedReply{200, "OK", {}, HttpTestServer::envelope(QJsonArray{1})};
    });
    QVERIFY(server.start());

    auto owner = std::make_unique<QObject>();
    auto delivery = start(server.baseUrl(), "{\"a\":1}", receiver == Receiver::None ? nullptr : owner.get());
    QTRY_COMPARE_WITH_TIMEOUT(server.requestCount(), 1, 10000);
    const int expected = receiver == Receiver::DestroyedFirst ? 0 : 1;
    if (!expected) {
        owner.reset();
        release->release();
    }
    QTRY_COMPARE_WITH_TIMEOUT(delivery->calls.load(), expected, 10000);
    // Once the runnable is gone, a further delivery could only wait among the posted events.
    QVERIFY(QThreadPool::globalInstance()->waitForDone(10000));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(delivery->calls.load(), expected);
    QVERIFY(!expected || (delivery->isOk && delivery->data == HttpTestServer::envelope(QJsonArray{1})));
    QCOMPARE(delivery->thread, expected ? QThread::currentThread() : nullptr);
    const RecordedRequest request = server.requests().first();
    QCOMPARE(request.hasHeader("kvt-token"), !token.isEmpty());
    QCOMPARE(request.body + ' ' + request.header("kvt-token") + request.header("userId") + request.header("prodId"),
             "{\"a\":1} " + token.toUtf8() + "u2p2");
}

// A view's TFDm points the requests at the configured service, as the current user.
void tst_TFWXRSHttp::dmFixesAddressAndIdentity()
{
    HttpTestServer server;
    QVERIFY(server.start());
    TFServiceConfig::instance()->setHttpUrl(QStringLiteral("servercfg.ini:Subject"), server.baseUrl());
    setIdentity(QStringLiteral("t3"), QStringLiteral("u3"), QStringLiteral("p3"));
    QObject owner;
    TFDm dm(&owner);
    QCOMPARE(dm.owner(), &owner);
    QCOMPARE(TFUc::baseUrl() + TFUc::userId() + TFUc::productId(), server.baseUrl().toString() + "u3p3");
    std::atomic<int> calls{0};
    dm.start(TFUc::constantsRequest(), [&calls](bool isOk, const QByteArray &) { calls += isOk ? 1 : 100; });
    QTRY_COMPARE_WITH_TIMEOUT(calls.load(), 1, 10000);
    const RecordedRequest request = server.requests().first();
    QCOMPARE(request.target + ' ' + request.header("kvt-token") + ' ' + request.header("userId"), QByteArray("/bas/ds/data t3 u3"));
}

void tst_TFWXRSHttp::requestsRunSideBySide()
{
    // The server answers none of them: all arrive only when the posts run in
    // parallel, each with its own manager. Closing the server ends them all.
    constexpr int kParallel = 3;
    QThreadPool::globalInstance()->setMaxThreadCount(qMax(m_poolSize, kParallel + 1));
    auto server = std::make_unique<HttpTestServer>();
    server->setHandler([](const RecordedRequest &) { return CannedReply{200, "OK", {}, {}, true}; });   // held
    QVERIFY(server->start());

    QObject receiver;
    QList<std::shared_ptr<Delivery>> deliveries;
    for (int i = 0; i < kParallel; ++i)
        deliveries << start(server->baseUrl(), QByteArray::number(i), &receiver);
    QTRY_COMPARE_WITH_TIMEOUT(server->requestCount(), kParallel, 10000);
    for (int i = 0; i < kParallel; ++i)
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression("^download error: "));
    server.reset();
    for (const auto &delivery : qAsConst(deliveries)) {
        QTRY_COMPARE_WITH_TIMEOUT(delivery->calls.load(), 1, 10000);
        QVERIFY(!delivery->isOk);
    }
}

void tst_TFWXRSHttp::quittingEndsThePoolThread()
{
    HttpTestServer server;   // never answers
    server.setHandler([](const RecordedRequest &) { return CannedReply{200, "OK", {}, {}, true}; });
    QVERIFY(server.start());
    QObject receiver;
    auto delivery = start(server.baseUrl(), "{}", &receiver);
    QTRY_COMPARE_WITH_TIMEOUT(server.requestCount(), 1, 10000);
    QVERIFY(QThreadPool::globalInstance()->activeThreadCount() >= 1);

    QTest::ignoreMessage(QtDebugMsg, QRegularExpression("^download error: "));
    QTimer::singleShot(100, QCoreApplication::instance(), &QCoreApplication::quit);
    QCoreApplication::exec();   // emits aboutToQuit as it returns

    QVERIFY(QThreadPool::globalInstance()->waitForDone(10000));
    QTRY_COMPARE_WITH_TIMEOUT(delivery->calls.load(), 1, 5000);
    QVERIFY2(!delivery->isOk && delivery->data.contains("canceled"), delivery->data.constData());
}

QTEST_GUILESS_MAIN(tst_TFWXRSHttp)
#include "tst_tfwxrshttp.moc"
