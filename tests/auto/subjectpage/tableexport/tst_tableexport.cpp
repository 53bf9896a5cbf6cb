#include "tfsubjectmainframe.h"
#include "tfsubjecttablewidget.h"

#include "filterwidget/tffilterwidget.h"
#include "httpservice/tfwxrshttp.h"
#include "mulittable/tfheaderdatastruct.h"
#include "net/tfjsp.h"
#include "net/tfuc.h"

#include "subjectservice.h"
#include "tfcore/tfserviceconfig.h"

#include "workbookreader.h"

#include <QAbstractButton>
#include <QDesktopServices>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QProgressDialog>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

class tst_TableExport : public QObject
{
    Q_OBJECT

public slots:
    // Stands in for the desktop: records what the export opens.
    void openFile(const QUrl &url) { m_opened.append(url); }

private slots:
    void initTestCase();
    void cleanupTestCase();
    void cleanup();

    void uniqueFileName_data();
    void uniqueFileName();
    void defaultSavePath();
    void exportWithDialog_data();
    void exportWithDialog();
    void exportBesideTheApplication_data();
    void exportBesideTheApplication();
    void exportToFile_data();
    void exportToFile();
    void longExportShowsProgressAndCancels();

private:
    // A view of the reference service in a page frame, its rows shown;
    // each view is opened once for the whole run.
    TFSubjectTableWidget *view(qint64 viewId);
    // Answers each modal dialog that comes up with the next answer ("ok",
    // "choose <file>", "cancel" for a progress dialog, which is let be
    // otherwise), then rejects any more; records what each showed in m_seen:
    // "kind|title|text", a file dialog's text being its filters and the file
    // it proposed.
    void answerDialogs(QStringList answers);

    QTemporaryDir m_dir;
    QByteArray m_home;
    std::unique_ptr<SubjectService::Server> m_server;
    std::map<qint64, std::unique_ptr<TFSubjectMainFrame>> m_frames;
    QPointer<QTimer> m_answerer;
    QStringList m_seen;
    QList<QUrl> m_opened;
    QStringList m_besideApplication;   // files the flow wrote beside the test binary
};

void tst_TableExport::initTestCase()
{
    TFTableModelData::registerRowDataType();
    QStandardPaths::setTestModeEnabled(true);
    QVERIFY(m_dir.isValid());
    // The saving proposes the documents folder: one of the test's own.
    m_home = qgetenv("HOME");
    qputenv("HOME", m_dir.path().toLocal8Bit());
    QVERIFY(QDir(m_dir.path()).mkpath(QStringLiteral("Documents")));
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    SubjectService::Options options;
    options.dbPath = m_dir.filePath(QStringLiteral("export.sqlite"));
    m_server.reset(new SubjectService::Server(options));
    QString error;
    QVERIFY2(m_server->start(&error), qPrintable(error));
    TFServiceConfig::instance()->setHttpUrl(QStringLiteral("servercfg.ini:Subject"), m_server->baseUrl());
    TFUc::setBaseUrl(m_server->baseUrl());
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "openFile");
}

void tst_TableExport::cleanupTestCase()
{
    m_frames.clear();
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    qputenv("HOME", m_home);
    if (m_server)
        m_server->stop();
}

void tst_TableExport::cleanup()
{
    delete m_answerer;
    m_seen.clear();
    m_opened.clear();
    for (const QString &path : qAsConst(m_besideApplication))
        QFileInfo(path).isDir() ? QDir(path).removeRecursively() : QFile::remove(path);
    m_besideApplication.clear();
}

TFSubjectTableWidget *tst_TableExport::view(qint64 viewId)
{
    std::unique_ptr<TFSubjectMainFrame> &frame = m_frames[viewId];
    if (frame)
        return frame->findChild<TFSubjectTableWidget *>();
    const TFUc::TFRequestContent request = TFUc::viewConfigRequest(viewId, {}, {});
    const auto reply = TFWXRSHttp::post(request.url, request.body, TFWXRSHttp::buildHeaders(QString(), QString(), QString()));
    NtResponse response;
    if (!TFJSP::parseResponse(QString::fromUtf8(reply.data), response))
        return nullptr;
    frame.reset(new TFSubjectMainFrame);
    auto *widget = new TFSubjectTableWidget(frame.get(), true);
    widget->initLayout();
    widget->reset(viewId);
    widget->parseConfig(response.data, true);
    frame->show();
    if (!QTest::qWaitFor([widget] { return widget->timeLabel()->text().startsWith(QStringLiteral("耗时")); }, 90000))
        return nullptr;
    return widget;
}

