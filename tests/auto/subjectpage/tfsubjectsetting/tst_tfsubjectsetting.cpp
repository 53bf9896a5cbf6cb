#include "screenstub.h"
#include "tfsubjectsetting.h"

#include "filterwidget/tffilterwidget.h"
#include "tfcore/tfcore.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QtTest>

#include "webenginetestmain.h"

#include <functional>

using Controls = QList<FilterParam::Cntrl>;
Q_DECLARE_METATYPE(Controls)

namespace {

// "caption(child,child)" for each root, joined by " ".
QString treeText(const QList<TFJsonObjNode *> &nodes)
{
    QStringList parts;
    for (const TFJsonObjNode *node : nodes) {
        QString text = node->object.value("NODE_CAP").toString() + node->object.value("SECT_NAME").toString();
        if (!node->children.isEmpty())
            text += '(' + treeText(node->children).replace(' ', ',') + ')';
        parts << text;
    }
    return parts.join(' ');
}

// "[code,parent,level,caption],..." as the service's rows of a topic tree.
QByteArray nodes(const char *rows)
{
    QJsonArray out;
    for (const QJsonValue &row : QJsonDocument::fromJson(QByteArray("[") + rows + "]").array()) {
        const QJsonArray r = row.toArray();
        out.append(QJsonObject{{"NODE_CODE", r.at(0)}, {"P_NODE_CODE", r.at(1)}, {"LEVEL", r.at(2)}, {"NODE_CAP", r.at(3)}});
    }
    return QJsonDocument(out).toJson(QJsonDocument::Compact);
}

QTreeWidgetItem *itemCalled(QTreeWidget *tree, const QString &caption)
{
    const auto found = tree->findItems(caption, Qt::MatchRecursive | Qt::MatchExactly, 0);
    return found.isEmpty() ? nullptr : found.first();
}

FilterParam::Cntrl control(const QString &objName, const QString &key, const QVariant &value,
                           bool multiField = false, const QString &op = "==", const QString &valueType = "string")
{
    FilterParam::Cntrl c;
    c.objName = objName;
    c.key = key;
    c.value = value;
    c.multiField = multiField;
    c.op = op;
    c.valueType = valueType;
    return c;
}

} // namespace

class tst_TFSubjectSetting : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        QString error;
        QVERIFY2(m_service.start(&error), qPrintable(error));
        TFCore::instance()->setIniDirectory(m_service.dir.filePath("ini"));
    }
    void cleanup()
    {
        QThreadPool::globalInstance()->waitForDone(30000);
        QFile::remove(m_service.dir.filePath("ini/zhp.ini"));
    }
    void checkBoxes();
    void makeTree_data();
    void makeTree();
    void filterArgs_data();
    void filterArgs();
    void topicRoots_data();
    void topicRoots();
    void navigationTree();
    void dialog_data();
    void dialog();

