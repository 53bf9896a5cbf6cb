#include "tfexcelwritter.h"
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
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QProgressDialog>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <memory>

namespace {

const char kServiceKey[] = "servercfg.ini:Subject";

// What a dialog showed, and what the test did with it.
struct Seen
{
    QString kind;       // "file", "warning", "information", "progress"
    QString title;
    QString text;       // a box's text; a file dialog's name filters
    QString proposed;   // a file dialog's proposed file
};

} // namespace

class tst_TableExport : public QObject
{
    Q_OBJECT

public slots:
    // Stands in for the desktop: records what the export opens.
    void openFile(const QUrl &url) { m_opened.append(url); }

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();

    void uniqueFileName_data();
    void uniqueFileName();
    void fileNameFromTheTitle_data();
    void fileNameFromTheTitle();
    void defaultSavePath();
    void exportWithDialog_data();
    void exportWithDialog();
    void exportBesideTheApplication_data();
    void exportBesideTheApplication();
    void exportToFile_data();
    void exportToFile();
    void longExportShowsProgressAndCancels();

private:
    TFSubjectTableWidget *openView(qint64 viewId, QWidget *parent);
    // Answers each modal dialog that comes up with the next action, and
    // records it; actions run inside the dialog's own event loop. Progress
    // dialogs are let be unless progress says otherwise.
    void answerDialogs(QList<std::function<void(QWidget *)>> actions, bool progress = false);
    int expectedRowCount(TFSubjectTableWidget *widget);

    QTemporaryDir m_dir;
    QByteArray m_home;
    std::unique_ptr<SubjectService::Server> m_server;
    QList<Seen> m_seen;
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
    QCoreApplication::setOrganizationDomain(m_dir.path());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir.path());
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    SubjectService::Options options;
    options.dbPath = m_dir.filePath(QStringLiteral("export.sqlite"));
    m_server.reset(new SubjectService::Server(options));
    QString error;
    QVERIFY2(m_server->start(&error), qPrintable(error));
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "openFile");
}

void tst_TableExport::cleanupTestCase()
{
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    qputenv("HOME", m_home);
    if (m_server)
        m_server->stop();
}

void tst_TableExport::init()
{
    TFServiceConfig::instance()->setHttpUrl(QLatin1String(kServiceKey), m_server->baseUrl());
    m_seen.clear();
    m_opened.clear();
}

void tst_TableExport::cleanup()
{
    for (const QString &path : qAsConst(m_besideApplication)) {
        if (QFileInfo(path).isDir())
            QDir(path).removeRecursively();
        else
            QFile::remove(path);
    }
    m_besideApplication.clear();
}

TFSubjectTableWidget *tst_TableExport::openView(qint64 viewId, QWidget *parent)
{
    TFUc::setBaseUrl(m_server->baseUrl());
    const auto reply = TFWXRSHttp::post(TFUc::viewConfigRequest(viewId, {}, {}).url,
                                        TFUc::viewConfigRequest(viewId, {}, {}).body,
                                        TFWXRSHttp::buildHeaders(QString(), QString(), QString()));
    NtResponse response;
    if (!TFJSP::parseResponse(QString::fromUtf8(reply.data), response))
        return nullptr;
    auto *widget = new TFSubjectTableWidget(parent, true);
    widget->initLayout();
    widget->reset(viewId);
    widget->parseConfig(response.data, true);
    return widget;
}

