#include "compositescreen.h"

#include "tfcore/invokerbase.h"
#include "tfcore/itfmemory.h"
#include "tfcore/tffactory.h"

#include <QFrame>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

// A component as a plug-in would register it: it finds the screen through its
// parent's "zhpObj", follows the global arguments and keeps a state.
class NoteComponent : public QFrame, public ITFMemory
{
    Q_OBJECT
public:
    explicit NoteComponent(QWidget *parent)
        : QFrame(parent)
    {
        if (parent)
            screen = parent->property("zhpObj").value<QObject *>();
        if (screen)
            connect(screen, SIGNAL(argsChanged(QVariantMap)), this, SLOT(slotsArgsChanged(QVariantMap)));
    }

    void save(QMap<QString, QVariant> &state) override
    {
        state.insert("version", "1.0.0");
        state.insert("note", note);
    }
    void restore(const QMap<QString, QVariant> &state) override
    {
        restored = state;
        note = state.value("note").toString();
    }

    QObject *screen = nullptr;
    QString note;
    QMap<QString, QVariant> restored;
    QList<QVariantMap> seenArgs;

public slots:
    void slotsArgsChanged(const QVariantMap &args) { seenArgs.append(args); }
};

class tst_CompositeScreen : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void buildsComponentsByName();
    void globalArgumentsReachComponents();
    void bindingDialogAnswersThroughTheInvoker();
    void settingsChangedSavesTheStates();
    void badDocuments_data();
    void badDocuments();
    void unknownClassLeavesANoteAndIsKept();
    void argumentBarSetsAndAddsArguments();

private:
    QString writeScreen(const QString &name, const QByteArray &json);
    QTemporaryDir m_dir;
};

QString tst_CompositeScreen::writeScreen(const QString &name, const QByteArray &json)
{
    QFile file(m_dir.filePath(name));
    if (!file.open(QIODevice::WriteOnly))
        return QString();
    file.write(json);
    return file.fileName();
}

void tst_CompositeScreen::initTestCase()
{
    QVERIFY(m_dir.isValid());
    TFFactory<QWidget>::constructors().insert("NoteComponent", [](QWidget *parent) { return new NoteComponent(parent); });
}

void tst_CompositeScreen::buildsComponentsByName()
{
    const QString file = writeScreen("two.json", R"({"title": "Desk", "args": {"secu": "600000"},
        "components": [{"class": "NoteComponent", "state": {"version": "1.0.0", "note": "first", "objVwId": 260}},
                       {"class": "NoteComponent"}]})");
    CompositeScreen screen;
    QString error;
    QVERIFY2(screen.load(file, &error), qPrintable(error));
    QCOMPARE(screen.title(), QString("Desk"));
    QCOMPARE(screen.components().size(), 2);
    auto *first = qobject_cast<NoteComponent *>(screen.components().at(0));
    auto *second = qobject_cast<NoteComponent *>(screen.components().at(1));
    QVERIFY(first && second);
    QCOMPARE(first->screen, screen.screenObject());
    QCOMPARE(first->note, QString("first"));
    QCOMPARE(first->restored.value("objVwId").toLongLong(), 260);
    QVERIFY(second->restored.isEmpty());   // no state: restore is not called
    QCOMPARE(screen.screenObject()->property("args").toMap().value("secu").toString(), QString("600000"));
}

void tst_CompositeScreen::globalArgumentsReachComponents()
{
    CompositeScreen screen;
    QString error;
    QVERIFY(screen.loadDocument(QJsonDocument::fromJson(R"({"components": [{"class": "NoteComponent"}]})").object(), &error));
    auto *component = qobject_cast<NoteComponent *>(screen.components().at(0));
    QSignalSpy spy(screen.screenObject(), &ScreenObject::argsChanged);
    screen.screenObject()->setArg("objVwId", QString::fromUtf8("股票|260"));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(component->seenArgs.size(), 1);
    QCOMPARE(component->seenArgs.at(0).value("objVwId").toString(), QString::fromUtf8("股票|260"));
    screen.screenObject()->setArg("objVwId", QString::fromUtf8("股票|260"));   // the same again
    QCOMPARE(spy.count(), 1);
}

