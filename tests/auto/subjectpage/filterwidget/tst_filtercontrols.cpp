#include "filterrow.h"

#include "expression/tfcustommath.h"
#include "filterwidget/tfcacheconfig.h"
#include "filterwidget/tfcheckcombox.h"
#include "filterwidget/tfcombobox.h"
#include "filterwidget/tffiltersubwidgetfactory.h"
#include "filterwidget/tffilterwidget.h"

#include <QAction>
#include <QComboBox>
#include <QDateEdit>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QSpinBox>
#include <QToolButton>
#include <QtTest>

#include <ctime>

namespace {

// A row with the usual caption; `more` adds further "key":value pairs.
QString cfg(const QString &cls, const QString &field, const QString &op, const QString &type, const QString &def,
            const QString &more = QString())
{
    return QStringLiteral(R"({"ClassName":"%1","Caption":"标题","FieldName":"%2","Operator":"%3","ValueType":"%4",)"
                          R"("DefualtValue":"%5"%6})")
        .arg(cls, field, op, type, def, more.isEmpty() ? QString() : QLatin1Char(',') + more);
}

// Texts of a list; long ones as first, second, last and the count.
QString texts(QStringList items)
{
    if (items.size() > 6)
        items = QStringList{items.at(0), items.at(1), QStringLiteral("…"), items.last(),
                            QStringLiteral("(%1)").arg(items.size())};
    return items.join(QLatin1Char('|'));
}

// What the user sees of a control, part by part: captions, the current
// entry of each list with its entries, ticks, texts, dates, numbers/steps.
QString shown(const QWidget *control)
{
    QStringList parts;
    for (QWidget *w : control->findChildren<QWidget *>()) {
        if (qobject_cast<QComboBox *>(w->parentWidget()) || qobject_cast<QAbstractSpinBox *>(w->parentWidget()))
            continue;
        if (auto *label = qobject_cast<QLabel *>(w)) {
            if (!label->text().isEmpty())
                parts << label->text();
        } else if (auto *box = qobject_cast<QComboBox *>(w)) {
            QStringList items;
            for (int i = 0; i < box->count(); ++i)
                items << box->itemText(i);
            parts << box->currentText() + '{' + texts(items) + '}'
                         + (box->minimumWidth() == box->maximumWidth() ? '<' + QString::number(box->maximumWidth())
                                                                        : QString());
        } else if (auto *date = qobject_cast<QDateEdit *>(w)) {
            parts << date->date().toString(Qt::ISODate);
        } else if (auto *spin = qobject_cast<QSpinBox *>(w)) {
            parts << QStringLiteral("%1/%2").arg(spin->value()).arg(spin->singleStep());
        } else if (auto *edit = qobject_cast<QLineEdit *>(w)) {
            parts << '\'' + edit->text() + '\'';
        } else if (auto *button = qobject_cast<QToolButton *>(w)) {
            parts << '[' + button->text() + ']';
        } else if (auto *list = qobject_cast<QListWidget *>(w)) {
            QStringList items;
            for (int i = 0; i < list->count(); ++i)
                items << (list->item(i)->checkState() == Qt::Checked ? "+" : "") + list->item(i)->text();
            parts << '(' + texts(items) + ")^" + QString::number(list->minimumHeight());
        } else if (auto *menu = qobject_cast<QMenu *>(w)) {
            QStringList items;
            for (QAction *action : menu->actions()) {
                if (!action->text().isEmpty())
                    items << (action->isChecked() ? "+" : "") + action->text();
            }
            if (!items.isEmpty())
                parts << '{' + texts(items) + '}';
        }
    }
    return parts.join(QLatin1Char(' '));
}

// "key op valueType multi value", the value as compact JSON so that its
// type shows: "5" is text, 5 a number; empty when the control sets nothing.
QString describe(const FilterParam::Cntrl &cntrl)
{
    if (cntrl.key.isEmpty())
        return QString();
    QString value = QString::fromUtf8(
        QJsonDocument(QJsonArray{QJsonValue::fromVariant(cntrl.value)}).toJson(QJsonDocument::Compact));
    return QStringLiteral("%1 %2 %3 %4 %5")
        .arg(cntrl.key, cntrl.op, cntrl.valueType, cntrl.multiField ? "multi" : "single", value.mid(1, value.size() - 2));
}

template<typename T>
T *nth(QWidget *control, const QString &index)
{
    QList<T *> found;
    for (T *w : control->findChildren<T *>()) {
        if (!qobject_cast<QComboBox *>(w->parentWidget()) && !qobject_cast<QAbstractSpinBox *>(w->parentWidget()))
            found << w;
    }
    return found.value(index.toInt());
}

} // namespace

