#include "filterwidget/tfbasefilterwidget.h"
#include "filterwidget/tffiltersubwidgetfactory.h"
#include "filterwidget/tfcombobox.h"
#include "filterwidget/tffilterwidget.h"
#include "filterwidget/tfpushbutton.h"

#include "tfcore/tfcore.h"

#include <QComboBox>
#include <QMenu>
#include <QToolButton>
#include <QtTest>

namespace {

QStringList g_messages;

void recordMessage(QtMsgType, const QMessageLogContext &, const QString &message)
{
    g_messages.append(message);
}

TFTableModelData::FilterData row(const QString &className, const QString &caption = QString())
{
    TFTableModelData::FilterData data;
    data.ClassName = className;
    data.Caption = caption;
    return data;
}

} // namespace

class tst_TFFilterCtlFactory : public QObject
{
    Q_OBJECT

private slots:
    void orderOfTests_data();
    void orderOfTests();
    void unknownClassWritesThreeLines();
    void buttonsReachTheBar_data();
    void buttonsReachTheBar();
    void unitListReachesTheBar();
    void buttonIconsFollowTheSkin();
};

void tst_TFFilterCtlFactory::orderOfTests_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("built");     // class of the control; empty for none
    QTest::addColumn<bool>("hidden");

    QTest::newRow("exact interval") << "DecimalTextEditInterval" << "TFDecimalTextEditInterval" << false;
    QTest::newRow("interval in other case is a text box") << "decimalTextEditInterval" << "TFLineEdit" << false;
    QTest::newRow("date edit, case and surroundings ignored") << "dateEditFrom" << "TFDateEdit" << false;
    QTest::newRow("date edit before text edit") << "TextEditDateEdit" << "TFDateEdit" << false;
    QTest::newRow("single year") << "SimpleYear" << "TFMultiYear" << false;
    QTest::newRow("many years") << "MultYear" << "TFMultiYear" << false;
    QTest::newRow("combo box before text edit") << "ComboBoxTextEdit" << "TFComboBox" << false;
    QTest::newRow("unit list") << "UnitFactorCombobox" << "TFComboBox" << false;
    QTest::newRow("check list before combo box and button") << "CheckComboBoxButton" << "TFCheckCombox" << false;
    QTest::newRow("keywords box") << "KeywordsBox" << "TFLineEdit" << false;
    QTest::newRow("keywords, case ignored") << "keywordsbox" << "TFLineEdit" << false;
    QTest::newRow("text edit before button") << "TextEditButton" << "TFLineEdit" << false;
    QTest::newRow("button before date interval") << "ButtonDateTimeInterval" << "TFPushbutton" << false;
    QTest::newRow("date interval") << "DateTimeInterval" << "TFDatetimeInterval" << false;
    QTest::newRow("date interval before virtual") << "DateTimeIntervalVirtualCntrl" << "TFDatetimeInterval" << false;
    QTest::newRow("report date before virtual") << "ReportDateSimpleVirtualCntrl" << "TFReportDateSimple" << false;
    QTest::newRow("month range before virtual") << "YearMonthIntervalVirtualCntrl" << "TFYearMonthInterval" << false;
    QTest::newRow("month") << "YearMonthSimple" << "TFYearMonthSimple" << false;
    QTest::newRow("virtual before month") << "YearMonthSimpleVirtualCntrl" << "TFFilterLabel" << true;
    QTest::newRow("virtual") << "VirtualCntrl" << "TFFilterLabel" << true;
    QTest::newRow("F9 security") << "F9SecuIdCntrl" << "TFFilterLabel" << true;
    QTest::newRow("F9 company, lower case") << "f9comidcntrl" << "TFFilterLabel" << true;
    QTest::newRow("label control is unknown") << "LabelControl" << "" << false;
    QTest::newRow("empty") << "" << "" << false;
}

void tst_TFFilterCtlFactory::orderOfTests()
{
    QFETCH(QString, className);
    QFETCH(QString, built);
    QFETCH(bool, hidden);

    TFFilterWidget bar;
    TFBaseFilterWidget *control = TFFilterCtlFactory::createWidget(row(className), &bar);
    QCOMPARE(control ? QString::fromLatin1(control->metaObject()->className()) : QString(), built);
    if (control) {
        QCOMPARE(control->parent(), &bar);
        // The check list renames itself.
        QCOMPARE(control->objectName(),
                 built == "TFCheckCombox" ? QStringLiteral("CustomCheckCombobox") : className);
        QCOMPARE(control->isHidden(), hidden);
    }
}

void tst_TFFilterCtlFactory::unknownClassWritesThreeLines()
{
    TFFilterWidget bar;
    g_messages.clear();
    const QtMessageHandler previous = qInstallMessageHandler(recordMessage);
    TFBaseFilterWidget *unknown = TFFilterCtlFactory::createWidget(row("Slider", "滑块"), &bar);
    TFBaseFilterWidget *empty = TFFilterCtlFactory::createWidget(row(QString(), "空"), &bar);
    qInstallMessageHandler(previous);

    QVERIFY(!unknown);
    QVERIFY(!empty);
    const QString rule = QStringLiteral("\n--------------not suports no contains-------------\n ");
    QCOMPARE(g_messages, (QStringList{rule, QStringLiteral("not suports no contains:  Slider 滑块"), rule}));
}