void tst_TableExport::answerDialogs(QList<std::function<void(QWidget *)>> actions, bool progress)
{
    auto *timer = new QTimer(this);
    timer->setInterval(20);
    auto pending = std::make_shared<QList<std::function<void(QWidget *)>>>(actions);
    auto last = std::make_shared<QPointer<QWidget>>();
    connect(timer, &QTimer::timeout, this, [this, timer, pending, last, progress] {
        QWidget *modal = QApplication::activeModalWidget();
        if (!modal || modal == *last || pending->isEmpty())
            return;
        if (!progress && qobject_cast<QProgressDialog *>(modal))
            return;
        *last = modal;
        Seen seen;
        if (auto *files = qobject_cast<QFileDialog *>(modal)) {
            seen.kind = QStringLiteral("file");
            seen.text = files->nameFilters().join(QLatin1Char(';'));
            seen.proposed = QDir(files->directory()).filePath(files->selectedFiles().value(0).section(QLatin1Char('/'), -1));
        } else if (auto *box = qobject_cast<QMessageBox *>(modal)) {
            seen.kind = box->icon() == QMessageBox::Warning ? QStringLiteral("warning") : QStringLiteral("information");
            seen.text = box->text();
        } else if (qobject_cast<QProgressDialog *>(modal)) {
            seen.kind = QStringLiteral("progress");
        }
        seen.title = modal->windowTitle();
        m_seen.append(seen);
        const auto action = pending->takeFirst();
        if (pending->isEmpty()) {
            timer->stop();
            timer->deleteLater();
        }
        action(modal);
    });
    timer->start();
}

namespace {

void clickOk(QWidget *modal)
{
    if (auto *box = qobject_cast<QMessageBox *>(modal))
        box->button(QMessageBox::Ok)->click();
}

std::function<void(QWidget *)> choose(const QString &path)
{
    return [path](QWidget *modal) {
        auto *dialog = qobject_cast<QFileDialog *>(modal);
        QVERIFY(dialog);
        dialog->selectFile(path);
        // Past the dialog's own checks, as a native dialog would answer.
        static_cast<QDialog *>(dialog)->done(QDialog::Accepted);
    };
}

void reject(QWidget *modal)
{
    if (auto *dialog = qobject_cast<QDialog *>(modal))
        dialog->reject();
}

} // namespace

int tst_TableExport::expectedRowCount(TFSubjectTableWidget *widget)
{
    const TFUc::TFPaging paging{true, 1, 200};
    TFUc::Params params;
    for (const FilterParam::DataSourceFilter &filter : widget->params())
        params.append({filter.key, filter.value});
    const TFUc::TFRequestContent content = TFUc::viewDataRequest(widget->viewId(), params, widget->filters(), paging);
    const auto reply = TFWXRSHttp::post(content.url, content.body, TFWXRSHttp::buildHeaders(QString(), QString(), QString()));
    return QJsonDocument::fromJson(reply.data).object().value("data").toObject().value("Data").toArray().size();
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
    for (const QString &name : inUse) {
        QVERIFY(QDir(dir.path()).mkpath(name + QStringLiteral("/held")));
    }
    if (!older.isEmpty()) {
        QFile file(dir.filePath(older));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QCOMPARE(TFSubjectTableWidget::uniqueFileName(dir.filePath(given)), dir.filePath(expected));
    if (!older.isEmpty())
        QVERIFY(!QFile::exists(dir.filePath(older)));
}

void tst_TableExport::fileNameFromTheTitle_data()
{
    QTest::addColumn<bool>("inFrame");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("expected");
    QTest::newRow("no page frame") << false << QString() << "新建工作簿.xlsx";
    QTest::newRow("frame without title") << true << QString() << "新建工作簿.xlsx";
    QTest::newRow("title with ':'") << true << "股票专题:沪深A股行情" << "股票专题_沪深A股行情.xlsx";
}

void tst_TableExport::fileNameFromTheTitle()
{
    QFETCH(bool, inFrame);
    QFETCH(QString, title);
    QFETCH(QString, expected);
    TFSubjectMainFrame frame;
    frame.setWindowTitle(title);
    TFSubjectTableWidget widget(inFrame ? static_cast<QWidget *>(&frame) : nullptr, true);
    QCOMPARE(widget.exportFileName(), expected);
}

void tst_TableExport::defaultSavePath()
{
    // Given no path, the saving asks, proposing a name with the time in
    // the documents folder; cancelling is told.
    const QDateTime before = QDateTime::currentDateTime();
    TFTreeStruct header{QString()};
    TFSubjectTableWidget widget(nullptr, true);
    answerDialogs({reject, clickOk});
    QVERIFY(!widget.saveToExcel(QString(), &header, {}, &widget));
    QCOMPARE(m_seen.size(), 2);
    QCOMPARE(m_seen.at(0).title, QStringLiteral("文件保存"));
    QCOMPARE(m_seen.at(0).text, QStringLiteral("Excel工作簿(*.xlsx)"));
    const QFileInfo proposed(m_seen.at(0).proposed);
    QCOMPARE(proposed.absolutePath(),
             QFileInfo(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)).absoluteFilePath());
    const QRegularExpressionMatch match =
        QRegularExpression(QStringLiteral("^新建工作簿_(\\d{14})$")).match(proposed.fileName());
    QVERIFY2(match.hasMatch(), qPrintable(proposed.fileName()));
    // "yyyyMMddhhMMss": the month stands again where the minutes would be.
    const QString digits = match.captured(1);
    QCOMPARE(digits.left(10), before.toString(QStringLiteral("yyyyMMddhh")));
    QCOMPARE(digits.mid(10, 2), digits.mid(4, 2));
    QCOMPARE(m_seen.at(1).kind, QStringLiteral("warning"));
    QCOMPARE(m_seen.at(1).title, QStringLiteral("保存失败"));
    QCOMPARE(m_seen.at(1).text, QStringLiteral("u8用户已取消"));
}