private:
    void writeIni(const QByteArray &text)
    {
        QVERIFY(QDir().mkpath(m_service.dir.filePath("ini")));
        QFile file(m_service.dir.filePath("ini/zhp.ini"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    ComponentService m_service;
};

// A checked box hides its part: the signal says "not visible".
void tst_TFSubjectSetting::checkBoxes()
{
    TFSubjectSetting setting("x:1");
    setting.show();
    const QList<QPair<const char *, const char *>> boxes = {
        {"cbHideFilterBar", SIGNAL(signalFilterWidgetVisibleSettingChanged(bool))},
        {"cbHideMainView", SIGNAL(signalMainViewVisibleSettingChanged(bool))},
        {"cbHideChildView", SIGNAL(signalSubViewVisibleSettingChanged(bool))},
        {"cbHidePageBar", SIGNAL(signalPageBarVisibleChanged(bool))}};
    for (const auto &[box, signal] : boxes) {
        QSignalSpy spy(&setting, signal);
        auto *check = setting.findChild<QCheckBox *>(box);
        QTest::mouseClick(check, Qt::LeftButton, {}, QPoint(4, check->height() / 2));
        QTest::mouseClick(check, Qt::LeftButton, {}, QPoint(4, check->height() / 2));
        QCOMPARE(spy.count(), 2);
        QCOMPARE(spy.at(0).at(0).toBool(), false);
        QCOMPARE(spy.at(1).at(0).toBool(), true);
    }
}

void tst_TFSubjectSetting::makeTree_data()
{
    QTest::addColumn<QByteArray>("rows");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("tree");

    // Rows of the navigation tree as {code, parent, level, caption}.
    QTest::newRow("siblings in text order of codes")
        << nodes(R"([1,0,1,"r"],[9,1,2,"nine"],[10,1,2,"ten"])") << 2 << "r(ten,nine)";
    QTest::newRow("level 1 is a root whatever its parent") << nodes(R"([1,0,1,"a"],[2,1,1,"b"])") << 2 << "a b";
    QTest::newRow("a missing parent leaves the row out")
        << nodes(R"([1,0,1,"a"],[3,77,2,"lost"])").replace("]", R"(, 5, "text"])") << 2 << "a";
    QTest::newRow("a later row of the same code replaces the earlier")
        << nodes(R"([1,0,1,"old"],["1",0,"1","new"],[2,"1",2,"c"])") << 2 << "new(c)";
    QTest::newRow("block rows: parent 0 is a root") << QByteArray(R"([{"SECT_ID": 5, "P_SECT_ID": 0, "SECT_NAME": "行业"},
        {"SECT_ID": 6, "P_SECT_ID": 5, "SECT_NAME": "银行"}, {"NODE_CODE": 7, "LEVEL": 1, "SECT_NAME": "no block keys"}])")
        << 1 << "no block keys 行业(银行)";
}

void tst_TFSubjectSetting::makeTree()
{
    QFETCH(QByteArray, rows);
    QFETCH(int, type);
    QFETCH(QString, tree);
    QList<TFJsonObjNode *> roots;
    QList<TFJsonObjNode *> owner;
    TFSubjectSetting::makeTree(QJsonDocument::fromJson(rows).array(), roots, type, &owner);
    QCOMPARE(treeText(roots), tree);
    qDeleteAll(owner);
}

void tst_TFSubjectSetting::filterArgs_data()
{
    QTest::addColumn<Controls>("controls");
    QTest::addColumn<QVariantMap>("args");

    QTest::newRow("plain value as it is") << Controls{control("ComboBox", "IND_NAME", 7)} << QVariantMap{{"IND_NAME", 7}};
    QTest::newRow("three values on two keys: the first key again")
        << Controls{control("DateTimeInterval", "A,B", "1,2,3", true)} << QVariantMap{{"A", "3"}, {"B", "2"}};
    QTest::newRow("multi-field without values gives nothing")
        << Controls{control("DateTimeInterval", "A,B", ",", true)} << QVariantMap();
    QTest::newRow("in over a list joins the values")
        << Controls{control("CheckComboBox", "MKT", QVariantList{1, "x"}, false, "in", "stringList")}
        << QVariantMap{{"MKT", "1,x"}};
    QTest::newRow("a list without in stays a list")
        << Controls{control("CheckComboBox", "MKT", QVariantList{1, "x"}, false, "==", "stringList")}
        << QVariantMap{{"MKT", QVariantList{1, "x"}}};
    QTest::newRow("buttons, hidden controls and unnamed ones are no arguments")
        << Controls{control("VirtualCntrl", "A", 1), control("simplebuttongetdata", "B", 1),
                    control("SimpleButtonSaveToExcel", "C", 1), control("", "D", 1)} << QVariantMap();
    QTest::newRow("a later control of the same key wins")
        << Controls{control("TextEdit", "K", "a"), control("ComboBox", "K", "b")} << QVariantMap{{"K", "b"}};
}

void tst_TFSubjectSetting::filterArgs()
{
    QFETCH(Controls, controls);
    QFETCH(QVariantMap, args);
    QCOMPARE(TFSubjectSetting::filterArgsOf(controls), args);
}

void tst_TFSubjectSetting::topicRoots_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QByteArray>("ini");     // zhp.ini, none when empty
    QTest::addColumn<QStringList>("items");

    QTest::newRow("the component's own list") << "专题-装置:2" << QByteArray("[Settings]\nlist=a:1\n")
                                              << QStringList{"专题-装置:2"};
    QTest::newRow("from zhp.ini, quoted") << QString() << QByteArray("[Settings]\nlist=\"股票专题:2,债券专题:311\"\n")
                                          << QStringList{"股票专题:2", "债券专题:311"};
    QTest::newRow("from zhp.ini, as the ini format reads a list")
        << QString() << QByteArray("[Settings]\nlist=股票专题:2,,债券专题:311\n")
        << QStringList{"股票专题:2", "", "债券专题:311"};
    QTest::newRow("no setting: one empty item") << QString() << QByteArray() << QStringList{""};
}