class tst_FilterControls : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void control_data();
    void control();
    void serviceDateTextKeepsTheZone_data();
    void serviceDateTextKeepsTheZone();
    void unitChoice_data();
    void unitChoice();
    void longTextIsCut();
    void mouseTicks_data();
    void mouseTicks();

private:
    QByteArray m_tz;
};

void tst_FilterControls::initTestCase()
{
    // Dates go out as local times with the zone's offset.
    m_tz = qgetenv("TZ");
    qputenv("TZ", "Asia/Shanghai");
    tzset();
    TFCustomMath::instance()->setClock([] { return QDateTime(QDate(2024, 6, 15), QTime(10, 30)); });
    TFCacheConfig::instance()->initWith(QJsonDocument::fromJson(R"([
        {"VALUE":"HD","NAME":"华东","TYPE":"AREA","TYPE_DESC":"地区","FILTER1":"CN"},
        {"VALUE":"HSI","NAME":"恒生指数","TYPE":"AREA","TYPE_DESC":"地区","FILTER1":"HK"},
        {"VALUE":"HB","NAME":"华北","TYPE":"AREA","TYPE_DESC":"地区","FILTER1":"CN"}])").array());
}

void tst_FilterControls::cleanupTestCase()
{
    TFCacheConfig::instance()->clear();
    TFCustomMath::instance()->setClock(TFCustomMath::Clock());
    if (m_tz.isNull())
        qunsetenv("TZ");
    else
        qputenv("TZ", m_tz);
    tzset();
}