void tst_TableExport::answerDialogs(QStringList answers)
{
    delete m_answerer;
    m_answerer = new QTimer(this);
    m_answerer->setInterval(20);
    auto last = std::make_shared<QPointer<QWidget>>();
    connect(m_answerer, &QTimer::timeout, this, [this, answers, last]() mutable {
        auto *modal = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        auto *progress = qobject_cast<QProgressDialog *>(modal);
        const QString answer = answers.value(0, QStringLiteral("reject"));
        if (!modal || modal == *last || (progress && answer != QLatin1String("cancel")))
            return;
        *last = modal;
        if (!answers.isEmpty())
            answers.removeFirst();
        if (auto *files = qobject_cast<QFileDialog *>(modal)) {
            m_seen << QStringLiteral("file|%1|%2|%3").arg(modal->windowTitle(), files->nameFilters().join(';'),
                QDir(files->directory()).filePath(files->selectedFiles().value(0).section('/', -1)));
            if (answer.startsWith(QLatin1String("choose "))) {
                // The dialog lists its folder on a thread of its own and may put
                // the proposed name back once the listing arrives: choose until
                // the choice holds across a round of events.
                const QString chosen = answer.mid(7);
                QTest::qWaitFor([files, chosen]() {
                    files->selectFile(chosen);
                    QCoreApplication::processEvents();
                    return files->selectedFiles().value(0) == chosen;
                }, 5000);
                return modal->done(QDialog::Accepted);   // past the dialog's own checks, as a native one answers
            }
        } else if (auto *box = qobject_cast<QMessageBox *>(modal)) {
            m_seen << QStringLiteral("%1|%2|%3").arg(box->icon() == QMessageBox::Warning ? "warning" : "information",
                                                     modal->windowTitle(), box->text());
            if (answer == QLatin1String("ok"))
                return box->button(QMessageBox::Ok)->click();
        } else if (progress) {
            m_seen << QStringLiteral("progress|%1|%2 rows").arg(modal->windowTitle()).arg(progress->maximum());
            return progress->cancel();
        }
        modal->reject();
    });
    m_answerer->start();
}

void tst_TableExport::uniqueFileName_data()
{
    QTest::addColumn<QStringList>("inUse");     // names that cannot be removed
    QTest::addColumn<QString>("older");         // a file that can
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("expected");
    QTest::newRow("free name stays") << QStringList() << QString() << "a.xlsx" << "a.xlsx";
    QTest::newRow("an older export is removed") << QStringList() << "a.xlsx" << "a.xlsx" << "a.xlsx";
    QTest::newRow("in use: numbered, suffix without its dot") << QStringList{"a.xlsx"} << QString() << "a.xlsx" << "a(1)xlsx";
    QTest::newRow("a name ending in ')' gets another (1)") << QStringList{"a(1).xlsx"} << QString() << "a(1).xlsx" << "a(1)(1)xlsx";
    QTest::newRow("a number inside the name is not counted on") << QStringList{"a(4)b.xlsx"} << QString() << "a(4)b.xlsx" << "a(1)xlsx";
    QTest::newRow("the numbered name in use too") << QStringList{"a.xlsx", "a(1)xlsx"} << QString() << "a.xlsx" << "a(1)";
}