void tst_TFFilterCtlFactory::buttonsReachTheBar_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("getData");
    QTest::addColumn<int>("save");
    QTest::addColumn<int>("sort");

    QTest::newRow("get data") << "SimpleButtonGetData" << "查询" << 1 << 0 << 0;
    QTest::newRow("save to excel") << "SimpleButtonSaveToExcel" << "保存" << 0 << 1 << 0;
    QTest::newRow("sort") << "SimpleButtonSort" << "查询" << 0 << 0 << 1;
    QTest::newRow("other button") << "SimpleButtonXyz" << "" << 0 << 0 << 0;
}

void tst_TFFilterCtlFactory::buttonsReachTheBar()
{
    QFETCH(QString, className);
    QFETCH(QString, text);
    QFETCH(int, getData);
    QFETCH(int, save);
    QFETCH(int, sort);

    TFFilterWidget bar;
    QSignalSpy getDataSpy(&bar, &TFFilterWidget::sigGetDataButtonClicked);
    QSignalSpy saveSpy(&bar, qOverload<int, QString>(&TFFilterWidget::signalSimpleButtonSaveToExcel));
    QSignalSpy sortSpy(&bar, &TFFilterWidget::signalSortChanged);
    QSignalSpy shortSaveSpy(&bar, SIGNAL(signalSimpleButtonSaveToExcel(int)));
    QSignalSpy shortestSaveSpy(&bar, SIGNAL(signalSimpleButtonSaveToExcel()));

    auto *control = qobject_cast<TFPushbutton *>(TFFilterCtlFactory::createWidget(row(className, "查询"), &bar));
    QVERIFY(control);
    QToolButton *button = control->button();
    QCOMPARE(button->text(), text);

    // The export button pops its menu up on a press; its action is what counts.
    if (!button->menu())
        button->click();
    if (QMenu *menu = button->menu()) {
        QCOMPARE(menu->actions().size(), 1);
        QCOMPARE(menu->actions().first()->text(), QStringLiteral("保存为EXCEL"));
        menu->actions().first()->trigger();
    }
    QCOMPARE(getDataSpy.count(), getData);
    if (getData)
        QVERIFY(getDataSpy.first().first().toString().isNull());
    QCOMPARE(saveSpy.count(), save);
    QCOMPARE(shortSaveSpy.count(), save);
    QCOMPARE(shortestSaveSpy.count(), save);
    if (save)
        QCOMPARE(saveSpy.first(), (QVariantList{1, QStringLiteral("excel")}));
    QCOMPARE(sortSpy.count(), sort);
}

// Only the unit list hands its choice on to the bar.
void tst_TFFilterCtlFactory::unitListReachesTheBar()
{
    TFFilterWidget bar;
    QSignalSpy spy(&bar, &TFFilterWidget::signalComboBoxChanged);
    for (const char *className : {"ComboBox", "UnitFactorCombobox"}) {
        TFTableModelData::FilterData data = row(className);
        data.UnitCategory = 1;
        auto *list = qobject_cast<TFComboBox *>(TFFilterCtlFactory::createWidget(data, &bar));
        QVERIFY(list);
        emit list->comboBox()->textActivated(QStringLiteral("万元"));
    }
    QVERIFY(!spy.isEmpty());
    for (const QList<QVariant> &arguments : qAsConst(spy))
        QCOMPARE(arguments, (QVariantList{1004, 1}));
}

void tst_TFFilterCtlFactory::buttonIconsFollowTheSkin()
{
    TFCore *core = TFCore::instance();
    core->setSkinsRoot(QStringLiteral(SUBJECT_TEST_DATA_DIR "/../../skins"));
    QVERIFY(core->setCurrentSkin(QStringLiteral("white")));
    auto iconOf = [](TFPushbutton *control) { return control->button()->icon().pixmap(16, 16).toImage(); };
    auto skinImage = [](const char *skin, const char *file) {
        return QImage(QStringLiteral(SUBJECT_TEST_DATA_DIR "/../../skins/%1/subject/%2").arg(skin, file));
    };

    TFFilterWidget bar;
    auto *getData = qobject_cast<TFPushbutton *>(TFFilterCtlFactory::createWidget(row("SimpleButtonGetData"), &bar));
    auto *save = qobject_cast<TFPushbutton *>(TFFilterCtlFactory::createWidget(row("SimpleButtonSaveToExcel"), &bar));
    auto *sort = qobject_cast<TFPushbutton *>(TFFilterCtlFactory::createWidget(row("SimpleButtonSort"), &bar));
    const QImage whiteDownload = skinImage("white", "download_hover.png");
    const QImage whiteSave = skinImage("white", "save.png");
    QVERIFY(!whiteDownload.isNull() && whiteDownload != skinImage("black", "download_hover.png"));
    QCOMPARE(iconOf(getData), whiteDownload.convertToFormat(iconOf(getData).format()));
    QCOMPARE(iconOf(save), whiteSave.convertToFormat(iconOf(save).format()));
    QVERIFY(sort->button()->icon().isNull());

    // Only the query and sort kinds listen to a change of skin.
    QVERIFY(core->setCurrentSkin(QStringLiteral("black")));
    const QImage blackDownload = skinImage("black", "download_hover.png");
    QCOMPARE(iconOf(getData), blackDownload.convertToFormat(iconOf(getData).format()));
    QCOMPARE(iconOf(save), whiteSave.convertToFormat(iconOf(save).format()));
    QVERIFY(core->setCurrentSkin(QStringLiteral("white")));
}

QTEST_MAIN(tst_TFFilterCtlFactory)
#include "tst_tffiltersubwidgetfactory.moc"
