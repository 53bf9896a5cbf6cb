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
    void pageCount_data();
    void pageCount();
    void setCurrentPage_data();
    void setCurrentPage();
    void buttonStates_data();
    void buttonStates();
    void buttonClicks_data();
    void buttonClicks();
    void unknownPageSizeBecomesOnlyChoice();
    void knownPageSizeSelectsItsItem();
    void typedPage_data();
    void typedPage();
    void activatingASizeFetchesAgain_data();
    void activatingASizeFetchesAgain();
    void resetRestoresNumbersNotList();
    void settings_data();
    void settings();
    void destructorWritesChoice();

private:
    void apply(qint64 total, int page, int size);
    QPushButton *button(const char *name) const { return m_bar->findChild<QPushButton *>(name); }
    QLineEdit *field() const { return m_bar->findChild<QLineEdit *>("currentPage"); }
    QLabel *totalLabel() const { return m_bar->findChild<QLabel *>("totalPage"); }
    QComboBox *combo() const { return m_bar->findChild<QComboBox *>("totalPageCombox"); }
    static void clearSettings();
    static void writeSettings(int index, int count);

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

void tst_TFPaginationBar::clearSettings()
{
    QSettings("TFPaginationBar", "curpage").clear();
}

void tst_TFPaginationBar::writeSettings(int index, int count)
{
    QSettings settings("TFPaginationBar", "curpage");
    settings.beginGroup("Settings");
    settings.setValue("index", index);
    settings.setValue("count", count);
}

void tst_TFPaginationBar::init()
{
    clearSettings();
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

void tst_TFPaginationBar::pageCount_data()
{
    QTest::addColumn<qint64>("total");
    QTest::addColumn<int>("size");
    QTest::addColumn<qint64>("pages");
    QTest::addColumn<qint64>("storedTotal");
    QTest::addColumn<QString>("label");   // empty: the page count
    QTest::newRow("no rows make one page") << qint64(0) << 200 << qint64(1) << qint64(1) << "";
    QTest::newRow("negative rows count as one") << qint64(-5) << 200 << qint64(1) << qint64(1) << "";
    // After reset the total is already 1, so a reply of one row changes
    // nothing, and the label keeps what it showed before.
    QTest::newRow("one row leaves the label as it was") << qint64(1) << 200 << qint64(1) << qint64(1)
                                                        << "5";
    QTest::newRow("a full page") << qint64(200) << 200 << qint64(1) << qint64(200) << "";
    QTest::newRow("one row over") << qint64(201) << 200 << qint64(2) << qint64(201) << "";
    QTest::newRow("two full pages") << qint64(400) << 200 << qint64(2) << qint64(400) << "";
    QTest::newRow("five hundred a page") << qint64(1001) << 500 << qint64(3) << qint64(1001) << "";
    QTest::newRow("thousand a page") << qint64(999) << 1000 << qint64(1) << qint64(999) << "";
    QTest::newRow("size off the list") << qint64(1000) << 300 << qint64(4) << qint64(1000) << "";
    QTest::newRow("beyond 32 bits of rows") << qint64(5000000000LL) << 1000 << qint64(5000000)
                                            << qint64(5000000000LL) << "";
}

void tst_TFPaginationBar::pageCount()
{
    QFETCH(qint64, total);
    QFETCH(int, size);
    QFETCH(qint64, pages);
    QFETCH(qint64, storedTotal);
    QFETCH(QString, label);
    apply(total, 1, size);
    QCOMPARE(m_bar->totalCount(), storedTotal);
    QCOMPARE(m_bar->pageCount(), pages);
    QCOMPARE(m_bar->perCount(), qint64(size));
    QCOMPARE(totalLabel()->text(), label.isEmpty() ? QString::number(pages) : label);
    const auto *validator = qobject_cast<const QIntValidator *>(field()->validator());
    QVERIFY(validator);
    QCOMPARE(validator->bottom(), 1);
    QCOMPARE(qint64(validator->top()), pages);
}

void tst_TFPaginationBar::setCurrentPage_data()
{
    QTest::addColumn<int>("page");
    QTest::addColumn<int>("signalPage");
    QTest::addColumn<int>("signalSize");
    QTest::addColumn<QString>("label");
    QTest::addColumn<qint64>("pages");
    QTest::newRow("within range") << 3 << 3 << 200 << "5" << qint64(5);
    QTest::newRow("the last") << 5 << 5 << 200 << "5" << qint64(5);
    QTest::newRow("beyond the last is the last") << 9 << 5 << 200 << "5" << qint64(5);
    QTest::newRow("zero is one page of size zero") << 0 << 1 << 0 << "1" << qint64(1);
}

void tst_TFPaginationBar::setCurrentPage()
{
    QFETCH(int, page);
    QFETCH(int, signalPage);
    QFETCH(int, signalSize);
    QFETCH(QString, label);
    QFETCH(qint64, pages);
    apply(1000, 1, 200);
    QSignalSpy spy(m_bar, &TFPaginationBar::signalCurrentPageChanged);
    m_bar->setCurrentPage(page);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toInt(), signalPage);
    QCOMPARE(spy.at(0).at(1).toInt(), signalSize);
    QCOMPARE(field()->text(), QString::number(signalPage));
    QCOMPARE(totalLabel()->text(), label);
    QCOMPARE(m_bar->pageCount(), pages);
    QCOMPARE(m_bar->currentPage(), qint64(signalPage));
}