void tst_TableExport::uniqueFileName()
{
    QFETCH(QStringList, inUse);
    QFETCH(QString, older);
    QFETCH(QString, given);
    QFETCH(QString, expected);
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    // A folder with something in it exists and cannot be removed as a file:
    // it stands for a file that another program holds open.
    for (const QString &name : inUse)
        QVERIFY(QDir(dir.path()).mkpath(name + QStringLiteral("/held")));
    if (!older.isEmpty()) {
        QFile file(dir.filePath(older));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QCOMPARE(TFSubjectTableWidget::uniqueFileName(dir.filePath(given)), dir.filePath(expected));
    if (!older.isEmpty())
        QVERIFY(!QFile::exists(dir.filePath(older)));
}

void tst_TableExport::defaultSavePath()
{
    // Given no path, the saving asks, proposing a name with the time in
    // the documents folder; cancelling is told.
    const QDateTime before = QDateTime::currentDateTime();
    TFTreeStruct header{QString()};
    TFSubjectTableWidget widget(nullptr, true);
    answerDialogs({"reject", "ok"});
    QVERIFY(!widget.saveToExcel(QString(), &header, {}, &widget));
    QCOMPARE(m_seen.size(), 2);
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QRegularExpressionMatch match = QRegularExpression(
        QStringLiteral("^file\\|文件保存\\|Excel工作簿\\(\\*\\.xlsx\\)\\|%1/新建工作簿_(\\d{14})$")
            .arg(QRegularExpression::escape(documents))).match(m_seen.at(0));
    QVERIFY2(match.hasMatch(), qPrintable(m_seen.at(0)));
    // "yyyyMMddhhMMss": the month stands again where the minutes would be.
    const QString digits = match.captured(1);
    QCOMPARE(digits.left(10), before.toString(QStringLiteral("yyyyMMddhh")));
    QCOMPARE(digits.mid(10, 2), digits.mid(4, 2));
    QCOMPARE(m_seen.at(1), QStringLiteral("warning|保存失败|u8用户已取消"));
}

void tst_TableExport::exportWithDialog_data()
{
    QTest::addColumn<QString>("answer");     // "save", "cancel", "in use"
    QTest::addColumn<QStringList>("boxes");  // kind|title|text of each box after the file dialog
    QTest::newRow("saved") << "save" << QStringList{"information|保存成功|文件保存成功"};
    QTest::newRow("cancelled: nothing more") << "cancel" << QStringList();
    QTest::newRow("file in use") << "in use" << QStringList{"warning|保存失败|文件处于占用状态"};
}

void tst_TableExport::exportWithDialog()
{
    QFETCH(QString, answer);
    QFETCH(QStringList, boxes);

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString target = dir.filePath(answer == QLatin1String("in use") ? QStringLiteral("busy.xlsx")
                                                                           : QStringLiteral("out.xlsx"));
    if (answer == QLatin1String("in use"))
        QVERIFY(QDir(dir.path()).mkpath(QStringLiteral("busy.xlsx/held")));
    TFSubjectTableWidget *widget = view(47850);
    QVERIFY(widget);
    widget->window()->setWindowTitle(QStringLiteral("股票专题:导出"));

    answerDialogs({answer == QLatin1String("cancel") ? QString() : "choose " + target, "ok"});
    emit widget->filterWidget()->signalSimpleButtonSaveToExcel(1, QString());
    // The whole flow runs in the reply's handler: back here, it is over,
    // and a dialog more would have been seen.
    QTRY_VERIFY_WITH_TIMEOUT(m_seen.size() >= 1 + boxes.size(), 90000);
    const QString proposed = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("股票专题_导出.xlsx"));
    QCOMPARE(m_seen, QStringList{QStringLiteral("file|选择文件|Excel (*.xlxs)|") + proposed} + boxes);
    QVERIFY(m_opened.isEmpty());

    const QStringList files = QDir(dir.path()).entryList(QDir::Files | QDir::Hidden);
    QCOMPARE(files, answer == QLatin1String("save") ? QStringList{QStringLiteral("out.xlsx")} : QStringList());
    if (answer == QLatin1String("save")) {
        // The header of the screen on top, its band merged, the rows below it.
        const WorkbookReader sheet(target);
        QVERIFY2(sheet.ok(), qPrintable(sheet.error));
        QCOMPARE(sheet.merges, QStringList{QStringLiteral("D1:E1")});
        QCOMPARE(sheet.text("D1") + '|' + sheet.text("A2"), QStringLiteral("增长与物价|国家/地区"));
        QVERIFY(!sheet.text("A3").isEmpty());
    }
}

// The file is named after the page's title, beside the application, and
// opened on the desktop.
void tst_TableExport::exportBesideTheApplication_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<bool>("inUse");
    QTest::addColumn<QString>("written");
    QTest::newRow("':' and '/' become '_'") << "导出测试:%1/x" << false << "导出测试_%1_x.xlsx";
    QTest::newRow("in use: a numbered name") << "导出测试:%1" << true << "导出测试_%1(1)xlsx.xlsx";
    QTest::newRow("no title") << "" << false << "新建工作簿.xlsx";
}

void tst_TableExport::exportBesideTheApplication()
{
    QFETCH(QString, title);
    QFETCH(bool, inUse);
    QFETCH(QString, written);
    const QString pid = QString::number(QCoreApplication::applicationPid());
    const QDir bin(QCoreApplication::applicationDirPath());
    const QString expected = bin.filePath(written.arg(pid));
    m_besideApplication << expected << bin.filePath(QStringLiteral("导出测试_%1.xlsx").arg(pid));
    if (inUse)
        QVERIFY(bin.mkpath(m_besideApplication.last() + QStringLiteral("/held")));
    TFSubjectTableWidget *widget = view(47850);
    QVERIFY(widget);
    widget->window()->setWindowTitle(title.arg(pid));

    answerDialogs({});
    emit widget->filterWidget()->signalSimpleButtonSaveToExcel(0, QStringLiteral("unused"));
    QTRY_COMPARE_WITH_TIMEOUT(m_opened.size(), 1, 90000);
    QCOMPARE(m_opened.first().toLocalFile(), expected);
    QCOMPARE(m_seen, QStringList());
    QVERIFY2(WorkbookReader(expected).ok(), qPrintable(WorkbookReader(expected).error));
}

