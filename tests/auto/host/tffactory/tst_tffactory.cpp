#include "tfcore/tffactory.h"

#include <QFrame>
#include <QLabel>
#include <QtTest>

namespace {

// Registered before main(), the way a plug-in's static initialiser does it.
const bool registeredEarly = [] {
    TFFactory<QWidget>::constructors().insert("EarlyFrame", [](QWidget *parent) {
        auto *frame = new QFrame(parent);
        frame->setObjectName(QStringLiteral("early"));
        return frame;
    });
    return true;
}();

} // namespace

class tst_TFFactory : public QObject
{
    Q_OBJECT
private slots:
    void registrationBeforeMainIsKept();
    void buildsByNameWithParent();
    void unknownNameIsAbsent();
    void laterRegistrationReplaces();
};

void tst_TFFactory::registrationBeforeMainIsKept()
{
    QVERIFY(registeredEarly);
    QVERIFY(TFFactory<QWidget>::constructors().contains("EarlyFrame"));
    QScopedPointer<QWidget> made(TFFactory<QWidget>::constructors().value("EarlyFrame")(nullptr));
    QCOMPARE(made->objectName(), QString("early"));
}

void tst_TFFactory::buildsByNameWithParent()
{
    TFFactory<QWidget>::constructors().insert("Caption", [](QWidget *parent) { return new QLabel("caption", parent); });
    QWidget screen;
    const auto constructor = TFFactory<QWidget>::constructors().value("Caption");
    QVERIFY(constructor);
    QWidget *component = constructor(&screen);
    QCOMPARE(component->parent(), &screen);
    QVERIFY(qobject_cast<QLabel *>(component));
    QCOMPARE(qobject_cast<QLabel *>(component)->text(), QString("caption"));
}

void tst_TFFactory::unknownNameIsAbsent()
{
    QVERIFY(!TFFactory<QWidget>::constructors().contains("TFNoSuchComponent"));
    QVERIFY(!TFFactory<QWidget>::constructors().value("TFNoSuchComponent"));
}

void tst_TFFactory::laterRegistrationReplaces()
{
    auto &constructors = TFFactory<QWidget>::constructors();
    constructors.insert("Swap", [](QWidget *parent) { return new QFrame(parent); });
    constructors.insert("Swap", [](QWidget *parent) { return new QLabel(parent); });
    QCOMPARE(constructors.count("Swap"), 1);
    QScopedPointer<QWidget> made(constructors.value("Swap")(nullptr));
    QVERIFY(qobject_cast<QLabel *>(made.data()));
}

QTEST_MAIN(tst_TFFactory)
#include "tst_tffactory.moc"
