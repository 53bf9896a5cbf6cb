#include "filterrow.h"

#include "filterwidget/tfcacheconfig.h"
#include "filterwidget/tfcheckcombox.h"
#include "filterwidget/tfcombobox.h"

#include <QComboBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QToolButton>
#include <QtTest>

namespace {

QStringList itemsOf(const QComboBox *box)
{
    QStringList texts;
    for (int i = 0; i < box->count(); ++i)
        texts.append(box->itemText(i));
    return texts;
}

QListWidgetItem *itemNamed(const TFCheckCombox &control, const QString &text)
{
    const QList<QListWidgetItem *> found = control.listWidget()->findItems(text, Qt::MatchExactly);
    return found.value(0);
}

QStringList checkedItems(const TFCheckCombox &control)
{
    QStringList texts;
    for (int i = 0; i < control.listWidget()->count(); ++i) {
        if (control.listWidget()->item(i)->checkState() == Qt::Checked)
            texts.append(control.listWidget()->item(i)->text());
    }
    return texts;
}

} // namespace

class tst_ListControls : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();

    void comboBox_data();
    void comboBox();
    void unitChoice_data();
    void unitChoice();
    void checkList_data();
    void checkList();
    void ticking_data();
    void ticking();
    void longTextIsCut();
    void mouseTicks_data();
    void mouseTicks();
};

void tst_ListControls::initTestCase()
{
    TFCacheConfig::instance()->initWith(QJsonDocument::fromJson(R"([
        {"VALUE":"HD","NAME":"华东","TYPE":"AREA","TYPE_DESC":"地区","FILTER1":"CN"},
        {"VALUE":"HSI","NAME":"恒生指数","TYPE":"AREA","TYPE_DESC":"地区","FILTER1":"HK"},
        {"VALUE":"HB","NAME":"华北","TYPE":"AREA","TYPE_DESC":"地区","FILTER1":"CN"}])").array());
}

void tst_ListControls::cleanupTestCase()
{
    TFCacheConfig::instance()->clear();
}

void tst_ListControls::comboBox_data()
{
    QTest::addColumn<QString>("row");
    QTest::addColumn<QStringList>("items");
    QTest::addColumn<QString>("current");
    QTest::addColumn<QVariant>("value");    // invalid: the bar drops the control
    QTest::addColumn<QString>("label");

    const QString cities = R"("NameValues":"广州=GZ;上海=SH;北京=BJ")";
    QTest::newRow("pairs sorted by name; default found by value")
        << R"({"ClassName":"ComboBox","Caption":"城市","FieldName":"CITY",)" + cities + R"(,"DefualtValue":"=BJ"})"
        << QStringList{"上海", "北京", "广州"} << "北京" << QVariant("BJ") << "城市";
    QTest::newRow("default found by name")
        << R"({"ClassName":"ComboBox","Caption":"城市","FieldName":"CITY",)" + cities + R"(,"DefualtValue":"广州"})"
        << QStringList{"上海", "北京", "广州"} << "广州" << QVariant("GZ") << "城市";
    QTest::newRow("empty, broken and repeated pairs")
        << R"({"ClassName":"ComboBox","Caption":"城市","FieldName":"CITY","NameValues":";上海=SH;;北京;=x;上海=SH2;a=b=c;="})"
        << QStringList{"上海"} << "上海" << QVariant("SH2") << "城市";
    QTest::newRow("PROVINCE reports the text") << R"({"ClassName":"ComboBox","FieldName":"PROVINCE","NameValues":"北京=BJ"})"
                                               << QStringList{"北京"} << "北京" << QVariant("北京") << "";
    QTest::newRow("nothing to choose: no value") << R"({"ClassName":"ComboBox","FieldName":"CITY","Caption":"c"})"
                                                 << QStringList() << "" << QVariant() << "c";
    QTest::newRow("units of category 7, in table order")
        << R"({"ClassName":"UnitFactorCombobox","Caption":"单位","FieldName":"UNIT","UnitCategory":7,"DefualtValue":"BP"})"
        << QStringList{"原始值", "%", "‰", "BP"} << "BP" << QVariant() << "单位";
    QTest::newRow("a unit default outside the category")
        << R"({"ClassName":"UnitFactorCombobox","FieldName":"UNIT","UnitCategory":3,"DefualtValue":"=亿元"})"
        << QStringList{"张", "手（十张）", "百张", "万张", "亿张"} << "张" << QVariant() << "";
    QTest::newRow("literal entries make a unit list a plain list")
        << R"({"ClassName":"UnitFactorCombobox","FieldName":"UNIT","UnitCategory":1,"NameValues":"元=1"})"
        << QStringList{"元"} << "元" << QVariant("1") << "";
    QTest::newRow("AREA from the cached codes, literal entries dropped")
        << R"({"ClassName":"ComboBox","Caption":"地区","FieldName":"AREA","DataSource":"AREA","Filter":"CN","NameValues":"x=1","DefualtValue":"x"})"
        << QStringList{"华东", "华北"} << "华东" << QVariant("HD") << "地区";
    QTest::newRow("CST_NUM without a filter takes the whole type")
        << R"({"ClassName":"ComboBox","FieldName":"CST_NUM","DataSource":"AREA"})"
        << QStringList{"华东", "恒生指数", "华北"} << "华东" << QVariant("HD") << "";
    QTest::newRow("AREA without records: no label, an empty value")
        << R"({"ClassName":"ComboBox","Caption":"地区","FieldName":"AREA","DataSource":"NONE"})" << QStringList()
        << "" << QVariant("") << "";
}

