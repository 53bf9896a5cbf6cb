#include "pagination/tfpaginationbar.h"
#include "tfcore/tfcore.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

// Summaries arrive as the table widget hands them over: reset, total rows,
// page index, page size.
class tst_TFPaginationBar : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void reply_data();
    void reply();
    void navigation_data();
    void navigation();
    void resetRestoresNumbersNotList();
    void settings_data();
    void settings();

private:
    void apply(qint64 total, int page, int size);
    QPushButton *button(const QString &name) const { return m_bar->findChild<QPushButton *>(name); }
    QLineEdit *field() const { return m_bar->findChild<QLineEdit *>("currentPage"); }
    QLabel *totalLabel() const { return m_bar->findChild<QLabel *>("totalPage"); }
    QComboBox *combo() const { return m_bar->findChild<QComboBox *>("totalPageCombox"); }
    QString buttons() const;

    QTemporaryDir m_settingsDir;
    TFPaginationBar *m_bar = nullptr;
};

void tst_TFPaginationBar::initTestCase()
{
    // Settings go to a folder of this run, never to the user's own.
    QStandardPaths::setTestModeEnabled(true);
    QVERIFY(m_settingsDir.isValid());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settingsDir.path());
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_settingsDir.path());
    TFCore::instance()->setSkinsRoot(QStringLiteral(SUBJECT_TEST_DATA_DIR "/../../skins"));
}

void tst_TFPaginationBar::init()
{
    QSettings("TFPaginationBar", "curpage").clear();
    m_bar = new TFPaginationBar;
}

void tst_TFPaginationBar::cleanup()
{
    delete m_bar;
    m_bar = nullptr;
}

void tst_TFPaginationBar::apply(qint64 total, int page, int size)
{
    const QSignalBlocker blocker(m_bar);
    m_bar->reset();
    m_bar->setTotalCount(total);
    m_bar->setCurrentPage(page);
    m_bar->setPerCnt(size);
}

// Which of head, prev, page field, next and tail take clicks: "+" or "-".
QString tst_TFPaginationBar::buttons() const
{
    QString out;
    for (QWidget *w : QList<QWidget *>{button("headButton"), button("prevButton"), field(),
                                       button("nextButton"), button("tailButton")})
        out += w->isEnabled() ? QLatin1Char('+') : QLatin1Char('-');
    return out;
}

void tst_TFPaginationBar::reply_data()
{
    QTest::addColumn<qint64>("total");
    QTest::addColumn<int>("page");
    QTest::addColumn<QVector<int>>("sizes"); // the replies' page sizes, in turn
    QTest::addColumn<qint64>("storedTotal");
    QTest::addColumn<qint64>("pages");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QStringList>("list");
    QTest::addColumn<QString>("buttons");
    const QStringList sizes{"200", "400", "500", "1000"};
    QTest::newRow("no rows make one page") << qint64(0) << 1 << QVector<int>{200} << qint64(1) << qint64(1) << "1" << sizes << "--+--";
    QTest::newRow("negative rows count as one") << qint64(-5) << 1 << QVector<int>{200} << qint64(1) << qint64(1) << "1" << sizes << "--+--";
    // After reset the total is already 1, so a reply of one row changes
    // nothing, and the label keeps what the form showed.
    QTest::newRow("one row leaves the label as it was") << qint64(1) << 1 << QVector<int>{200} << qint64(1) << qint64(1) << "5" << sizes << "--+--";
    QTest::newRow("a full page") << qint64(200) << 1 << QVector<int>{200} << qint64(200) << qint64(1) << "1" << sizes << "--+--";
    QTest::newRow("one row over") << qint64(201) << 1 << QVector<int>{200} << qint64(201) << qint64(2) << "2" << sizes << "--+++";
    QTest::newRow("second of two") << qint64(201) << 2 << QVector<int>{200} << qint64(201) << qint64(2) << "2" << sizes << "+++--";
    QTest::newRow("two full pages") << qint64(400) << 1 << QVector<int>{200} << qint64(400) << qint64(2) << "2" << sizes << "--+++";
    QTest::newRow("middle of five") << qint64(1000) << 3 << QVector<int>{200} << qint64(1000) << qint64(5) << "5" << sizes << "+++++";
    QTest::newRow("last of five") << qint64(1000) << 5 << QVector<int>{200} << qint64(1000) << qint64(5) << "5" << sizes << "+++--";
    QTest::newRow("five hundred a page") << qint64(1001) << 1 << QVector<int>{500} << qint64(1001) << qint64(3) << "3" << sizes << "--+++";
    QTest::newRow("thousand a page") << qint64(999) << 1 << QVector<int>{1000} << qint64(999) << qint64(1) << "1" << sizes << "--+--";
    QTest::newRow("a size off the list becomes the only choice") << qint64(1000) << 1 << QVector<int>{300} << qint64(1000) << qint64(4) << "4" << QStringList{"300"} << "--+++";
    QTest::newRow("the next listed size is no longer found") << qint64(1000) << 1 << QVector<int>{300, 200} << qint64(1000) << qint64(5) << "5" << QStringList{"200"} << "--+++";
    QTest::newRow("beyond 32 bits of rows") << qint64(5000000000LL) << 1 << QVector<int>{1000} << qint64(5000000000LL) << qint64(5000000) << "5000000" << sizes << "--+++";
}

