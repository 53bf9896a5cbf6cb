#include "tfcore/invokerbase.h"

#include <QtTest>

// Stands for a host object whose methods a plug-in calls by name; "seen"
// tells what arrived and how often.
class Target : public QObject
{
    Q_OBJECT
public:
    QString seen;
    int calls = 0;

public slots:
    void openStringUrl(const QString &url) { record(url); }
    void setPair(QString label, int value) { record(label + '/' + QString::number(value)); }
    void settingsChanged() { record(QString()); }
    void takeMap(const QVariantMap &value) { record(QJsonDocument(QJsonObject::fromVariantMap(value)).toJson(QJsonDocument::Compact)); }

public:
    Q_INVOKABLE void getArgsDlg(const QString &current, QString &chosen)
    {
        chosen = current + QStringLiteral("-chosen");
        record(current);
    }

private:
    void record(const QString &what) { seen = what; ++calls; }
};

class tst_InvokerBase : public QObject
{
    Q_OBJECT
private slots:
    void invoke_data();
    void invoke();
    void withoutObject();
};

void tst_InvokerBase::invoke_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QVariantList>("values");     // bound with the type names below
    QTest::addColumn<QByteArrayList>("types");
    QTest::addColumn<bool>("queued");
    QTest::addColumn<QString>("warning");         // a pattern, or none
    QTest::addColumn<QString>("seen");            // null: never called
    QTest::addColumn<QVariantList>("results");    // result(0), result(1), ...

    const QString url = QStringLiteral("view://subjectpage?objvwid=5");
    const QVariantMap map{{"objVwId", 260}, {"title", QString::fromUtf8("股票")}};
    const QString refused = QStringLiteral("^(no method|invoke: argument)");
    QTest::newRow("one argument") << QByteArray("openStringUrl") << QVariantList{url} << QByteArrayList{"QString"}
                                  << false << QString() << url << QVariantList{url};
    QTest::newRow("two arguments") << QByteArray("setPair") << QVariantList{"label", 42}
                                   << QByteArrayList{"QString", "int"} << false << QString() << "label/42"
                                   << QVariantList{"label", 42};
    QTest::newRow("no arguments") << QByteArray("settingsChanged") << QVariantList() << QByteArrayList() << false
                                  << QString() << "" << QVariantList();
    QTest::newRow("map") << QByteArray("takeMap") << QVariantList{map} << QByteArrayList{"QVariantMap"} << false
                         << QString() << QString::fromUtf8(R"({"objVwId":260,"title":"股票"})") << QVariantList{map};
    // A QString bound by reference comes back with what the method wrote.
    QTest::newRow("reference comes back") << QByteArray("getArgsDlg") << QVariantList{"binder", ""}
                                          << QByteArrayList{"QString", "QString"} << false << QString() << "binder"
                                          << QVariantList{"binder", "binder-chosen", QVariant()};
    QTest::newRow("queued call arrives later") << QByteArray("openStringUrl") << QVariantList{"later"}
                                               << QByteArrayList{"QString"} << true << QString() << "later"
                                               << QVariantList();
    QTest::newRow("more bound than taken") << QByteArray("openStringUrl") << QVariantList{url, 42}
                                           << QByteArrayList{"QString", "int"} << false << QString() << QString()
                                           << QVariantList();
    QTest::newRow("unknown method") << QByteArray("noSuchMethod") << QVariantList() << QByteArrayList() << false
                                    << refused << QString() << QVariantList();
    QTest::newRow("too few arguments") << QByteArray("setPair") << QVariantList{"x"} << QByteArrayList{"QString"}
                                       << false << refused << QString() << QVariantList();
    QTest::newRow("types swapped") << QByteArray("setPair") << QVariantList{7, "x"} << QByteArrayList{"int", "QString"}
                                   << false << refused << QString() << QVariantList();
    QTest::newRow("type name and value differ") << QByteArray("openStringUrl") << QVariantList{map}
                                                << QByteArrayList{"QString"} << false << refused << QString()
                                                << QVariantList();
}

void tst_InvokerBase::invoke()
{
    QFETCH(QByteArray, method);
    QFETCH(QVariantList, values);
    QFETCH(QByteArrayList, types);
    QFETCH(bool, queued);
    QFETCH(QString, warning);
    QFETCH(QString, seen);
    QFETCH(QVariantList, results);

    InvokerBase invoker;
    for (int i = 0; i < values.size(); ++i) {
        const QVariant &value = values.at(i);
        if (value.userType() == QMetaType::Int)
            invoker.arg<int>(value.toInt(), types.at(i).constData());
        else if (value.userType() == QMetaType::QVariantMap)
            invoker.arg<QVariantMap>(value.toMap(), types.at(i).constData());
        else
            invoker.arg<QString>(value.toString(), types.at(i).constData());
    }
    if (!warning.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(warning));
    Target target;
    QCOMPARE(invoker.invoke(&target, method.constData(), queued ? Qt::QueuedConnection : Qt::DirectConnection),
             !seen.isNull());
    if (queued) {
        QCOMPARE(target.calls, 0);
        QTRY_COMPARE(target.calls, 1);
    }
    QCOMPARE(target.calls, seen.isNull() ? 0 : 1);
    QCOMPARE(target.seen, seen.isNull() ? QString() : seen);
    for (int i = 0; i < results.size(); ++i)
        QCOMPARE(invoker.result(i), results.at(i));
}

void tst_InvokerBase::withoutObject()
{
    InvokerBase invoker;
    QTest::ignoreMessage(QtWarningMsg, "invoke without object or method");
    QVERIFY(!invoker.invoke(nullptr, "settingsChanged"));
}

QTEST_GUILESS_MAIN(tst_InvokerBase)
#include "tst_invokerbase.moc"