// Each kind of control from its row: what it shows, after the user's steps
// ("text:T", "date:N:DAY", "spin:N:V", "box:N:TEXT", "tick:TEXT" pressing a
// list item, "menu:TEXT" choosing a menu entry), and what it reports.
void tst_FilterControls::control_data()
{
    QTest::addColumn<QString>("row");
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("report");
    const QStringList none;

    // Hidden holders of a value.
    QTest::newRow("label: decimal list") << cfg("VirtualCntrl", "X", "IN", "decimal", "1;2;;3") << none << "" << "X in intlist single [1,2,3]";
    QTest::newRow("label: text list") << cfg("VirtualCntrl", "X", "NotIn", "string", "a;b") << none << "" << R"(X nin stringList single ["a","b"])";
    QTest::newRow("label: parameter loses its =") << cfg("F9SecuIdCntrl", "X", "=", "decimal", "=12", R"("ParameterCategory":1)") << none << ""
        << R"(X == decimal single "12")";
    QTest::newRow("label: filter keeps its =") << cfg("F9SecuIdCntrl", "X", "=", "decimal", "=12", R"("ParameterCategory":2)") << none << ""
        << R"(X == decimal single "=12")";
    QTest::newRow("label: dynamic default waits for the bar")
        << cfg("VirtualCntrl", "Y", "<=", "decimal", "=$ofyear([报告日])", R"("ParameterCategory":1)") << none << ""
        << R"x(Y <= decimal single "=$ofyear([报告日])")x";
    QTest::newRow("label: date") << cfg("VirtualCntrl", "D", "<>", "DateTime", "2020-07-30") << none << ""
        << R"x(D != DateTime single "/Date(1596038400000+0800)")x";
    QTest::newRow("label: short date") << cfg("VirtualCntrl", "D", "", "datetime", "2020-7-3") << none << ""
        << R"x(D == datetime single "/Date(1593705600000+0800)")x";
    QTest::newRow("label: unreadable date") << cfg("VirtualCntrl", "D", "and", "datetime", "30.07.2020") << none << ""
        << R"(D && datetime single "30.07.2020")";
    QTest::newRow("label: operator word has case") << cfg("VirtualCntrl", "X", "like", "string", "a") << none << "" << R"(X == string single "a")";

    // Text box.
    QTest::newRow("text: keywords when no field") << cfg("KeywordsBox", "", "LIKE", "string", "") << none << "标题 ''"
        << R"(keywords like string single "")";
    QTest::newRow("text: default as it stands") << cfg("TextEdit", "CODE", "LIKE", "string", "=60%") << none << "标题 '=60%'"
        << R"(CODE like string single "=60%")";
    QTest::newRow("text: IN of numbers goes out as texts") << cfg("TextEdit", "N", "IN", "Decimal", "1,2,,3") << none << "标题 '1,2,,3'"
        << R"(N in intlist single ["1","2","3"])";
    QTest::newRow("text: IN of typed texts") << cfg("TextEdit", "S", "IN", "string", "") << QStringList{"text:x,,y"} << "标题 'x,,y'"
        << R"(S in stringList single ["x","y"])";

    // Date and date range.
    QTest::newRow("date: end of the day, also for >=") << cfg("DateEdit", "D", ">=", "DateTime", "=date'2024-01-01'") << none << "标题 2024-01-01"
        << R"(D >= DateTime single "2024-01-01 23:59:59")";
    QTest::newRow("date: unreadable keeps the editor's own day") << cfg("DateEdit", "D", "<", "DateTime", "=") << none << "标题 2000-01-01"
        << R"(D < DateTime single "2000-01-01 23:59:59")";
    QTest::newRow("date: no functions") << cfg("DateEdit", "D", "<", "DateTime", "$today()") << none << "标题 2000-01-01"
        << R"(D < DateTime single "2000-01-01 23:59:59")";
    QTest::newRow("range: two dates") << cfg("DateTimeInterval", "T", "=", "DateTime", "=date'2020-01-01';=date'2020-03-31'") << none
        << "标题 2020-01-01 一 2020-03-31" << R"(T >=,<= DateTime multi "2020-01-01 00:00:00,2020-03-31 23:59:59")";
    QTest::newRow("range: functions") << cfg("DateTimeInterval", "T", "", "DateTime", "$adddays(-30);$today()") << none
        << "标题 2024-05-16 一 2024-06-15" << R"(T >=,<= DateTime multi "2024-05-16 00:00:00,2024-06-15 23:59:59")";
    QTest::newRow("range: date and today") << cfg("DateTimeInterval", "T", "", "DateTime", "=date'2020-01-01';$today()") << none
        << "标题 2020-01-01 一 2024-06-15" << R"(T >=,<= DateTime multi "2020-01-01 00:00:00,2024-06-15 23:59:59")";
    QTest::newRow("range: one part is today twice") << cfg("DateTimeInterval", "T", "", "DateTime", "=date'2020-01-01'") << none
        << "标题 2024-06-15 一 2024-06-15" << R"(T >=,<= DateTime multi "2024-06-15 00:00:00,2024-06-15 23:59:59")";
    QTest::newRow("range: start after end raises the end") << cfg("DateTimeInterval", "T", "", "DateTime", "date'2020-05-01';date'2020-01-01'")
        << none << "标题 2020-05-01 一 2020-05-01" << R"(T >=,<= DateTime multi "2020-05-01 00:00:00,2020-05-01 23:59:59")";
    QTest::newRow("range: a start moved past the end pulls the end along")
        << cfg("DateTimeInterval", "T", "", "DateTime", "date'2020-01-01';date'2020-01-31'") << QStringList{"date:0:2020-03-01"}
        << "标题 2020-03-01 一 2020-03-01" << R"(T >=,<= DateTime multi "2020-03-01 00:00:00,2020-03-01 23:59:59")";
    QTest::newRow("range: unknown function leaves the editor") << cfg("DateTimeInterval", "T", "", "DateTime", "$nosuch(1);date'2020-01-01'") << none
        << "标题 2000-01-01 一 2020-01-01" << R"(T >=,<= DateTime multi "2000-01-01 00:00:00,2020-01-01 23:59:59")";

    // Number range; its step is the second piece of its parameters.
    QTest::newRow("numbers: 0 and 0 set nothing") << cfg("DecimalTextEditInterval", "P", "", "decimal", "0;0") << none << "标题 0/1 - 0/1" << "";
    QTest::newRow("numbers: one part sets nothing") << cfg("DecimalTextEditInterval", "P", "", "decimal", "7") << none << "标题 0/1 - 0/1" << "";
    QTest::newRow("numbers: typed end") << cfg("DecimalTextEditInterval", "P", "=", "decimal", "0;0") << QStringList{"spin:1:5"} << "标题 0/1 - 5/1"
        << R"(P >=,<= decimal multi "0,5")";
    QTest::newRow("numbers: no order check; step") << cfg("DecimalTextEditInterval", "P", "", "decimal", "=5;=-3", R"("ControlParameters":"Step=5")")
        << none << "标题 5/5 - -3/5" << R"(P >=,<= decimal multi "5,-3")";
    QTest::newRow("numbers: clamped; step 0 counts as one")
        << cfg("DecimalTextEditInterval", "P", "", "decimal", "-20000;20000", R"("ControlParameters":"Step=0")") << none << "标题 -10000/1 - 10000/1"
        << R"(P >=,<= decimal multi "-10000,10000")";
    QTest::newRow("numbers: step without =") << cfg("DecimalTextEditInterval", "P", "", "decimal", "1;2", R"("ControlParameters":"5")") << none
        << "标题 1/1 - 2/1" << R"(P >=,<= decimal multi "1,2")";
    QTest::newRow("numbers: step not a number") << cfg("DecimalTextEditInterval", "P", "", "decimal", "1;2", R"("ControlParameters":"Step=x")")
        << none << "标题 1/1 - 2/1" << R"(P >=,<= decimal multi "1,2")";
    QTest::newRow("numbers: step, second part of three")
        << cfg("DecimalTextEditInterval", "P", "", "decimal", "1;2", R"("ControlParameters":"a=3=9")") << none << "标题 1/3 - 2/3"
        << R"(P >=,<= decimal multi "1,2")";

    // Buttons set no filter.
    QTest::newRow("button") << cfg("SimpleButtonGetData", "B", "=", "string", "x") << none << "[标题]" << "";

    // Lists of literal pairs and of cached codes.
    const QString cities = R"("NameValues":"广州=GZ;上海=SH;北京=BJ")";
    QTest::newRow("list: pairs sorted by name; default found by value") << cfg("ComboBox", "CITY", "", "string", "=BJ", cities) << none
        << "北京{上海|北京|广州} 标题" << R"(CITY == string single "BJ")";
    QTest::newRow("list: default found by name") << cfg("ComboBox", "CITY", "", "string", "广州", cities) << none << "广州{上海|北京|广州} 标题"
        << R"(CITY == string single "GZ")";
    QTest::newRow("list: empty, broken and repeated pairs")
        << cfg("ComboBox", "CITY", "", "string", "", R"("NameValues":";上海=SH;;北京;=x;上海=SH2;a=b=c;=")") << none << "上海{上海} 标题"
        << R"(CITY == string single "SH2")";
    QTest::newRow("list: PROVINCE reports the text") << cfg("ComboBox", "PROVINCE", "", "string", "", R"("NameValues":"北京=BJ")") << none
        << "北京{北京} 标题" << R"(PROVINCE == string single "北京")";
    QTest::newRow("list: nothing to choose, no value") << cfg("ComboBox", "CITY", "", "string", "") << none << "{} 标题" << "CITY == string single null";
    QTest::newRow("units of category 7, in table order") << cfg("UnitFactorCombobox", "UNIT", "", "string", "BP", R"("UnitCategory":7)") << none
        << "BP{原始值|%|‰|BP} 标题" << "UNIT == string single null";
    QTest::newRow("units: a default outside the category") << cfg("UnitFactorCombobox", "UNIT", "", "string", "=亿元", R"("UnitCategory":3)") << none
        << "张{张|手（十张）|百张|万张|亿张} 标题" << "UNIT == string single null";
    QTest::newRow("units: literal entries make a plain list")
        << cfg("UnitFactorCombobox", "UNIT", "", "string", "", R"("UnitCategory":1,"NameValues":"元=1")") << none << "元{元} 标题"
        << R"(UNIT == string single "1")";
    QTest::newRow("codes: AREA cached, literal entries dropped")
        << cfg("ComboBox", "AREA", "", "string", "x", R"("DataSource":"AREA","Filter":"CN","NameValues":"x=1")") << none << "华东{华东|华北} 标题"
        << R"(AREA == string single "HD")";
    QTest::newRow("codes: CST_NUM without a filter takes the whole type") << cfg("ComboBox", "CST_NUM", "", "string", "", R"("DataSource":"AREA")")
        << none << "华东{华东|恒生指数|华北} 标题" << R"(CST_NUM == string single "HD")";
    QTest::newRow("codes: AREA without records, no label, an empty value") << cfg("ComboBox", "AREA", "", "string", "", R"("DataSource":"NONE")")
        << none << "{}" << R"(AREA == string single "")";

    // Check lists: shown texts are the second pieces, a value is looked up by text.
    const QString abc = R"("NameValues":"A=A;B=B;C=C")";
    QTest::newRow("check: a text finds no value") << cfg("CheckComboBox", "MKT", "IN", "string", "", R"("NameValues":"上交所=SH;深交所=SZ")") << none
        << "[All] (+All|+SH|+SZ)^120 标题" << R"(MKT in stringList single ["",""])";
    QTest::newRow("check: names that are their values") << cfg("CheckComboBox", "MKT", "IN", "string", "", R"("NameValues":"C=C;AAA=AAA;BB=BB")")
        << none << "[All] (+All|+AAA|+BB|+C)^150 标题" << R"(MKT in stringList single ["AAA","BB","C"])";
    QTest::newRow("check: decimal values become numbers") << cfg("CheckComboBox", "MKT", "IN", "Decimal", "", R"("NameValues":"2019=2019;2020=2020")")
        << none << "[All] (+All|+2019|+2020)^120 标题" << "MKT in intlist single [2019,2020]";
    QTest::newRow("check: as many defaults as entries tick all") << cfg("CheckComboBox", "MKT", "IN", "string", "A,C,B", abc) << none
        << "[All] (+All|+A|+B|+C)^150 标题" << R"(MKT in stringList single ["A","B","C"])";
    QTest::newRow("check: a partial default is ticked once more") << cfg("CheckComboBox", "MKT", "IN", "string", "B", abc) << none
        << "[A;B;C;B] (+All|+A|+B|+C)^150 标题" << R"(MKT in stringList single ["A","B","C","B"])";
    QTest::newRow("check: empty, broken and repeated pairs")
        << cfg("CheckComboBox", "MKT", "IN", "string", "", R"("NameValues":";;=;A=A;A=A;=B;C=;D=E=F")") << none << "[All] (+All|+A)^90 标题"
        << R"(MKT in stringList single ["A"])";
    QTest::newRow("check: no list, no items, no filter") << cfg("CheckComboBox", "MKT", "IN", "string", "A") << none << "[] ()^0" << "";
    QString twenty;
    QStringList numbers;
    for (int i = 10; i < 30; ++i) {
        twenty += QStringLiteral("%1=%1;").arg(i);
        numbers << QString::number(i);
    }
    QTest::newRow("check: twenty entries, the list height stops at 510")
        << cfg("CheckComboBox", "MKT", "IN", "decimal", "", R"("NameValues":")" + twenty + '"') << none << "[All] (+All|+10|…|+29|(21))^510 标题" << "MKT in intlist single [" + numbers.join(',') + ']';
    QTest::newRow("check: untick one") << cfg("CheckComboBox", "MKT", "IN", "string", "", abc) << QStringList{"tick:B"}
        << "[A;C] (All|+A|B|+C)^150 标题" << R"(MKT in stringList single ["A","C"])";
    QTest::newRow("check: in the order of ticking") << cfg("CheckComboBox", "MKT", "IN", "string", "", abc)
        << QStringList{"tick:All", "tick:C", "tick:A"} << "[C;A] (All|+A|B|+C)^150 标题" << R"(MKT in stringList single ["C","A"])";
    QTest::newRow("check: ticking the last one ticks All") << cfg("CheckComboBox", "MKT", "IN", "string", "", abc) << QStringList{"tick:B", "tick:B"}
        << "[All] (+All|+A|+B|+C)^150 标题" << R"(MKT in stringList single ["A","C","B"])";
    QTest::newRow("check: unticking All, no filter") << cfg("CheckComboBox", "MKT", "IN", "string", "", abc) << QStringList{"tick:All"}
        << "[] (All|A|B|C)^150 标题" << "";
    QTest::newRow("check: All twice ticks every item") << cfg("CheckComboBox", "MKT", "IN", "string", "", abc) << QStringList{"tick:All", "tick:All"}
        << "[All] (+All|+A|+B|+C)^150 标题" << R"(MKT in stringList single ["A","B","C"])";

    // Years.
    QTest::newRow("year: pairs; the first is the default") << cfg("SimpleYear", "YEAR", ">=", "decimal", "", R"("NameValues":"2019年=1;2020年=2")")
        << none << "[2019年] {2019年|2020年} 标题" << R"(YEAR >= decimal single "2019")";
    QTest::newRow("year: no list, this year down to 1999") << cfg("SimpleYear", "YEAR", ">=", "decimal", "") << none
        << "[2024年] {2024年|2023年|…|1999年|(26)} 标题" << R"(YEAR >= decimal single "2024")";
    QTest::newRow("year: a default counts by its first four characters") << cfg("SimpleYear", "YEAR", ">=", "decimal", "=2018-05-31") << none
        << "[2018年] {2024年|2023年|…|1999年|(26)} 标题" << R"(YEAR >= decimal single "2018")";
    QTest::newRow("year: a choice replaces the text") << cfg("SimpleYear", "YEAR", ">=", "decimal", "") << QStringList{"menu:2021年"}
        << "[2021年] {2024年|2023年|…|1999年|(26)} 标题" << R"(YEAR >= decimal single "2021")";
    QTest::newRow("year: two date bounds leave the menu empty")
        << cfg("SimpleYear", "YEAR", ">=", "decimal", "", R"("NameValues":"=date'2019-01-01';=date'2021-06-30'")") << none << "[] 标题"
        << R"(YEAR >= decimal single "")";
    QTest::newRow("year: two function bounds leave the menu empty")
        << cfg("SimpleYear", "YEAR", ">=", "decimal", "", R"x("NameValues":"$addyears(-3);$addyears(0)")x") << none << "[] 标题"
        << R"(YEAR >= decimal single "")";
    QTest::newRow("year: one bound is no range, the default years")
        << cfg("SimpleYear", "YEAR", ">=", "decimal", "", R"("NameValues":"=date'2019-01-01'")") << none << "[2024年] {2024年|2023年|…|1999年|(26)} 标题"
        << R"(YEAR >= decimal single "2024")";
    QTest::newRow("years: the default is ticked") << cfg("MultYear", "YEAR", "=", "string", "=2020") << none
        << "[2020年] {2024年|2023年|…|1999年|(26)} 标题" << R"(YEAR in stringList single ["2020"])";
    QTest::newRow("years: ticks in the order of choosing") << cfg("MultYear", "YEAR", "=", "string", "=2020")
        << QStringList{"menu:2022年", "menu:2019年", "menu:2020年"} << "[2022年;2019年] {2024年|2023年|…|1999年|(26)} 标题"
        << R"(YEAR in stringList single ["2022","2019"])";
    QTest::newRow("years: nothing chosen reports an empty list") << cfg("MultYear", "YEAR", "=", "string", "=1900") << none
        << "[] {2024年|2023年|…|1999年|(26)} 标题" << "YEAR in stringList single []";

    // Report dates: a year list and a period list.
    const auto report = [](const char *cls, const QString &def, int category, const QString &more = QString()) {
        return cfg(cls, "END_DATE", "<=", "", def, QStringLiteral(R"("ParameterCategory":%1)").arg(category)
                                                        + (more.isEmpty() ? QString() : ',' + more));
    };
    QTest::newRow("report: half year selected") << report("ReportDateSimple5", "=date'2019-06-30'", 1) << none
        << "2019年{2024年|2023年|…|1992年|(33)} 半年报{半年报|年度} 标题" << R"(END_DATE <=  single "2019-06-30")";
    QTest::newRow("report: a month no period ends in selects nothing") << report("ReportDateSimple5", "=date'2019-03-31'", 1) << none
        << "2019年{2024年|2023年|…|1992年|(33)} 半年报{半年报|年度} 标题" << R"(END_DATE <=  single "2019-06-30")";
    QTest::newRow("report: third quarter") << report("ReportDateSimple2", "=date'2019-09-30'", 1) << none
        << "2019年{2024年|2023年|…|1992年|(33)} 三季度{一季度|二季度|三季度|四季度} 标题" << R"(END_DATE <=  single "2019-09-30")";
    QTest::newRow("report: december, the first period of twelve months") << report("ReportDateSimple2", "=date'2018-12-31'", 1) << none
        << "2018年{2024年|2023年|…|1992年|(33)} 四季度{一季度|二季度|三季度|四季度} 标题" << R"(END_DATE <=  single "2018-12-31")";
    QTest::newRow("report: any other class") << report("ReportDateSimple", "=date'2019-12-31'", 1) << none
        << "2019年{2024年|2023年|…|1992年|(33)} 年度{一季度|半年报|三季度|年度} 标题" << R"(END_DATE <=  single "2019-12-31")";
    QTest::newRow("report: service date text") << report("ReportDateSimple5", "=date'2019-06-30'", 2) << none
        << "2019年{2024年|2023年|…|1992年|(33)} 半年报{半年报|年度} 标题" << R"x(END_DATE <=  single "/Date(1561824000000+0800)")x";
    QTest::newRow("report: other category, empty") << report("ReportDateSimple5", "=date'2019-06-30'", 0) << none
        << "2019年{2024年|2023年|…|1992年|(33)} 半年报{半年报|年度} 标题" << R"(END_DATE <=  single "")";
    QTest::newRow("report: unreadable date, first entries") << report("ReportDateSimple2", "=date'2019-13-01'", 1) << none
        << "2024年{2024年|2023年|…|1992年|(33)} 一季度{一季度|二季度|三季度|四季度} 标题" << R"(END_DATE <=  single "2024-03-31")";
    QTest::newRow("report: function default is worked out, not applied") << report("ReportDateSimple2", "=$fndgetlatestquarterlyreport()", 1) << none
        << "2024年{2024年|2023年|…|1992年|(33)} 一季度{一季度|二季度|三季度|四季度} 标题" << R"(END_DATE <=  single "2024-03-31")";
    QTest::newRow("report: pairs fill both lists; an unknown period is the year before")
        << report("ReportDateSimple5", "", 1, R"("NameValues":"2019年=2019;2020年=2020;;=x")") << none
        << "2019年{2019年|2020年} 2019年{2019年|2020年|半年报|年度} 标题" << R"(END_DATE <=  single "2018-12-31")";

    // Months.
    QTest::newRow("months: as built, the first entries") << cfg("YearMonthInterval", "IGNORED", "", "YM", "", R"("Width":70)") << none
        << "2024年{2024年|2023年|…|1999年|(26)}<70 1月{1月|2月|…|12月|(12)}<70 2024年{2024年|2023年|…|1999年|(26)}<70 1月{1月|2月|…|12月|(12)}<70 标题 -"
        << R"(YM >=,<=  multi "'2024-1','2024-1'")";
    QTest::newRow("months: chosen range") << cfg("YearMonthInterval", "IGNORED", "", "YM", "", R"("Width":70)")
        << QStringList{"box:0:2019年", "box:1:1月", "box:2:2020年", "box:3:12月"}
        << "2019年{2024年|2023年|…|1999年|(26)}<70 1月{1月|2月|…|12月|(12)}<70 2020年{2024年|2023年|…|1999年|(26)}<70 12月{1月|2月|…|12月|(12)}<70 标题 -"
        << R"(YM >=,<=  multi "'2019-1','2020-12'")";
    QTest::newRow("months: listed years, no width leaves no room") << cfg("YearMonthInterval", "IGNORED", "", "YM", "", R"("NameValues":"2019;2018")")
        << none << "2019{2019|2018}<0 1月{1月|2月|…|12月|(12)}<0 2019{2019|2018}<0 1月{1月|2月|…|12月|(12)}<0 标题 -"
        << R"(YM >=,<=  multi "'2019-1','2019-1'")";
    QTest::newRow("month: date default") << cfg("YearMonthSimple", "YM", ">=", "string", "=date'2019-03-15'") << none
        << "2019年{2024年|2023年|…|1992年|(33)} 3月{1月|2月|…|12月|(12)} 标题" << R"(YM >= string single "201903")";
    QTest::newRow("month: plain date") << cfg("YearMonthSimple", "YM", ">=", "string", "2020-11-01") << none
        << "2020年{2024年|2023年|…|1992年|(33)} 11月{1月|2月|…|12月|(12)} 标题" << R"(YM >= string single "202011")";
    QTest::newRow("month: no default, first entries") << cfg("YearMonthSimple", "YM", ">=", "string", "") << none
        << "2024年{2024年|2023年|…|1992年|(33)} 1月{1月|2月|…|12月|(12)} 标题" << R"(YM >= string single "202401")";
    QTest::newRow("month: unreadable, first entries") << cfg("YearMonthSimple", "YM", ">=", "string", "2019-3-1") << none
        << "2024年{2024年|2023年|…|1992年|(33)} 1月{1月|2月|…|12月|(12)} 标题" << R"(YM >= string single "202401")";
    QTest::newRow("month: out of the list, first entries") << cfg("YearMonthSimple", "YM", ">=", "string", "=date'1980-05-01'") << none
        << "2024年{2024年|2023年|…|1992年|(33)} 5月{1月|2月|…|12月|(12)} 标题" << R"(YM >= string single "202405")";
}