void tst_TFPaginationBar::buttonStates_data()
{
    QTest::addColumn<qint64>("total");
    QTest::addColumn<int>("page");
    // head, prev, field, next, tail
    QTest::addColumn<QVector<bool>>("enabled");
    QTest::newRow("first of five") << qint64(1000) << 1 << QVector<bool>{false, false, true, true, true};
    QTest::newRow("middle of five") << qint64(1000) << 3 << QVector<bool>{true, true, true, true, true};
    QTest::newRow("last of five") << qint64(1000) << 5 << QVector<bool>{true, true, true, false, false};
    QTest::newRow("one page") << qint64(10) << 1 << QVector<bool>{false, false, true, false, false};
    QTest::newRow("second of two") << qint64(201) << 2 << QVector<bool>{true, true, true, false, false};
}

void tst_TFPaginationBar::buttonStates()
{
    QFETCH(qint64, total);
    QFETCH(int, page);
    QFETCH(QVector<bool>, enabled);
    apply(total, page, 200);
    const QVector<bool> got{button("headButton")->isEnabled(), button("prevButton")->isEnabled(),
                            field()->isEnabled(), button("nextButton")->isEnabled(),
                            button("tailButton")->isEnabled()};
    QCOMPARE(got, enabled);
    QVERIFY(combo()->isEnabled());
}

void tst_TFPaginationBar::buttonClicks_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("page");
    QTest::newRow("next") << 2 << "nextButton" << 3;
    QTest::newRow("previous") << 4 << "prevButton" << 3;
    QTest::newRow("first") << 4 << "headButton" << 1;
    QTest::newRow("last") << 2 << "tailButton" << 5;
}

void tst_TFPaginationBar::buttonClicks()
{
    QFETCH(int, start);
    QFETCH(QString, button);
    QFETCH(int, page);
    apply(1000, start, 200);
    m_bar->show();
    QSignalSpy spy(m_bar, &TFPaginationBar::signalCurrentPageChanged);
    QTest::mouseClick(this->button(qPrintable(button)), Qt::LeftButton);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toInt(), page);
    QCOMPARE(spy.at(0).at(1).toInt(), 200);
    QCOMPARE(field()->text(), QString::number(page));
}

void tst_TFPaginationBar::unknownPageSizeBecomesOnlyChoice()
{
    apply(1000, 1, 300);
    QCOMPARE(combo()->count(), 1);
    QCOMPARE(combo()->itemText(0), QStringLiteral("300"));
    QCOMPARE(combo()->currentIndex(), 0);
    QCOMPARE(m_bar->pageCount(), 4);
    // The next reply with a listed size no longer finds it.
    apply(1000, 1, 200);
    QCOMPARE(combo()->count(), 1);
    QCOMPARE(combo()->itemText(0), QStringLiteral("200"));
}

void tst_TFPaginationBar::knownPageSizeSelectsItsItem()
{
    apply(1000, 1, 500);
    QCOMPARE(combo()->count(), 4);
    QCOMPARE(combo()->currentIndex(), 2);
    QCOMPARE(m_bar->pageCount(), 2);
    // The same size again changes nothing, not even a changed total.
    {
        const QSignalBlocker blocker(m_bar);
        m_bar->setTotalCount(1000);
        m_bar->setPerCnt(500);
    }
    QCOMPARE(m_bar->pageCount(), 2);
}

void tst_TFPaginationBar::typedPage_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("signalPage");   // -1: no signal
    QTest::addColumn<bool>("warns");
    QTest::newRow("another page") << "4" << 4 << false;
    QTest::newRow("the current page") << "2" << -1 << true;
    QTest::newRow("beyond the last is not accepted") << "9" << -1 << false;
    QTest::newRow("zero is not accepted") << "0" << -1 << false;
}