// A component binds a view to a global argument by calling getArgsDlg by
// name with two QString arguments, the second coming back.
void tst_CompositeScreen::bindingDialogAnswersThroughTheInvoker()
{
    ScreenObject screen;
    screen.setArgs({{"a", 1}, {"objVwId", "x|1"}});
    QStringList offered;
    screen.setArgumentChooser([&offered](const QStringList &names, const QString &current) {
        offered = names;
        return current == "a" ? QString("objVwId") : QString();
    });
    InvokerBase invoker;
    invoker.arg<QString>(QStringLiteral("a"), "QString").arg<QString>(QString(), "QString");
    QVERIFY(invoker.invoke(&screen, "getArgsDlg"));
    QCOMPARE(invoker.result(1).toString(), QString("objVwId"));
    QCOMPARE(offered, QStringList({"a", "objVwId"}));

    QSignalSpy spy(&screen, &ScreenObject::signalSettingsChanged);
    InvokerBase changed;
    QVERIFY(changed.invoke(&screen, "settingsChanged"));
    QCOMPARE(spy.count(), 1);
}

void tst_CompositeScreen::settingsChangedSavesTheStates()
{
    const QString file = writeScreen("saved.json", R"({"title": "Kept", "args": {"k": "v"},
        "components": [{"class": "NoteComponent", "state": {"note": "before"}}]})");
    CompositeScreen screen;
    QString error;
    QVERIFY2(screen.load(file, &error), qPrintable(error));
    qobject_cast<NoteComponent *>(screen.components().at(0))->note = "after";
    QVERIFY(QMetaObject::invokeMethod(screen.screenObject(), "settingsChanged"));

    QFile saved(file);
    QVERIFY(saved.open(QIODevice::ReadOnly));
    const QJsonObject document = QJsonDocument::fromJson(saved.readAll()).object();
    QCOMPARE(document.value("title").toString(), QString("Kept"));
    QCOMPARE(document.value("args").toObject().value("k").toString(), QString("v"));
    const QJsonObject state = document.value("components").toArray().at(0).toObject().value("state").toObject();
    QCOMPARE(state.value("note").toString(), QString("after"));
    QCOMPARE(state.value("version").toString(), QString("1.0.0"));
}

void tst_CompositeScreen::badDocuments_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<int>("failure");
    QTest::addColumn<QString>("message");
    QTest::newRow("not JSON") << QByteArray("{components") << int(CompositeScreen::BadDocument) << "not a JSON object";
    QTest::newRow("array") << QByteArray("[]") << int(CompositeScreen::BadDocument) << "not a JSON object";
    QTest::newRow("no components") << QByteArray("{}") << int(CompositeScreen::BadDocument) << "components";
    QTest::newRow("empty components") << QByteArray(R"({"components": []})") << int(CompositeScreen::BadDocument) << "components";
    QTest::newRow("component without class") << QByteArray(R"({"components": [{}]})") << int(CompositeScreen::BadDocument) << "class";
    QTest::newRow("only unknown classes") << QByteArray(R"({"components": [{"class": "TFNoSuch"}, {"class": "TFNoOther"}]})")
                                          << int(CompositeScreen::UnknownComponent) << "TFNoSuch\", \"TFNoOther";
}

void tst_CompositeScreen::badDocuments()
{
    QFETCH(QByteArray, json);
    QFETCH(int, failure);
    QFETCH(QString, message);
    const QString file = writeScreen("bad.json", json);
    CompositeScreen screen;
    QString error;
    QVERIFY(!screen.load(file, &error));
    QCOMPARE(int(screen.failure()), failure);
    QVERIFY2(error.contains(message), qPrintable(error));
    QVERIFY(screen.components().isEmpty());   // nothing half built

    CompositeScreen missing;
    QVERIFY(!missing.load(m_dir.filePath("absent.json"), &error));
    QCOMPARE(missing.failure(), CompositeScreen::BadDocument);
}