void tst_FilterControls::control()
{
    QFETCH(QString, row);
    QFETCH(QStringList, steps);
    QFETCH(QString, shown);
    QFETCH(QString, report);

    const TFTableModelData::FilterData data = filterRow(row);
    if (data.ClassName == QLatin1String("CheckComboBox"))
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("signalInitItems"));
    TFFilterWidget bar;
    TFBaseFilterWidget *control = TFFilterCtlFactory::createWidget(data, &bar);
    QVERIFY(control);
    for (const QString &step : qAsConst(steps)) {
        const QStringList part = step.split(QLatin1Char(':'));
        if (part.at(0) == "text")
            nth<QLineEdit>(control, "0")->setText(part.at(1));
        else if (part.at(0) == "date")
            nth<QDateEdit>(control, part.at(1))->setDate(QDate::fromString(part.at(2), Qt::ISODate));
        else if (part.at(0) == "spin")
            nth<QSpinBox>(control, part.at(1))->setValue(part.at(2).toInt());
        else if (part.at(0) == "box")
            nth<QComboBox>(control, part.at(1))->setCurrentText(part.at(2));
        else if (auto *check = qobject_cast<TFCheckCombox *>(control); check && part.at(0) == "tick") {
            QListWidgetItem *item = check->listWidget()->findItems(part.at(1), Qt::MatchExactly).value(0);
            QVERIFY2(item, qPrintable(step));
            check->slotItemPressed(item);
            check->slotItemClicked(item);
        } else {
            QAction *action = nullptr;
            for (QMenu *menu : control->findChildren<QMenu *>()) {
                for (QAction *a : menu->actions())
                    action = a->text() == part.at(1) ? a : action;
            }
            QVERIFY2(action, qPrintable(step));
            action->trigger();
        }
    }
    QCOMPARE(::shown(control), shown);
    QCOMPARE(describe(control->getCntrl()), report);
}