void tst_TFPaginationBar::reply()
{
    QFETCH(qint64, total);
    QFETCH(int, page);
    QFETCH(QVector<int>, sizes);
    QFETCH(qint64, pages);
    for (int size : sizes)
        apply(total, page, size);
    QTEST(m_bar->totalCount(), "storedTotal");
    QCOMPARE(m_bar->pageCount(), pages);
    QCOMPARE(m_bar->perCount(), qint64(sizes.last()));
    QTEST(totalLabel()->text(), "label");
    QStringList list;
    for (int i = 0; i < combo()->count(); ++i)
        list << combo()->itemText(i);
    QTEST(list, "list");
    QCOMPARE(combo()->currentText(), QString::number(sizes.last()));
    QTEST(buttons(), "buttons");
    QVERIFY(combo()->isEnabled());
    const auto *validator = qobject_cast<const QIntValidator *>(field()->validator());
    QVERIFY(validator);
    QCOMPARE(validator->bottom(), 1);
    QCOMPARE(qint64(validator->top()), pages);
}

void tst_TFPaginationBar::navigation_data()
{
    // From page `start` of 1000 rows at 200 a page: an action, then the
    // page and size asked for (page -1: nothing asked), and the page count
    // shown.
    QTest::addColumn<int>("start");
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("page");
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("label");
    QTest::newRow("set: within range") << 1 << "set 3" << 3 << 200 << "5";
    QTest::newRow("set: the last") << 1 << "set 5" << 5 << 200 << "5";
    QTest::newRow("set: beyond the last is the last") << 1 << "set 9" << 5 << 200 << "5";
    QTest::newRow("set: zero is one page of size zero") << 1 << "set 0" << 1 << 0 << "1";
    QTest::newRow("click: next") << 2 << "click nextButton" << 3 << 200 << "5";
    QTest::newRow("click: previous") << 4 << "click prevButton" << 3 << 200 << "5";
    QTest::newRow("click: first") << 4 << "click headButton" << 1 << 200 << "5";
    QTest::newRow("click: last") << 2 << "click tailButton" << 5 << 200 << "5";
    QTest::newRow("type: another page") << 2 << "type 4" << 4 << 200 << "5";
    QTest::newRow("type: the current page") << 2 << "type 2" << -1 << 0 << "5";
    QTest::newRow("type: beyond the last is not accepted") << 2 << "type 9" << -1 << 0 << "5";
    QTest::newRow("type: zero is not accepted") << 2 << "type 0" << -1 << 0 << "5";
    QTest::newRow("size: same page still exists") << 2 << "size 1" << 2 << 400 << "3";
    QTest::newRow("size: page beyond the new last") << 5 << "size 1" << 3 << 400 << "3";
    QTest::newRow("size: largest, one page") << 4 << "size 3" << 1 << 1000 << "1";
}