void tst_ListControls::comboBox()
{
    QFETCH(QString, row);
    QFETCH(QStringList, items);
    QFETCH(QString, current);
    QFETCH(QVariant, value);
    QFETCH(QString, label);

    TFComboBox control(filterRow(row));
    QCOMPARE(itemsOf(control.comboBox()), items);
    QCOMPARE(control.comboBox()->currentText(), current);
    QCOMPARE(control.label()->text(), label);
    const FilterParam::Cntrl cntrl = control.getCntrl();
    QCOMPARE(cntrl.value, value);
    QCOMPARE(cntrl.value.isValid(), value.isValid());
    QCOMPARE(cntrl.key, filterRow(row).FieldName);
}

void tst_ListControls::unitChoice_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("emissions");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("category");

    QTest::newRow("a unit list signals twice") << "UnitFactorCombobox" << "万元" << 2 << 1004 << 1;
    QTest::newRow("an unknown unit gives -1") << "UnitFactorCombobox" << "万港元" << 2 << -1 << 1;
    QTest::newRow("a plain list signals once, without category") << "ComboBox" << "万元" << 1 << 1004 << -1;
}

void tst_ListControls::unitChoice()
{
    QFETCH(QString, className);
    QFETCH(QString, text);
    QFETCH(int, emissions);
    QFETCH(int, code);
    QFETCH(int, category);

    TFTableModelData::FilterData data;
    data.ClassName = className;
    data.FieldName = QStringLiteral("UNIT");
    data.UnitCategory = 1;
    TFComboBox control(data);
    QCOMPARE(control.isUnitList(), className == "UnitFactorCombobox");
    QSignalSpy spy(&control, &TFComboBox::signalCurrentIndexChanged);
    QTest::ignoreMessage(QtDebugMsg, qPrintable(QStringLiteral(" createConnects text  \"%1\"").arg(text)));
    if (emissions == 2)
        QTest::ignoreMessage(QtDebugMsg, qPrintable(QStringLiteral(" createConnects text  \"%1\"").arg(text)));
    emit control.comboBox()->textActivated(text);
    QCOMPARE(spy.count(), emissions);
    for (const QList<QVariant> &arguments : qAsConst(spy))
        QCOMPARE(arguments, (QList<QVariant>{code, category}));
}