void tst_FilterControls::serviceDateTextKeepsTheZone_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("text");

    QTest::newRow("east") << QByteArray("Asia/Shanghai") << "/Date(1596038400000+0800)";
    QTest::newRow("west, summer") << QByteArray("America/New_York") << "/Date(1596081600000-0400)";
    QTest::newRow("half hour") << QByteArray("Asia/Kolkata") << "/Date(1596047400000+0530)";
    QTest::newRow("utc") << QByteArray("UTC") << "/Date(1596067200000+0000)";
}

void tst_FilterControls::serviceDateTextKeepsTheZone()
{
    QFETCH(QByteArray, zone);
    QFETCH(QString, text);

    qputenv("TZ", zone);
    tzset();
    TFFilterWidget bar;
    TFBaseFilterWidget *control =
        TFFilterCtlFactory::createWidget(filterRow(cfg("VirtualCntrl", "D", "", "DateTime", "2020-07-30")), &bar);
    const QString value = control->getCntrl().value.toString();
    qputenv("TZ", "Asia/Shanghai");
    tzset();
    QCOMPARE(value, text);
}

void tst_FilterControls::unitChoice_data()
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

void tst_FilterControls::unitChoice()
{
    QFETCH(QString, className);
    QFETCH(QString, text);
    QFETCH(int, emissions);
    QFETCH(int, code);
    QFETCH(int, category);

    TFComboBox control(filterRow(cfg(className, "UNIT", "", "", "", R"("UnitCategory":1)")));
    QCOMPARE(control.isUnitList(), className == "UnitFactorCombobox");
    QSignalSpy spy(&control, &TFComboBox::signalCurrentIndexChanged);
    emit control.comboBox()->textActivated(text);
    QCOMPARE(spy.count(), emissions);
    for (const QList<QVariant> &arguments : qAsConst(spy))
        QCOMPARE(arguments, (QList<QVariant>{code, category}));
}

