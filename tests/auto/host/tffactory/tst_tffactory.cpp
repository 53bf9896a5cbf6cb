#include "tfcore/tffactory.h"

#include <QFrame>
#include <QLabel>
#include <QtTest>

// Registered before main(), the way a plug-in's static initialiser does it.
static const bool registeredEarly = [] {
    TFFactory<QWidget>::constructors().insert("EarlyFrame", [](QWidget *parent) { return new QFrame(parent); });
    return true;
}();

class tst_TFFactory : public QObject
{
    Q_OBJECT
private slots:
    void constructors_data();
    void constructors();
};

void tst_TFFactory::constructors_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("made");     // the class made; empty: none is registered
    QTest::newRow("registered before main") << QByteArray("EarlyFrame") << QByteArray("QFrame");
    QTest::newRow("a later registration replaces") << QByteArray("Swap") << QByteArray("QLabel");
    QTest::newRow("unknown name") << QByteArray("TFNoSuchComponent") << QByteArray();
}

void tst_TFFactory::constructors()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, made);
    QVERIFY(registeredEarly);
    auto &constructors = TFFactory<QWidget>::constructors();
    constructors.insert("Swap", [](QWidget *parent) { return new QFrame(parent); });
    constructors.insert("Swap", [](QWidget *parent) { return new QLabel(parent); });
    QCOMPARE(constructors.count("Swap"), 1);
    const auto constructor = constructors.value(name);
    QCOMPARE(bool(constructor), !made.isEmpty());
    if (!constructor)
        return;
    QWidget screen;
    QWidget *component = constructor(&screen);
    QCOMPARE(component->parent(), &screen);
    QCOMPARE(QByteArray(component->metaObject()->className()), made);
}

QTEST_MAIN(tst_TFFactory)
#include "tst_tffactory.moc"
