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
    void loadAndSave();
    void bindingDialogAnswersThroughTheInvoker();
    void badDocuments_data();
    void badDocuments();
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

void tst_CompositeScreen::badDocuments_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<int>("failure");
    QTest::addColumn<QString>("message");
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

// Components made by class name find the screen, take their states and
// follow the global arguments; an unknown class among them leaves a note in
// its place, and saving keeps its entry as it was.
void tst_CompositeScreen::loadAndSave()
{
    const QString file = writeScreen("mixed.json", R"({"title": "Desk", "args": {"k": "v"}, "components": [
        {"class": "TFNoSuch", "state": {"keep": "me"}},
        {"class": "NoteComponent", "state": {"version": "1.0.0", "note": "n", "objVwId": 260}},
        {"class": "NoteComponent"}]})");
    CompositeScreen screen;
    QString error;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("no component \"TFNoSuch\" is registered.*other components go on"));
    QVERIFY2(screen.load(file, &error), qPrintable(error));
    QCOMPARE(screen.failure(), CompositeScreen::NoFailure);
    QCOMPARE(screen.title(), QString("Desk"));
    QCOMPARE(screen.components().size(), 3);
    auto *note = qobject_cast<QLabel *>(screen.components().at(0));
    QVERIFY(note && note->text().contains("TFNoSuch"));
    auto *working = qobject_cast<NoteComponent *>(screen.components().at(1));
    auto *stateless = qobject_cast<NoteComponent *>(screen.components().at(2));
    QVERIFY(working && stateless);
    QCOMPARE(working->screen, screen.screenObject());
    QCOMPARE(working->note, QString("n"));
    QCOMPARE(working->restored.value("objVwId").toLongLong(), 260);
    QVERIFY(stateless->restored.isEmpty());   // no state: restore is not called

    QSignalSpy changed(screen.screenObject(), &ScreenObject::argsChanged);
    screen.screenObject()->setArg("k", QString::fromUtf8("股票|260"));
    screen.screenObject()->setArg("k", QString::fromUtf8("股票|260"));   // the same again: no change
    QCOMPARE(changed.count(), 1);
    QCOMPARE(working->seenArgs, (QList<QVariantMap>{ { { "k", QString::fromUtf8("股票|260") } } }));

    working->note = "after";
    QVERIFY(QMetaObject::invokeMethod(screen.screenObject(), "settingsChanged"));
    QFile saved(file);
    QVERIFY(saved.open(QIODevice::ReadOnly));
    const QJsonObject document = QJsonDocument::fromJson(saved.readAll()).object();
    QCOMPARE(document.value("title").toString(), QString("Desk"));
    QCOMPARE(document.value("args").toObject().value("k").toString(), QString::fromUtf8("股票|260"));
    const QJsonArray components = document.value("components").toArray();
    QCOMPARE(components.size(), 3);
    QCOMPARE(components.at(0).toObject(), QJsonDocument::fromJson(R"({"class": "TFNoSuch", "state": {"keep": "me"}})").object());
    const QJsonObject state = components.at(1).toObject().value("state").toObject();
    QCOMPARE(state.value("note").toString(), QString("after"));
    QCOMPARE(state.value("version").toString(), QString("1.0.0"));
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