void tst_TFSubjectSetting::topicRoots()
{
    QFETCH(QString, list);
    QFETCH(QByteArray, ini);
    QFETCH(QStringList, items);
    if (!ini.isEmpty())
        writeIni(ini);
    TFSubjectSetting setting(list);
    auto *combo = setting.findChild<QComboBox *>("cbNodeCode");
    QStringList shown;
    for (int i = 0; i < combo->count(); ++i)
        shown << combo->itemText(i);
    QCOMPARE(shown, items);
    QCOMPARE(combo->currentIndex(), 0);
}

// The tree of a topic from the service: folders choose nothing, a leaf
// names its view as "caption|identifier".
void tst_TFSubjectSetting::navigationTree()
{
    TFSubjectSetting setting("债券专题:311");
    auto *tree = setting.findChild<QTreeWidget *>("twNavTree");
    QTRY_VERIFY_WITH_TIMEOUT(tree->topLevelItemCount() > 0, 30000);
    QCOMPARE(tree->topLevelItemCount(), 1);
    QCOMPARE(tree->topLevelItem(0)->text(0), QString("债券市场"));
    QCOMPARE(tree->topLevelItem(0)->childCount(), 2);
    QVERIFY(tree->isHeaderHidden());
    QVERIFY(tree->isColumnHidden(1) && tree->isColumnHidden(2) && tree->isColumnHidden(3));

    QSignalSpy chosen(&setting, &TFSubjectSetting::signalObjVwIdChanged);
    tree->setCurrentItem(tree->topLevelItem(0));
    QCOMPARE(chosen.count(), 0);
    tree->setCurrentItem(itemCalled(tree, "信用评级分布"));
    QCOMPARE(chosen.count(), 1);
    QCOMPARE(chosen.at(0).at(0).toLongLong(), 3112);
    QCOMPARE(chosen.at(0).at(1).toString(), QString("信用评级分布"));
    QCOMPARE(setting.findChild<QLabel *>("lbUserSelectedTip")->text(), QString("信用评级分布|3112"));

    // The view of the frame is chosen again when the tree comes.
    TFSubjectSetting again("债券专题:311");
    again.setCurrentView(3110, "债券一览");
    QSignalSpy refresh(&again, &TFSubjectSetting::signalRefreashPage);
    auto *againTree = again.findChild<QTreeWidget *>("twNavTree");
    QTRY_VERIFY_WITH_TIMEOUT(againTree->currentItem(), 30000);
    QCOMPARE(againTree->currentItem()->text(0), QString("债券一览"));
    QCOMPARE(refresh.count(), 1);
}

void tst_TFSubjectSetting::dialog_data()
{
    QTest::addColumn<QString>("choose");       // a view to pick in the tree, or none
    QTest::addColumn<QString>("bind");         // the global argument chosen for the view, or none
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("opens");           // how often the dialog is opened and closed so
    QTest::addColumn<qlonglong>("objVwId");
    QTest::addColumn<bool>("mainViewVisible");
    QTest::addColumn<int>("settingsChanged");

    QTest::newRow("cancel restores the snapshot") << "季度财务指标" << "" << "pbCancel" << 1 << 260LL << true << 0;
    QTest::newRow("close restores the snapshot") << "季度财务指标" << "" << "pbClose" << 1 << 260LL << true << 0;
    QTest::newRow("apply keeps the choice") << "季度财务指标" << "" << "pbOk" << 1 << 264LL << false << 1;
    // The first apply takes the values of the dialog's bar as the
    // component's own arguments; the second changes nothing.
    QTest::newRow("apply without a change tells nobody") << QString() << "" << "pbOk" << 2 << 260LL << true << 1;
    QTest::newRow("binding to a global argument") << QString() << "view" << "pbOk" << 1 << 3110LL << true << 1;
}