void tst_TFPaginationBar::navigation()
{
    QFETCH(int, start);
    QFETCH(QString, action);
    QFETCH(int, page);
    QFETCH(int, size);
    apply(1000, start, 200);
    m_bar->show();
    QSignalSpy spy(m_bar, &TFPaginationBar::signalCurrentPageChanged);
    const QString verb = action.section(' ', 0, 0);
    const QString arg = action.section(' ', 1);
    if (verb == "set") {
        m_bar->setCurrentPage(arg.toInt());
    } else if (verb == "click") {
        QTest::mouseClick(button(arg), Qt::LeftButton);
    } else if (verb == "type") {
        field()->selectAll();
        QTest::keyClicks(field(), arg);
        if (arg.toInt() == start)
            QTest::ignoreMessage(QtWarningMsg, "current page not changed");
        QTest::keyClick(field(), Qt::Key_Return);
    } else {
        combo()->setCurrentIndex(arg.toInt());
        emit combo()->activated(arg.toInt());
    }
    QTEST(totalLabel()->text(), "label");
    if (page < 0) {
        QCOMPARE(spy.count(), 0);
        QCOMPARE(m_bar->currentPage(), qint64(start));
        return;
    }
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0), (QVariantList{page, size}));
    QCOMPARE(m_bar->currentPage(), qint64(page));
    QCOMPARE(field()->text(), QString::number(page));
}

void tst_TFPaginationBar::resetRestoresNumbersNotList()
{
    apply(5000, 7, 300);
    m_bar->reset();
    QCOMPARE((QVector<qint64>{m_bar->totalCount(), m_bar->pageCount(), m_bar->currentPage(), m_bar->perCount()}),
             (QVector<qint64>{1, 1, 1, 200}));
    QCOMPARE(field()->text(), QStringLiteral("1"));
    QCOMPARE(combo()->currentIndex(), 0);
    QCOMPARE(combo()->count(), 1); // the list of one stays
    QCOMPARE(buttons(), QStringLiteral("--+--"));
}

void tst_TFPaginationBar::settings_data()
{
    QTest::addColumn<int>("storedIndex");
    QTest::addColumn<int>("storedCount"); // 0: nothing stored
    QTest::addColumn<int>("index");
    QTest::newRow("four items restore the index") << 2 << 4 << 2;
    QTest::newRow("a shorter list gives the first") << 2 << 3 << 0;
    QTest::newRow("a longer list gives the first") << 2 << 5 << 0;
    QTest::newRow("a list of one gives the first") << 3 << 1 << 0;
    QTest::newRow("nothing stored") << 0 << 0 << 0;
}

void tst_TFPaginationBar::settings()
{
    QFETCH(int, storedIndex);
    QFETCH(int, storedCount);
    delete m_bar;
    QSettings("TFPaginationBar", "curpage").clear();
    if (storedCount > 0) {
        QSettings stored("TFPaginationBar", "curpage");
        stored.setValue("Settings/index", storedIndex);
        stored.setValue("Settings/count", storedCount);
    }
    m_bar = new TFPaginationBar;
    QTEST(combo()->currentIndex(), "index");
    // Only the combo box moves; rows per page follow at the next total.
    QCOMPARE(m_bar->perCount(), 200);
    {
        const QSignalBlocker blocker(m_bar);
        m_bar->setTotalCount(2000);
    }
    QCOMPARE(m_bar->perCount(), combo()->currentText().toLongLong());

    // The bar keeps the choice on its way out.
    combo()->setCurrentIndex(3);
    delete m_bar;
    m_bar = nullptr;
    QSettings stored("TFPaginationBar", "curpage");
    QCOMPARE(stored.value("Settings/index").toInt(), 3);
    QCOMPARE(stored.value("Settings/count").toInt(), 4);
}

QTEST_MAIN(tst_TFPaginationBar)
#include "tst_tfpaginationbar.moc"