void tst_ListControls::checkList_data()
{
    QTest::addColumn<QString>("nameValues");
    QTest::addColumn<QString>("defaultValue");
    QTest::addColumn<QString>("valueType");
    QTest::addColumn<QStringList>("items");
    QTest::addColumn<QStringList>("checked");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("value");        // invalid: no filter
    QTest::addColumn<int>("height");

    QTest::newRow("shown texts are the second pieces; a text finds no value")
        << "上交所=SH;深交所=SZ" << "" << "string" << QStringList{"All", "SH", "SZ"}
        << QStringList{"All", "SH", "SZ"} << "All" << QVariant(QVariantList{"", ""}) << 120;
    QTest::newRow("names that are their values")
        << "C=C;AAA=AAA;BB=BB" << "" << "string" << QStringList{"All", "AAA", "BB", "C"}
        << QStringList{"All", "AAA", "BB", "C"} << "All" << QVariant(QVariantList{"AAA", "BB", "C"}) << 150;
    QTest::newRow("decimal values become numbers") << "2019=2019;2020=2020" << "" << "Decimal"
                                                   << QStringList{"All", "2019", "2020"}
                                                   << QStringList{"All", "2019", "2020"} << "All"
                                                   << QVariant(QVariantList{2019.0, 2020.0}) << 120;
    QTest::newRow("as many defaults as entries tick all") << "A=A;B=B;C=C" << "A,C,B" << "string"
                                                          << QStringList{"All", "A", "B", "C"}
                                                          << QStringList{"All", "A", "B", "C"} << "All"
                                                          << QVariant(QVariantList{"A", "B", "C"}) << 150;
    QTest::newRow("a partial default is ticked once more") << "A=A;B=B;C=C" << "B" << "string"
                                                           << QStringList{"All", "A", "B", "C"}
                                                           << QStringList{"All", "A", "B", "C"} << "A;B;C;B"
                                                           << QVariant(QVariantList{"A", "B", "C", "B"}) << 150;
    QTest::newRow("empty, broken and repeated pairs") << ";;=;A=A;A=A;=B;C=;D=E=F" << "" << "string"
                                                      << QStringList{"All", "A"} << QStringList{"All", "A"} << "All"
                                                      << QVariant(QVariantList{"A"}) << 90;
    QTest::newRow("no list: no items, no filter") << "" << "A" << "string" << QStringList() << QStringList() << ""
                                                  << QVariant() << 0;
    QString twenty;
    QStringList names{"All"};
    QVariantList numbers;
    for (int i = 10; i < 30; ++i) {
        twenty += QStringLiteral("%1=%1;").arg(i);
        names.append(QString::number(i));
        numbers.append(double(i));
    }
    QTest::newRow("twenty entries: the list height stops at 510")
        << twenty << "" << "decimal" << names << names << "All" << QVariant(numbers) << 510;
}

void tst_ListControls::checkList()
{
    QFETCH(QString, nameValues);
    QFETCH(QString, defaultValue);
    QFETCH(QString, valueType);
    QFETCH(QStringList, items);
    QFETCH(QStringList, checked);
    QFETCH(QString, text);
    QFETCH(QVariant, value);
    QFETCH(int, height);

    TFTableModelData::FilterData data;
    data.ClassName = QStringLiteral("CheckComboBox");
    data.FieldName = QStringLiteral("MKT");
    data.Operator = QStringLiteral("IN");
    data.Caption = QStringLiteral("交易所");
    data.NameValues = nameValues;
    data.DefualtValue = defaultValue;
    data.ValueType = valueType;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("signalInitItems"));
    TFCheckCombox control(data);
    QCOMPARE(control.objectName(), QStringLiteral("CustomCheckCombobox"));
    QStringList shown;
    for (int i = 0; i < control.listWidget()->count(); ++i)
        shown.append(control.listWidget()->item(i)->text());
    QCOMPARE(shown, items);
    QCOMPARE(checkedItems(control), checked);
    QCOMPARE(control.fullText(), text);
    QCOMPARE(control.listWidget()->minimumHeight(), height);
    QCOMPARE(control.maximumWidth(), 300);
    QCOMPARE(control.label()->text(), items.isEmpty() ? QString() : QStringLiteral("交易所"));
    const FilterParam::Cntrl cntrl = control.getCntrl();
    QCOMPARE(cntrl.value, value);
    QCOMPARE(cntrl.key, value.isValid() ? QStringLiteral("MKT") : QString());
    if (value.isValid()) {
        QCOMPARE(cntrl.op, QStringLiteral("in"));
        QCOMPARE(cntrl.valueType, valueType.toLower() == "decimal" ? QStringLiteral("intlist")
                                                                   : QStringLiteral("stringList"));
    }
}