void tst_TableExport::exportWithDialog_data()
{
    QTest::addColumn<qint64>("viewId");
    QTest::addColumn<QString>("answer");     // "save", "cancel", "in use"
    QTest::addColumn<QStringList>("boxes");  // kind|title|text of each box after the file dialog
    QTest::newRow("banded view saved") << qint64(260) << "save" << QStringList{"information|保存成功|文件保存成功"};
    QTest::newRow("grouped view saved") << qint64(265) << "save" << QStringList{"information|保存成功|文件保存成功"};
    QTest::newRow("cancelled: nothing more") << qint64(260) << "cancel" << QStringList();
    QTest::newRow("file in use") << qint64(260) << "in use" << QStringList{"warning|保存失败|文件处于占用状态"};
}

void tst_TableExport::exportWithDialog()
{
    QFETCH(qint64, viewId);
    QFETCH(QString, answer);
    QFETCH(QStringList, boxes);

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString target = dir.filePath(answer == QLatin1String("in use") ? QStringLiteral("busy.xlsx")
                                                                           : QStringLiteral("out.xlsx"));
    if (answer == QLatin1String("in use"))
        QVERIFY(QDir(dir.path()).mkpath(QStringLiteral("busy.xlsx/held")));

    TFSubjectMainFrame frame;
    frame.setWindowTitle(QStringLiteral("股票专题:导出"));
    std::unique_ptr<TFSubjectTableWidget> widget(openView(viewId, &frame));
    QVERIFY(widget);
    frame.show();
    QTRY_VERIFY_WITH_TIMEOUT(widget->timeLabel()->text().startsWith(QStringLiteral("耗时")), 90000);
    const int rows = expectedRowCount(widget.get());
    QVERIFY(rows > 0);

    QList<std::function<void(QWidget *)>> actions;
    actions.append(answer == QLatin1String("cancel") ? std::function<void(QWidget *)>(reject) : choose(target));
    for (int i = 0; i < boxes.size(); ++i)
        actions.append(clickOk);
    answerDialogs(actions);
    emit widget->filterWidget()->signalSimpleButtonSaveToExcel(1, QString());
    QTRY_COMPARE_WITH_TIMEOUT(m_seen.size(), 1 + boxes.size(), 90000);
    // Nothing further comes up.
    QTest::qWait(200);
    QCOMPARE(m_seen.size(), 1 + boxes.size());

    QCOMPARE(m_seen.at(0).kind, QStringLiteral("file"));
    QCOMPARE(m_seen.at(0).title, QStringLiteral("选择文件"));
    QCOMPARE(m_seen.at(0).text, QStringLiteral("Excel (*.xlxs)"));
    QCOMPARE(m_seen.at(0).proposed,
             QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("股票专题_导出.xlsx")));
    for (int i = 0; i < boxes.size(); ++i) {
        const Seen &seen = m_seen.at(i + 1);
        QCOMPARE(seen.kind + QLatin1Char('|') + seen.title + QLatin1Char('|') + seen.text, boxes.at(i));
    }
    QVERIFY(m_opened.isEmpty());

    const QStringList files = QDir(dir.path()).entryList(QDir::Files | QDir::Hidden);
    if (answer != QLatin1String("save")) {
        QVERIFY2(files.isEmpty(), qPrintable(files.join(' ')));
        return;
    }
    QCOMPARE(files, QStringList{QStringLiteral("out.xlsx")});
    const WorkbookReader sheet(target);
    QVERIFY2(sheet.ok(), qPrintable(sheet.error));
    // The header of the screen on top, every row of the view below it.
    TFTreeStruct *header = widget->header();
    const int headerRows = header->depth() - 1;
    const int columns = header->leaves().size() - header->hiddenLeafIndexes().size();
    QVERIFY(!sheet.text(TFExcelWritter::cellName(headerRows + rows, 1)).isEmpty());
    QVERIFY(sheet.text(TFExcelWritter::cellName(headerRows + rows + 1, 1)).isEmpty());
    QVERIFY(!sheet.text(TFExcelWritter::cellName(headerRows + 1, columns)).isEmpty());
    QVERIFY(sheet.text(TFExcelWritter::cellName(headerRows + 1, columns + 1)).isEmpty());
}

