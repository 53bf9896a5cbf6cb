#include "net/tfjsp.h"

#include <QtTest>

class tst_TFJSP : public QObject
{
    Q_OBJECT
private slots:
    void parseResponse_data();
    void parseResponse();
    void parseNavTree_data();
    void parseNavTree();
};

void tst_TFJSP::parseResponse_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("log");        // the expected log line: "" for none, a pattern otherwise
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("msg");
    QTest::addColumn<QByteArray>("data");    // compact JSON of data wrapped in an array

    QTest::newRow("empty object") << "{}" << false << "^can't found the key: \"state\"$" << 0 << "" << QByteArray();
    QTest::newRow("array at the top fails the key check, not the parser")
        << "[1,2]" << false << "^can't found the key: \"state\"$" << 0 << "" << QByteArray();
    QTest::newRow("keys compared with case") << R"({"State":1,"msg":"","extend":null,"data":[]})" << false
                                             << "^can't found the key: \"state\"$" << 0 << "" << QByteArray();
    QTest::newRow("missing data") << R"({"state":1,"msg":"","extend":null})" << false
                                  << "^can't found the key: \"data\"$" << 0 << "" << QByteArray();
    QTest::newRow("missing extend is named before data") << R"({"state":1,"msg":""})" << false
                                                         << "^can't found the key: \"extend\"$" << 0 << ""
                                                         << QByteArray();
    QTest::newRow("not JSON") << "state=1" << false << "^respone is not json obj: \"illegal value\"$" << 0 << ""
                              << QByteArray();
    QTest::newRow("trailing garbage") << R"({"state":1,"msg":"","extend":null,"data":[]} x)" << false
                                      << "^respone is not json obj: " << 0 << "" << QByteArray();
    QTest::newRow("well formed, empty data") << R"({"state":1,"msg":"x","extend":null,"data":[]})" << true << ""
                                             << 1 << "x" << QByteArray("[[]]");
    QTest::newRow("all values null") << R"({"state":null,"msg":null,"extend":null,"data":null})" << true << "" << 0
                                     << "" << QByteArray("[null]");
    QTest::newRow("state as a string is 0") << R"({"state":"1","msg":"","extend":null,"data":[1]})" << true << ""
                                            << 0 << "" << QByteArray("[[1]]");
    QTest::newRow("an error state still passes") << R"({"state":-500,"msg":"服务错误","extend":null,"data":""})"
                                                 << true << "" << -500 << QStringLiteral("服务错误")
                                                 << QByteArray(R"([""])");
    QTest::newRow("extra keys are ignored") << R"({"a":1,"state":2,"msg":"","extend":{"n":2},"data":[{"K":1}]})"
                                            << true << "" << 2 << "" << QByteArray(R"([[{"K":1}]])");
}

void tst_TFJSP::parseResponse()
{
    QFETCH(QString, json);
    QFETCH(bool, ok);
    QFETCH(QString, log);
    QFETCH(int, state);
    QFETCH(QString, msg);
    QFETCH(QByteArray, data);

    if (!log.isEmpty()) {
        const QtMsgType type = log.contains(QLatin1String("respone")) ? QtWarningMsg : QtDebugMsg;
        QTest::ignoreMessage(type, QRegularExpression(log));
    }
    // A failure leaves the record as it was; a success fills it whole.
    NtResponse response;
    response.state = 7;
    response.msg = QStringLiteral("before");
    QCOMPARE(TFJSP::parseResponse(json, response), ok);
    QCOMPARE(response.state, ok ? state : 7);
    QCOMPARE(response.msg, ok ? msg : QStringLiteral("before"));
    if (!ok)
        return;
    QCOMPARE(QJsonDocument(QJsonArray{response.data}).toJson(QJsonDocument::Compact), data);
    QCOMPARE(response.extend, QJsonDocument::fromJson(json.toUtf8()).object().value("extend"));
    QCOMPARE(response.spare, 0);
}

void tst_TFJSP::parseNavTree_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<int>("rows");

    QTest::newRow("rows") << R"({"state":1,"msg":"","extend":null,"data":[{"NODE_CODE":1},{"NODE_CODE":2}]})" << true << 2;
    QTest::newRow("empty data") << R"({"state":1,"msg":"x","extend":null,"data":[]})" << false << 0;
    QTest::newRow("data an object") << R"({"state":1,"msg":"","extend":null,"data":{"a":1}})" << false << 0;
    QTest::newRow("data null") << R"({"state":1,"msg":"","extend":null,"data":null})" << false << 0;
    QTest::newRow("bad envelope") << R"({"state":1})" << false << 0;
}

void tst_TFJSP::parseNavTree()
{
    QFETCH(QString, json);
    QFETCH(bool, ok);
    QFETCH(int, rows);
    if (QByteArray(QTest::currentDataTag()) == "bad envelope")
        QTest::ignoreMessage(QtDebugMsg, "can't found the key: \"msg\"");
    else if (!ok)
        QTest::ignoreMessage(QtDebugMsg, "parseSubjectTree:array is empty");
    QJsonArray out;
    QCOMPARE(TFJSP::parseNavTree(json, out), ok);
    QCOMPARE(out.size(), rows);
}

QTEST_GUILESS_MAIN(tst_TFJSP)
#include "tst_tfjsp.moc"