// Each step presses an item ("pressed" then "clicked", as a mouse does).
void tst_ListControls::ticking_data()
{
    QTest::addColumn<QStringList>("presses");
    QTest::addColumn<QStringList>("checked");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("value");

    QTest::newRow("untick one") << QStringList{"B"} << QStringList{"A", "C"} << "A;C" << QVariant(QVariantList{"A", "C"});
    QTest::newRow("in the order of ticking") << QStringList{"All", "C", "A"} << QStringList{"A", "C"} << "C;A"
                                             << QVariant(QVariantList{"C", "A"});
    QTest::newRow("ticking the last one ticks All") << QStringList{"B", "B"} << QStringList{"All", "A", "B", "C"}
                                                    << "All" << QVariant(QVariantList{"A", "C", "B"});
    QTest::newRow("unticking All: no filter") << QStringList{"All"} << QStringList() << "" << QVariant();
    QTest::newRow("All twice ticks every item") << QStringList{"All", "All"} << QStringList{"All", "A", "B", "C"}
                                                << "All" << QVariant(QVariantList{"A", "B", "C"});
}

void tst_ListControls::ticking()
{
    QFETCH(QStringList, presses);
    QFETCH(QStringList, checked);
    QFETCH(QString, text);
    QFETCH(QVariant, value);

    TFTableModelData::FilterData data;
    data.ClassName = QStringLiteral("CheckComboBox");
    data.FieldName = QStringLiteral("MKT");
    data.NameValues = QStringLiteral("A=A;B=B;C=C");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("signalInitItems"));
    TFCheckCombox control(data);
    for (const QString &press : qAsConst(presses)) {
        QListWidgetItem *item = itemNamed(control, press);
        QVERIFY(item);
        control.slotItemPressed(item);
        control.slotItemClicked(item);
    }
    QCOMPARE(checkedItems(control), checked);
    QCOMPARE(control.button()->text(), text);
    QCOMPARE(control.getCntrl().value, value);
}

void tst_ListControls::longTextIsCut()
{
    TFTableModelData::FilterData data;
    data.ClassName = QStringLiteral("CheckComboBox");
    data.NameValues = QStringLiteral("第一个很长的名称=第一个很长的名称;第二个很长的名称=第二个很长的名称;"
                                     "第三个很长的名称=第三个很长的名称;第四个很长的名称=第四个很长的名称");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("signalInitItems"));
    TFCheckCombox control(data);
    QListWidgetItem *item = itemNamed(control, QStringLiteral("第二个很长的名称"));
    control.slotItemPressed(item);
    QCOMPARE(control.fullText(), QStringLiteral("第一个很长的名称;第三个很长的名称;第四个很长的名称"));
    const QFontMetrics metrics(control.button()->font());
    QVERIFY(metrics.horizontalAdvance(control.fullText()) >= 210);
    QVERIFY(control.button()->text().endsWith(QChar(0x2026)));
    QVERIFY(metrics.horizontalAdvance(control.button()->text()) <= 210);
}

void tst_ListControls::mouseTicks_data()
{
    QTest::addColumn<int>("x");     // where in the item's row the click lands
    QTest::newRow("on the tick box") << 10;
    QTest::newRow("on the text") << 60;
}

// A user opens the list and clicks an item: it flips once, and the menu
// stays open for the next click.
void tst_ListControls::mouseTicks()
{
    QFETCH(int, x);
    TFTableModelData::FilterData data;
    data.ClassName = QStringLiteral("CheckComboBox");
    data.FieldName = QStringLiteral("MKT");
    data.NameValues = QStringLiteral("A=A;B=B;C=C");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("signalInitItems"));
    TFCheckCombox control(data);
    control.show();
    QVERIFY(QTest::qWaitForWindowExposed(&control));
    control.menu()->popup(control.button()->mapToGlobal(QPoint(0, control.button()->height())));
    QTRY_VERIFY(control.menu()->isVisible());
    QListWidgetItem *item = itemNamed(control, QStringLiteral("B"));
    const QRect rect = control.listWidget()->visualItemRect(item);
    QTest::mouseClick(control.listWidget()->viewport(), Qt::LeftButton, {}, QPoint(rect.left() + x, rect.center().y()));
    QCOMPARE(checkedItems(control), (QStringList{"A", "C"}));
    QCOMPARE(control.button()->text(), QStringLiteral("A;C"));
    QVERIFY(control.menu()->isVisible());
    control.menu()->hide();
}

QTEST_MAIN(tst_ListControls)
#include "tst_listcontrols.moc"