void tst_TableExport::exportBesideTheApplication_data()
{
    QTest::addColumn<bool>("inUse");
    QTest::addColumn<QString>("written");
    QTest::newRow("free name: written and opened") << false << "导出测试_%1.xlsx";
    QTest::newRow("in use: a numbered name") << true << "导出测试_%1(1)xlsx.xlsx";
}

void tst_TableExport::exportBesideTheApplication()
{
    QFETCH(bool, inUse);
    QFETCH(QString, written);
    const QString pid = QString::number(QCoreApplication::applicationPid());
    const QDir bin(QCoreApplication::applicationDirPath());
    const QString named = bin.filePath(QStringLiteral("导出测试_%1.xlsx").arg(pid));
    const QString expected = bin.filePath(written.arg(pid));
    m_besideApplication << named << expected;
    if (inUse)
        QVERIFY(bin.mkpath(named + QStringLiteral("/held")));

    TFSubjectMainFrame frame;
    frame.setWindowTitle(QStringLiteral("导出测试:") + pid);
    std::unique_ptr<TFSubjectTableWidget> widget(openView(260, &frame));
    QVERIFY(widget);
    frame.show();
    QTRY_VERIFY_WITH_TIMEOUT(widget->timeLabel()->text().startsWith(QStringLiteral("耗时")), 90000);

    answerDialogs({clickOk});
    emit widget->filterWidget()->signalSimpleButtonSaveToExcel(0, QStringLiteral("unused"));
    QTRY_COMPARE_WITH_TIMEOUT(m_opened.size(), 1, 90000);
    QCOMPARE(m_opened.first().toLocalFile(), expected);
    QVERIFY(m_seen.isEmpty());
    const WorkbookReader sheet(expected);
    QVERIFY2(sheet.ok(), qPrintable(sheet.error));
    QVERIFY(!sheet.merges.isEmpty());
}

void tst_TableExport::exportToFile_data()
{
    QTest::addColumn<qint64>("viewId");
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<bool>("merged");
    QTest::newRow("banded") << qint64(260) << "out.xlsx" << true << true;
    QTest::newRow("grouped") << qint64(265) << "out.xlsx" << true << false;
    QTest::newRow("cross") << qint64(1590) << "out.xlsx" << true << false;
    QTest::newRow("folder missing") << qint64(260) << "no/such/out.xlsx" << false << false;
}