void tst_TFPaginationBar::typedPage()
{
    QFETCH(QString, typed);
    QFETCH(int, signalPage);
    QFETCH(bool, warns);
    apply(1000, 2, 200);
    m_bar->show();
    QSignalSpy spy(m_bar, &TFPaginationBar::signalCurrentPageChanged);
    field()->selectAll();
    QTest::keyClicks(field(), typed);
    if (warns)
        QTest::ignoreMessage(QtWarningMsg, "current page not changed");
    QTest::keyClick(field(), Qt::Key_Return);
    if (signalPage < 0) {
        QCOMPARE(spy.count(), 0);
        QCOMPARE(m_bar->currentPage(), 2);
        return;
    }
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toInt(), signalPage);
    QCOMPARE(spy.at(0).at(1).toInt(), 200);
    QCOMPARE(m_bar->currentPage(), qint64(signalPage));
    QVERIFY(button("prevButton")->isEnabled());
}

void tst_TFPaginationBar::activatingASizeFetchesAgain_data()
{
    QTest::addColumn<int>("page");
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("signalPage");
    QTest::addColumn<int>("signalSize");
    QTest::addColumn<QString>("label");
    QTest::newRow("same page still exists") << 2 << 1 << 2 << 400 << "3";
    QTest::newRow("page beyond the new last") << 5 << 1 << 3 << 400 << "3";
    QTest::newRow("largest size, one page") << 4 << 3 << 1 << 1000 << "1";
}

void tst_TFPaginationBar::activatingASizeFetchesAgain()
{
    QFETCH(int, page);
    QFETCH(int, index);
    QFETCH(int, signalPage);
    QFETCH(int, signalSize);
    QFETCH(QString, label);
    apply(1000, page, 200);
    QSignalSpy spy(m_bar, &TFPaginationBar::signalCurrentPageChanged);
    combo()->setCurrentIndex(index);
    emit combo()->activated(index);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toInt(), signalPage);
    QCOMPARE(spy.at(0).at(1).toInt(), signalSize);
    QCOMPARE(totalLabel()->text(), label);
}

void tst_TFPaginationBar::resetRestoresNumbersNotList()
{
    apply(5000, 7, 300);
    m_bar->reset();
    QCOMPARE(m_bar->totalCount(), 1);
    QCOMPARE(m_bar->pageCount(), 1);
    QCOMPARE(m_bar->currentPage(), 1);
    QCOMPARE(m_bar->perCount(), 200);
    QCOMPARE(field()->text(), QStringLiteral("1"));
    QCOMPARE(combo()->currentIndex(), 0);
    QCOMPARE(combo()->count(), 1);   // the list of one stays
    QVERIFY(!button("nextButton")->isEnabled());
    QVERIFY(!button("headButton")->isEnabled());
}

void tst_TFPaginationBar::settings_data()
{
    QTest::addColumn<int>("storedIndex");
    QTest::addColumn<int>("storedCount");   // 0: nothing stored
    QTest::addColumn<int>("index");
    QTest::newRow("four items restore the index") << 2 << 4 << 2;
    QTest::newRow("another count gives the first") << 2 << 3 << 0;
    QTest::newRow("a list of one gives the first") << 3 << 1 << 0;
    QTest::newRow("nothing stored") << 0 << 0 << 0;
}

void tst_TFPaginationBar::settings()
{
    QFETCH(int, storedIndex);
    QFETCH(int, storedCount);
    QFETCH(int, index);
    delete m_bar;
    clearSettings();
    if (storedCount > 0)
        writeSettings(storedIndex, storedCount);
    m_bar = new TFPaginationBar;
    QCOMPARE(combo()->currentIndex(), index);
    // Only the combo box moves; rows per page follow at the next total.
    QCOMPARE(m_bar->perCount(), 200);
    const QSignalBlocker blocker(m_bar);
    m_bar->setTotalCount(2000);
    QCOMPARE(m_bar->perCount(), combo()->currentText().toLongLong());
}

void tst_TFPaginationBar::destructorWritesChoice()
{
    combo()->setCurrentIndex(3);
    delete m_bar;
    m_bar = nullptr;
    {
        QSettings settings("TFPaginationBar", "curpage");
        settings.beginGroup("Settings");
        QCOMPARE(settings.value("index").toInt(), 3);
        QCOMPARE(settings.value("count").toInt(), 4);
    }
    m_bar = new TFPaginationBar;
    QCOMPARE(combo()->currentIndex(), 3);
}

QTEST_MAIN(tst_TFPaginationBar)
#include "tst_tfpaginationbar.moc"
