#include "tfcore/itfskin.h"
#include "tfcore/tfcore.h"
#include "tfcore/tfglobalcss.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QWidget>
#include <QtTest>

// A widget that records every sheet the core hands it.
class SkinnedWidget : public QWidget, public ITFSkin
{
public:
    QWidget *getWidget() override { return this; }
    void applySkinStyle(const QVariant &style) override { styles.append(style); }
    QVariantList styles;
};

class tst_TFCore : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();

    void skinIdsListTheSkinFolders();
    void skinPathFollowsTheCurrentSkin();
    void styleIsAppliedAtOnceAndAtEveryChange();
    void relativeImagesInSheetsBecomeAbsolute();
    void destroyedViewsAreForgotten();
    void unknownSkinIsRefused();
    void sameSkinAgainEmitsNothing();
    void missingSheetClearsTheStyle();
    void tipsColorsComeFromTheSkin_data();
    void tipsColorsComeFromTheSkin();

    void value_data();
    void value();

private:
    void write(const QString &relative, const QByteArray &text);
    QTemporaryDir m_dir;
};

void tst_TFCore::write(const QString &relative, const QByteArray &text)
{
    const QString path = m_dir.filePath(relative);
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
}

void tst_TFCore::initTestCase()
{
    QVERIFY(m_dir.isValid());
    write("skins/white/subject/subject.css", "QWidget { background: white; }");
    write("skins/white/subject/grid.css", "QHeaderView { image: url(subject/sort.png); }\n"
                                          "QLabel { image: url(\":/fixed.png\"); }");
    write("skins/white/skin.ini", "[Colors]\ntips=#101112\n");
    write("skins/black/subject/subject.css", "QWidget { background: black; }");
    write("skins/black/subject/grid.css", "QHeaderView { image: url('subject/sort.png'); }");
    write("ini/zhp.ini", "[Settings]\nlist=\"a;b;c\"\ncount=7\ncaption=\xe8\x82\xa1\xe7\xa5\xa8\n[Other]\nlist=x\n");
    write("ini/plain.ini", "top=1\n");
    TFCore::instance()->setSkinsRoot(m_dir.filePath("skins"));
    TFCore::instance()->setIniDirectory(m_dir.filePath("ini"));
    QVERIFY(TFCore::instance()->setCurrentSkin("white"));
}

void tst_TFCore::cleanup()
{
    QVERIFY(TFCore::instance()->setCurrentSkin("white"));
}

void tst_TFCore::skinIdsListTheSkinFolders()
{
    QCOMPARE(TFCore::instance()->skinIds(), QStringList({"black", "white"}));
}

void tst_TFCore::skinPathFollowsTheCurrentSkin()
{
    TFCore *core = TFCore::instance();
    QCOMPARE(core->getCurrentSkinPath("subject.png"), m_dir.filePath("skins/white/subject.png"));
    QSignalSpy spy(core, &TFCore::signalSkinChanged);
    QVERIFY(core->setCurrentSkin("black"));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toString(), QString("black"));
    QCOMPARE(core->getCurrentSkinId(), QString("black"));
    QCOMPARE(core->getCurrentSkinPath("subject/loading.gif"), m_dir.filePath("skins/black/subject/loading.gif"));
}

void tst_TFCore::styleIsAppliedAtOnceAndAtEveryChange()
{
    TFCore *core = TFCore::instance();
    SkinnedWidget view;
    core->addStyle2View(&view, "subject/subject.css");
    QCOMPARE(view.styles.size(), 1);
    QCOMPARE(view.styles.at(0).toString(), QString("QWidget { background: white; }"));

    QVERIFY(core->setCurrentSkin("black"));
    QCOMPARE(view.styles.size(), 2);
    QCOMPARE(view.styles.at(1).toString(), QString("QWidget { background: black; }"));

    QVERIFY(core->setCurrentSkin("white"));
    QCOMPARE(view.styles.size(), 3);
    QCOMPARE(view.styles.at(2).toString(), QString("QWidget { background: white; }"));
}

void tst_TFCore::relativeImagesInSheetsBecomeAbsolute()
{
    TFCore *core = TFCore::instance();
    SkinnedWidget view;
    core->addStyle2View(&view, "subject/grid.css");
    const QString white = view.styles.last().toString();
    QVERIFY2(white.contains(QString("url(\"%1\")").arg(m_dir.filePath("skins/white/subject/sort.png"))),
             qPrintable(white));
    QVERIFY2(white.contains("url(\":/fixed.png\")"), qPrintable(white));

    QVERIFY(core->setCurrentSkin("black"));
    const QString black = view.styles.last().toString();
    QVERIFY2(black.contains(QString("url(\"%1\")").arg(m_dir.filePath("skins/black/subject/sort.png"))),
             qPrintable(black));
}