void tst_TableExport::exportToFile()
{
    QFETCH(qint64, viewId);
    QFETCH(QString, file);
    QFETCH(bool, ok);
    QFETCH(bool, merged);
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    std::unique_ptr<TFSubjectTableWidget> widget(openView(viewId, nullptr));
    QVERIFY(widget);
    widget->show();
    QTRY_VERIFY_WITH_TIMEOUT(widget->timeLabel()->text().startsWith(QStringLiteral("耗时")), 90000);
    const int rows = expectedRowCount(widget.get());

    QSignalSpy done(widget.get(), &TFSubjectTableWidget::signalExportFinished);
    widget->exportToFile(dir.filePath(file));
    QTRY_COMPARE_WITH_TIMEOUT(done.size(), 1, 90000);
    QCOMPARE(done.first().at(0).toBool(), ok);
    QVERIFY(m_seen.isEmpty());
    if (!ok) {
        QVERIFY(done.first().at(1).toString().contains(QLatin1String("cannot write")));
        QVERIFY(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).isEmpty());
        return;
    }
    const WorkbookReader sheet(dir.filePath(file));
    QVERIFY2(sheet.ok(), qPrintable(sheet.error));

    // The bottom header row names every visible leaf, a band is merged over
    // its leaves, and every row of the view follows.
    TFTreeStruct *header = widget->header();
    const int headerRows = header->depth() - 1;
    const QList<TFTreeStruct *> leaves = header->leaves();
    int col = 0;
    int hidden = 0;
    for (TFTreeStruct *leaf : leaves) {
        ++col;
        if (!leaf->info().visible) {
            ++hidden;
            continue;
        }
        // A leaf stands in the header row its depth under its band gives;
        // it is in one of the header rows of its column.
        bool found = false;
        for (int row = 1; row <= headerRows; ++row)
            found = found || sheet.text(TFExcelWritter::cellName(row, col)) == leaf->displayCaption();
        QVERIFY2(found, qPrintable(leaf->displayCaption()));
    }
    const int columns = leaves.size() - hidden;
    QVERIFY(rows > 0);
    QVERIFY(!sheet.text(TFExcelWritter::cellName(headerRows + rows, 1)).isEmpty());
    QVERIFY(sheet.text(TFExcelWritter::cellName(headerRows + rows + 1, 1)).isEmpty());
    QVERIFY(sheet.text(TFExcelWritter::cellName(headerRows + 1, columns + 1)).isEmpty());
    QCOMPARE(!sheet.merges.isEmpty(), merged);
}

void tst_TableExport::longExportShowsProgressAndCancels()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    TFTreeStruct header{QString()};
    for (int i = 0; i < 3; ++i) {
        HeaderFieldInfo info;
        info.fieldName = info.caption = QStringLiteral("F%1").arg(i);
        info.visible = true;
        header.addChild(new TFTreeStruct(info));
    }
    QList<QList<QVariant>> rows;
    for (int i = 0; i < 10 * TFSubjectTableWidget::progressRowCount; ++i)
        rows.append(QList<QVariant>{1.5, QStringLiteral("text"), 7});
    TFSubjectTableWidget widget(nullptr, true);
    widget.show();

    // The event loop keeps running while rows are written: a timer ticks.
    int ticks = 0;
    QTimer ticker;
    connect(&ticker, &QTimer::timeout, [&ticks] { ++ticks; });
    ticker.start(0);
    int valueAtCancel = -1;
    int maximum = 0;
    answerDialogs({[&](QWidget *modal) {
                       auto *progress = qobject_cast<QProgressDialog *>(modal);
                       QVERIFY(progress);
                       QVERIFY(progress->isVisible());
                       valueAtCancel = progress->value();
                       maximum = progress->maximum();
                       progress->cancel();
                   },
                   clickOk},
                  true);
    const QString path = dir.filePath(QStringLiteral("long.xlsx"));
    QVERIFY(!widget.saveToExcel(path, &header, rows, &widget));
    ticker.stop();
    QCOMPARE(m_seen.size(), 2);
    QCOMPARE(m_seen.at(0).kind, QStringLiteral("progress"));
    QCOMPARE(maximum, rows.size());
    QVERIFY2(valueAtCancel >= 0 && valueAtCancel < rows.size(), qPrintable(QString::number(valueAtCancel)));
    QVERIFY(ticks > 0);
    QCOMPARE(m_seen.at(1).title, QStringLiteral("保存失败"));
    QCOMPARE(m_seen.at(1).text, QStringLiteral("u8用户已取消"));
    QVERIFY(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).isEmpty());
}

QTEST_MAIN(tst_TableExport)
#include "tst_tableexport.moc"