void tst_TableExport::exportToFile_data()
{
    QTest::addColumn<qint64>("viewId");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QStringList>("header");   // every cell of the header rows
    QTest::addColumn<QStringList>("merges");
    QTest::addColumn<QString>("last");         // the first cell of the last row
    QTest::newRow("banded, a long table: a band of lesser depth starts lower") << qint64(260) << "out.xlsx"
        << "2000 rows written to %1"
        << QStringList{"A3=证券代码", "B3=证券简称", "C3=交易所", "D3=所属行业", "E1=最新行情", "E3=收盘价", "F3=涨跌幅(%)",
                       "G3=振幅(%)", "H2=成交", "H3=成交量(万股)", "I3=成交额(亿元)", "J3=换手率(%)", "K2=估值", "K3=市盈率",
                       "L3=市净率", "M3=每股收益(元)", "N3=净资产收益率(%)", "O2=股本结构(亿股)", "O3=总股本(股)",
                       "P3=流通股本", "Q3=上市日期", "R3=公司简介"}
        << QStringList{"E1:J1", "H2:J2", "K2:N2", "O2:P2"} << "601998";
    QTest::newRow("grouped: the group field is not written") << qint64(265) << "out.xlsx" << "2000 rows written to %1"
        << QStringList{"A1=证券代码", "B1=证券简称", "C1=收盘价", "D1=涨跌幅(%)", "E1=市盈率", "F1=市净率", "G1=ROE(%)"}
        << QStringList() << "601979";
    QTest::newRow("cross: the row and total columns") << qint64(1590) << "out.xlsx" << "16 rows written to %1"
        << QStringList{"A1=行业", "B1=合计(亿元)", "C1=最高年度(亿元)"} << QStringList() << "食品饮料";
    QTest::newRow("folder missing") << qint64(47850) << "no/such/out.xlsx" << "cannot write" << QStringList() << QStringList() << "";
}

void tst_TableExport::exportToFile()
{
    QFETCH(qint64, viewId);
    QFETCH(QString, file);
    QFETCH(QString, message);
    QFETCH(QStringList, header);
    QFETCH(QStringList, merges);
    QFETCH(QString, last);
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    TFSubjectTableWidget *widget = view(viewId);
    QVERIFY(widget);

    QSignalSpy done(widget, &TFSubjectTableWidget::signalExportFinished);
    widget->exportToFile(dir.filePath(file));
    QVERIFY(done.wait(90000));
    QCOMPARE(done.first().at(0).toBool(), !header.isEmpty());
    QVERIFY2(done.first().at(1).toString().contains(message.arg(dir.filePath(file))),
             qPrintable(done.first().at(1).toString()));
    QVERIFY(m_seen.isEmpty());
    if (header.isEmpty()) {
        QVERIFY(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).isEmpty());
        return;
    }
    const WorkbookReader sheet(dir.filePath(file));
    QVERIFY2(sheet.ok(), qPrintable(sheet.error));
    // The header rows, then every row the view has: the message counts them.
    const int headerRows = header.last().section('=', 0, 0).remove(QRegularExpression("[A-Z]")).toInt();
    const int rows = done.first().at(1).toString().section(' ', 0, 0).toInt();
    QStringList got;
    for (const QString &cell : sheet.all()) {
        if (cell.section('=', 0, 0).remove(QRegularExpression("[A-Z]")).toInt() <= headerRows)
            got.append(cell);
    }
    QCOMPARE(got, header);
    QCOMPARE(sheet.merges, merges);
    QCOMPARE(sheet.text(QStringLiteral("A%1").arg(headerRows + rows)), last);
    QCOMPARE(sheet.text(QStringLiteral("A%1").arg(headerRows + rows + 1)), QString());
}

// A long table shows its progress, keeps the event loop running (a timer
// ticks) and can be cancelled; nothing is left behind then.
void tst_TableExport::longExportShowsProgressAndCancels()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    HeaderFieldInfo info;
    info.fieldName = info.caption = QStringLiteral("F");
    info.visible = true;
    TFTreeStruct header{QString()};
    header.addChild(new TFTreeStruct(info));
    const QList<QList<QVariant>> rows =
        QVector<QList<QVariant>>(10 * TFSubjectTableWidget::progressRowCount, {1.5}).toList();
    TFSubjectTableWidget widget(nullptr, true);
    widget.show();
    int ticks = 0;
    QTimer ticker;
    connect(&ticker, &QTimer::timeout, [&ticks] { ++ticks; });
    ticker.start(0);
    answerDialogs({"cancel", "ok"});
    QVERIFY(!widget.saveToExcel(dir.filePath(QStringLiteral("long.xlsx")), &header, rows, &widget));
    QCOMPARE(m_seen, (QStringList{QStringLiteral("progress|导出到 Excel|%1 rows").arg(rows.size()),
                                  "warning|保存失败|u8用户已取消"}));
    QVERIFY(ticks > 0);
    QVERIFY(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).isEmpty());
}

QTEST_MAIN(tst_TableExport)
#include "tst_tableexport.moc"
