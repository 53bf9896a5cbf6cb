#include "tfcore/invokerbase.h"

#include <QtTest>

// Stands for a host object whose methods a plug-in calls by name.
class Target : public QObject
{
    Q_OBJECT
public:
    QString text;
    int number = 0;
    int calls = 0;
    QVariantMap map;

public slots:
    void openStringUrl(const QString &url) { text = url; ++calls; }
    void setPair(QString label, int value) { text = label; number = value; ++calls; }
    void settingsChanged() { ++calls; }
    void takeMap(const QVariantMap &value) { map = value; ++calls; }

public:
    Q_INVOKABLE void getArgsDlg(const QString &current, QString &chosen)
    {
        chosen = current + QStringLiteral("-chosen");
        ++calls;
    }
};

class tst_InvokerBase : public QObject
{
    Q_OBJECT
private slots:
    void callsSlotWithBoundArguments();
    void callsMethodWithoutArguments();
    void referenceArgumentComesBack();
    void reportsFailure_data();
    void reportsFailure();
    void queuedCallArrivesLater();
    void mapArgument();
};

void tst_InvokerBase::callsSlotWithBoundArguments()
{
    Target target;
    InvokerBase invoker;
    invoker.arg<QString>(QStringLiteral("view://subjectpage?objvwid=5"), "QString").arg<int>(42, "int");
    QVERIFY(!invoker.invoke(&target, "openStringUrl"));   // two bound, one taken
    QCOMPARE(target.calls, 0);

    InvokerBase pair;
    pair.arg<QString>(QStringLiteral("label"), "QString").arg<int>(42, "int");
    QVERIFY(pair.invoke(&target, "setPair"));
    QCOMPARE(target.calls, 1);
    QCOMPARE(target.text, QString("label"));
    QCOMPARE(target.number, 42);

    InvokerBase url;
    url.arg<QString>(QStringLiteral("view://subjectpage?objvwid=5"), "QString");
    QVERIFY(url.invoke(&target, "openStringUrl"));
    QCOMPARE(target.text, QString("view://subjectpage?objvwid=5"));
}

void tst_InvokerBase::callsMethodWithoutArguments()
{
    Target target;
    InvokerBase invoker;
    QVERIFY(invoker.invoke(&target, "settingsChanged"));
    QCOMPARE(target.calls, 1);
}

void tst_InvokerBase::referenceArgumentComesBack()
{
    Target target;
    InvokerBase invoker;
    invoker.arg<QString>(QStringLiteral("binder"), "QString").arg<QString>(QString(), "QString");
    QVERIFY(invoker.invoke(&target, "getArgsDlg"));
    QCOMPARE(invoker.result(0).toString(), QString("binder"));
    QCOMPARE(invoker.result(1).toString(), QString("binder-chosen"));
    QVERIFY(!invoker.result(2).isValid());
}

void tst_InvokerBase::reportsFailure_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<QByteArrayList>("types");
    QTest::newRow("unknown method") << QByteArray("noSuchMethod") << QVariantList() << QByteArrayList();
    QTest::newRow("too few arguments") << QByteArray("setPair") << QVariantList{QString("x")}
                                       << QByteArrayList{"QString"};
    QTest::newRow("types swapped") << QByteArray("setPair") << QVariantList{7, QString("x")}
                                   << QByteArrayList{"int", "QString"};
    QTest::newRow("type name and value differ") << QByteArray("openStringUrl") << QVariantList{QVariantMap()}
                                                << QByteArrayList{"QString"};
}

void tst_InvokerBase::reportsFailure()
{
    QFETCH(QByteArray, method);
    QFETCH(QVariantList, values);
    QFETCH(QByteArrayList, types);
    Target target;
    InvokerBase invoker;
    for (int i = 0; i < values.size(); ++i) {
        if (values.at(i).userType() == QMetaType::QString)
            invoker.arg<QString>(values.at(i).toString(), types.at(i).constData());
        else if (values.at(i).userType() == QMetaType::Int)
            invoker.arg<int>(values.at(i).toInt(), types.at(i).constData());
        else
            invoker.arg<QVariantMap>(values.at(i).toMap(), types.at(i).constData());
    }
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^(no method|invoke: argument)"));
    QVERIFY(!invoker.invoke(&target, method.constData()));
    QCOMPARE(target.calls, 0);

    InvokerBase nobody;
    QTest::ignoreMessage(QtWarningMsg, "invoke without object or method");
    QVERIFY(!nobody.invoke(nullptr, "settingsChanged"));
}

void tst_InvokerBase::queuedCallArrivesLater()
{
    Target target;
    InvokerBase invoker;
    invoker.arg<QString>(QStringLiteral("later"), "QString");
    QVERIFY(invoker.invoke(&target, "openStringUrl", Qt::QueuedConnection));
    QCOMPARE(target.calls, 0);
    QTRY_COMPARE(target.calls, 1);
    QCOMPARE(target.text, QString("later"));
}

void tst_InvokerBase::mapArgument()
{
    Target target;
    InvokerBase invoker;
    const QVariantMap map{{"objVwId", 260}, {"title", QString::fromUtf8("股票")}};
    invoker.arg<QVariantMap>(map, "QVariantMap");
    QVERIFY(invoker.invoke(&target, "takeMap"));
    QCOMPARE(target.map, map);
}

QTEST_GUILESS_MAIN(tst_InvokerBase)
#include "tst_invokerbase.moc"