void tst_TFCore::destroyedViewsAreForgotten()
{
    TFCore *core = TFCore::instance();
    auto *gone = new SkinnedWidget;
    SkinnedWidget kept;
    core->addStyle2View(gone, "subject/subject.css");
    core->addStyle2View(&kept, "subject/subject.css");
    delete gone;
    // Under AddressSanitizer a call into the deleted view would fail here.
    QVERIFY(core->setCurrentSkin("black"));
    QCOMPARE(kept.styles.size(), 2);
}

void tst_TFCore::unknownSkinIsRefused()
{
    TFCore *core = TFCore::instance();
    SkinnedWidget view;
    core->addStyle2View(&view, "subject/subject.css");
    QSignalSpy spy(core, &TFCore::signalSkinChanged);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("unknown skin"));
    QVERIFY(!core->setCurrentSkin("green"));
    QCOMPARE(spy.count(), 0);
    QCOMPARE(core->getCurrentSkinId(), QString("white"));
    QCOMPARE(view.styles.size(), 1);
}

void tst_TFCore::sameSkinAgainEmitsNothing()
{
    TFCore *core = TFCore::instance();
    SkinnedWidget view;
    core->addStyle2View(&view, "subject/subject.css");
    QSignalSpy spy(core, &TFCore::signalSkinChanged);
    QVERIFY(core->setCurrentSkin("white"));
    QCOMPARE(spy.count(), 0);
    QCOMPARE(view.styles.size(), 1);
}

void tst_TFCore::missingSheetClearsTheStyle()
{
    SkinnedWidget view;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("style sheet not found"));
    TFCore::instance()->addStyle2View(&view, "subject/absent.css");
    QCOMPARE(view.styles.size(), 1);
    QVERIFY(view.styles.at(0).isValid());
    QCOMPARE(view.styles.at(0).toString(), QString());
}

void tst_TFCore::tipsColorsComeFromTheSkin_data()
{
    QTest::addColumn<QString>("skin");
    QTest::addColumn<int>("index");
    QTest::addColumn<QColor>("expected");
    QTest::newRow("from skin.ini") << "white" << 0 << QColor("#101112");
    QTest::newRow("light default") << "white" << 2 << QColor("#6a3fb5");
    QTest::newRow("dark default") << "black" << 1 << QColor("#4da3ff");
    QTest::newRow("below range") << "white" << -1 << QColor();
    QTest::newRow("above range") << "black" << 3 << QColor();
}

void tst_TFCore::tipsColorsComeFromTheSkin()
{
    QFETCH(QString, skin);
    QFETCH(int, index);
    QFETCH(QColor, expected);
    QVERIFY(TFCore::instance()->setCurrentSkin(skin));
    QCOMPARE(TFGlobalCss::getTipsColorByIndex(index), expected);
}

void tst_TFCore::value_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("defaultValue");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("list") << "zhp.ini:Settings/list" << QVariant() << QVariant("a;b;c");
    QTest::newRow("number") << "zhp.ini:Settings/count" << QVariant(0) << QVariant("7");
    QTest::newRow("utf-8 text") << "zhp.ini:Settings/caption" << QVariant() << QVariant(QString::fromUtf8("股票"));
    QTest::newRow("other section") << "zhp.ini:Other/list" << QVariant() << QVariant("x");
    QTest::newRow("general section") << "plain.ini:top" << QVariant() << QVariant("1");
    QTest::newRow("missing key") << "zhp.ini:Settings/absent" << QVariant("dflt") << QVariant("dflt");
    QTest::newRow("missing section") << "zhp.ini:Nowhere/list" << QVariant(5) << QVariant(5);
    QTest::newRow("missing file") << "absent.ini:Settings/list" << QVariant("dflt") << QVariant("dflt");
    QTest::newRow("missing file, no default") << "absent.ini:Settings/list" << QVariant() << QVariant();
    QTest::newRow("no colon") << "zhp.ini" << QVariant("dflt") << QVariant("dflt");
    QTest::newRow("nothing after colon") << "zhp.ini:" << QVariant("dflt") << QVariant("dflt");
    QTest::newRow("nothing before colon") << ":Settings/list" << QVariant("dflt") << QVariant("dflt");
}

void tst_TFCore::value()
{
    QFETCH(QString, key);
    QFETCH(QVariant, defaultValue);
    QFETCH(QVariant, expected);
    if (!key.contains(':') || key.endsWith(':') || key.startsWith(':'))
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("configuration key"));
    const QVariant actual = TFCore::instance()->value(key, defaultValue);
    QCOMPARE(actual.isValid(), expected.isValid());
    QCOMPARE(actual.toString(), expected.toString());
}

QTEST_MAIN(tst_TFCore)
#include "tst_tfcore.moc"
