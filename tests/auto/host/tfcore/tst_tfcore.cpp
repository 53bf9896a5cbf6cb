#include "tfcore/itfskin.h"
#include "tfcore/tfcore.h"
#include "tfcore/tfglobalcss.h"

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

    void setCurrentSkin_data();
    void setCurrentSkin();
    void destroyedViewsAreForgotten();
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
    QCOMPARE(TFCore::instance()->skinIds(), QStringList({"black", "white"}));
}

void tst_TFCore::cleanup()
{
    QVERIFY(TFCore::instance()->setCurrentSkin("white"));
}

void tst_TFCore::setCurrentSkin_data()
{
    QTest::addColumn<QString>("sheet");       // what the view asks for
    QTest::addColumn<QString>("skin");        // then chosen
    QTest::addColumn<bool>("changed");
    QTest::addColumn<QStringList>("styles");  // every sheet the view was handed

    const QString white = "QWidget { background: white; }";
    QTest::newRow("another skin") << "subject/subject.css" << "black" << true
                                  << QStringList{white, "QWidget { background: black; }"};
    QTest::newRow("the same skin again") << "subject/subject.css" << "white" << false << QStringList{white};
    QTest::newRow("an unknown skin") << "subject/subject.css" << "green" << false << QStringList{white};
    // Images named relative to the skin become absolute; resources stay.
    const QString sort = QStringLiteral("url(\"%1\")").arg(m_dir.filePath("skins/%1/subject/sort.png"));
    QTest::newRow("relative images") << "subject/grid.css" << "black" << true
                                     << QStringList{"QHeaderView { image: " + sort.arg("white") + "; }\n"
                                                    "QLabel { image: url(\":/fixed.png\"); }",
                                                    "QHeaderView { image: " + sort.arg("black") + "; }"};
    QTest::newRow("a missing sheet clears the style") << "subject/absent.css" << "black" << true << QStringList{"", ""};
}

void tst_TFCore::setCurrentSkin()
{
    QFETCH(QString, sheet);
    QFETCH(QString, skin);
    QFETCH(bool, changed);
    QFETCH(QStringList, styles);
    TFCore *core = TFCore::instance();
    SkinnedWidget view;
    if (sheet.contains("absent"))
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("style sheet not found"));
    core->addStyle2View(&view, sheet);
    QSignalSpy spy(core, &TFCore::signalSkinChanged);
    if (skin == "green")
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("unknown skin"));
    QCOMPARE(core->setCurrentSkin(skin), skin != "green");
    QCOMPARE(spy.count(), changed ? 1 : 0);
    if (changed)
        QCOMPARE(spy.at(0).at(0).toString(), skin);
    const QString current = changed ? skin : QStringLiteral("white");
    QCOMPARE(core->getCurrentSkinId(), current);
    QCOMPARE(core->getCurrentSkinPath("subject/loading.gif"), m_dir.filePath("skins/" + current + "/subject/loading.gif"));
    QStringList handed;
    for (const QVariant &style : qAsConst(view.styles)) {
        QVERIFY(style.isValid());
        handed << style.toString();
    }
    QCOMPARE(handed, styles);
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
    QTest::newRow("general section") << "plain.ini:top" << QVariant() << QVariant("1");
    QTest::newRow("missing key") << "zhp.ini:Settings/absent" << QVariant("dflt") << QVariant("dflt");
    QTest::newRow("missing section") << "zhp.ini:Nowhere/list" << QVariant(5) << QVariant(5);
    QTest::newRow("missing file") << "absent.ini:Settings/list" << QVariant("dflt") << QVariant("dflt");
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