// One unknown class among known ones: a note stands in its place, the
// others work, and saving keeps the entry as it was.
void tst_CompositeScreen::unknownClassLeavesANoteAndIsKept()
{
    const QString file = writeScreen("mixed.json", R"({"args": {"k": "v"}, "components": [
        {"class": "TFNoSuch", "state": {"keep": "me"}}, {"class": "NoteComponent", "state": {"note": "n"}}]})");
    CompositeScreen screen;
    QString error;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("no component \"TFNoSuch\" is registered.*other components go on"));
    QVERIFY2(screen.load(file, &error), qPrintable(error));
    QCOMPARE(screen.failure(), CompositeScreen::NoFailure);
    QCOMPARE(screen.components().size(), 2);
    auto *note = qobject_cast<QLabel *>(screen.components().at(0));
    QVERIFY(note && note->text().contains("TFNoSuch"));
    auto *working = qobject_cast<NoteComponent *>(screen.components().at(1));
    QVERIFY(working);
    QCOMPARE(working->note, QString("n"));
    screen.screenObject()->setArg("k", "w");
    QCOMPARE(working->seenArgs.size(), 1);

    QVERIFY(QMetaObject::invokeMethod(screen.screenObject(), "settingsChanged"));
    QFile saved(file);
    QVERIFY(saved.open(QIODevice::ReadOnly));
    const QJsonArray components = QJsonDocument::fromJson(saved.readAll()).object().value("components").toArray();
    QCOMPARE(components.size(), 2);
    QCOMPARE(components.at(0).toObject(), QJsonDocument::fromJson(R"({"class": "TFNoSuch", "state": {"keep": "me"}})").object());
    QCOMPARE(components.at(1).toObject().value("state").toObject().value("note").toString(), QString("n"));
}

// The bar edits a global argument, adds one, and the document keeps both.
void tst_CompositeScreen::argumentBarSetsAndAddsArguments()
{
    const QString file = writeScreen("bar.json", R"({"args": {"objVwId": "a|1"}, "components": [{"class": "NoteComponent"}]})");
    CompositeScreen screen;
    QString error;
    QVERIFY2(screen.load(file, &error), qPrintable(error));
    ScreenArgumentBar *bar = screen.argumentBar();
    QLineEdit *editor = bar->editorOf("objVwId");
    QVERIFY(editor);
    QCOMPARE(editor->text(), QString("a|1"));
    auto *component = qobject_cast<NoteComponent *>(screen.components().at(0));

    editor->setText(QString::fromUtf8("债券一览|3110"));
    emit editor->editingFinished();
    QCOMPARE(component->seenArgs.size(), 1);
    QCOMPARE(component->seenArgs.last().value("objVwId").toString(), QString::fromUtf8("债券一览|3110"));
    emit editor->editingFinished();   // unchanged: no second change
    QCOMPARE(component->seenArgs.size(), 1);

    bar->newArgumentEditor()->setText("IND_NAME=%银行%");
    emit bar->newArgumentEditor()->returnPressed();
    QCOMPARE(component->seenArgs.size(), 2);
    QCOMPARE(bar->names(), QStringList({"IND_NAME", "objVwId"}));
    QVERIFY(bar->newArgumentEditor()->text().isEmpty());
    bar->newArgumentEditor()->setText("no equals sign");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("name=value"));
    emit bar->newArgumentEditor()->returnPressed();
    QCOMPARE(component->seenArgs.size(), 2);

    QFile saved(file);
    QVERIFY(saved.open(QIODevice::ReadOnly));
    const QJsonObject args = QJsonDocument::fromJson(saved.readAll()).object().value("args").toObject();
    QCOMPARE(args.value("IND_NAME").toString(), QString::fromUtf8("%银行%"));
    QCOMPARE(args.value("objVwId").toString(), QString::fromUtf8("债券一览|3110"));
}

QTEST_MAIN(tst_CompositeScreen)
#include "tst_compositescreen.moc"