void tst_FilterControls::longTextIsCut()
{
    const QString names = QStringLiteral("第一个很长的名称=第一个很长的名称;第二个很长的名称=第二个很长的名称;"
                                         "第三个很长的名称=第三个很长的名称;第四个很长的名称=第四个很长的名称");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("signalInitItems"));
    TFCheckCombox control(filterRow(cfg("CheckComboBox", "", "", "", "", R"("NameValues":")" + names + '"')));
    control.slotItemPressed(control.listWidget()->findItems(QStringLiteral("第二个很长的名称"), Qt::MatchExactly).value(0));
    QCOMPARE(control.fullText(), QStringLiteral("第一个很长的名称;第三个很长的名称;第四个很长的名称"));
    const QFontMetrics metrics(control.button()->font());
    QVERIFY(metrics.horizontalAdvance(control.fullText()) >= 210);
    QVERIFY(control.button()->text().endsWith(QChar(0x2026)));
    QVERIFY(metrics.horizontalAdvance(control.button()->text()) <= 210);
}

void tst_FilterControls::mouseTicks_data()
{
    QTest::addColumn<int>("x");     // where in the item's row the click lands
    QTest::newRow("on the tick box") << 10;
    QTest::newRow("on the text") << 60;
}

// A user opens the list and clicks an item: it flips once, and the menu
// stays open for the next click.
void tst_FilterControls::mouseTicks()
{
    QFETCH(int, x);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("signalInitItems"));
    TFCheckCombox control(filterRow(cfg("CheckComboBox", "MKT", "IN", "string", "", R"("NameValues":"A=A;B=B;C=C")")));
    control.show();
    QVERIFY(QTest::qWaitForWindowExposed(&control));
    control.menu()->popup(control.button()->mapToGlobal(QPoint(0, control.button()->height())));
    QTRY_VERIFY(control.menu()->isVisible());
    const QRect rect = control.listWidget()->visualItemRect(control.listWidget()->item(2));
    QTest::mouseClick(control.listWidget()->viewport(), Qt::LeftButton, {}, QPoint(rect.left() + x, rect.center().y()));
    QCOMPARE(control.button()->text(), QStringLiteral("A;C"));
    QVERIFY(control.menu()->isVisible());
    control.menu()->hide();
}

QTEST_MAIN(tst_FilterControls)
#include "tst_filtercontrols.moc"