// The dialog driven as a user would: it opens on the frame's view, a view
// and a hidden main view are chosen, and a button closes it.
void tst_TFSubjectSetting::dialog()
{
    QFETCH(QString, choose);
    QFETCH(QString, bind);
    QFETCH(QString, button);
    QFETCH(int, opens);
    QFETCH(qlonglong, objVwId);
    QFETCH(bool, mainViewVisible);
    QFETCH(int, settingsChanged);

    writeIni("[Settings]\nlist=\"股票专题:2,债券专题:311\"\n");

    ScreenStub screen;
    screen.setArgs({{"view", "债券一览|3110"}, {"PROVINCE", "北京"}});
    screen.answer = bind;
    QWidget parent;
    parent.setProperty("zhpObj", QVariant::fromValue<QObject *>(&screen));
    parent.resize(1000, 700);
    auto *layout = new QVBoxLayout(&parent);
    auto *frame = new TFFrameSubjectZHP(&parent);
    layout->addWidget(frame);
    parent.show();
    QVariantMap state = componentState(260, "沪深A股行情");
    state.insert("pageBarVisible", true);
    state.insert("filterMap", QVariantMap());
    frame->restore(state);
    QTRY_VERIFY_WITH_TIMEOUT(rowsShown(*frame) > 0, 30000);

    QString failure = "the dialog did not open";
    int opened = 0;
    const std::function<void()> driver = [&] {
        ++opened;
        QWidget *dialog = nullptr;
        QTest::qWaitFor([&] { return (dialog = QApplication::activeModalWidget()) != nullptr; }, 10000);
        auto *setting = dialog ? dialog->findChild<TFSubjectSetting *>() : nullptr;
        if (!setting)
            return;
        auto *tree = setting->findChild<QTreeWidget *>("twNavTree");
        // The frame's view is found in the first topic and chosen again.
        QTest::qWaitFor([&] { return tree->currentItem() != nullptr; }, 30000);
        const QString tip = setting->findChild<QLabel *>("lbUserSelectedTip")->text();
        failure = tip == QStringLiteral("沪深A股行情|260") ? QString() : "the frame's view is not chosen: " + tip;
        // The page reloads and its filter rows reach the dialog's bar, the
        // screen's arguments as their defaults. After an apply the
        // component's own arguments, read from its bar, come first.
        auto *bar = setting->findChild<TFFilterWidget *>("fmFilter");
        QTest::qWaitFor([&] { return !bar->filterData().isEmpty(); }, 30000);
        bool province = false;
        for (const TFTableModelData::FilterData &row : bar->filterData())
            province = province || (row.FieldName == "PROVINCE" && row.DefualtValue == QStringLiteral("北京"));
        if (failure.isEmpty() && opened == 1 && !province)
            failure = "the dialog's bar does not take the screen's argument as its default";
        if (failure.isEmpty() && !choose.isEmpty()) {
            tree->setCurrentItem(itemCalled(tree, choose));
            auto *hide = setting->findChild<QCheckBox *>("cbHideMainView");
            QTest::mouseClick(hide, Qt::LeftButton, {}, QPoint(4, hide->height() / 2));
            // Each choice takes effect at once.
            if (frame->objVwId() != 264 || frame->rightContainer()->isMainViewVisible())
                failure = "a choice did not take effect at once";
        }
        if (failure.isEmpty() && !bind.isEmpty()) {
            QTest::mouseClick(setting->findChild<QPushButton *>("pbBindGl"), Qt::LeftButton);
            if (frame->binderKey() != bind || frame->objVwId() != 3110)
                failure = "the binding did not take effect at once";
        }
        QTest::mouseClick(setting->findChild<QPushButton *>(failure.isEmpty() ? button : "pbCancel"), Qt::LeftButton);
    };
    QTimer::singleShot(0, this, driver);
    bool accepted = frame->slotOpenSettings();
    QVERIFY2(failure.isEmpty(), qPrintable(failure));
    for (int again = 1; again < opens; ++again) {
        failure = "the dialog did not open";
        QTimer::singleShot(0, this, driver);
        accepted = frame->slotOpenSettings();
        QVERIFY2(failure.isEmpty(), qPrintable(failure));
    }
    QCOMPARE(accepted, button == "pbOk");
    QCOMPARE(frame->objVwId(), objVwId);
    QCOMPARE(frame->rightContainer()->isMainViewVisible(), mainViewVisible);
    QCOMPARE(screen.settingsChangedCount, settingsChanged);
    QTRY_COMPARE_WITH_TIMEOUT(frame->rightContainer()->mainView()->currentViewId(), objVwId, 30000);
}

SUBJECT_WEBENGINE_TEST_MAIN(tst_TFSubjectSetting)
#include "tst_tfsubjectsetting.moc"
