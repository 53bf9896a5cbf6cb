#include "tfsubjecttablewidget.h"

#include "httpservice/tfwxrshttp.h"
#include "mulittable/tfheaderdatastruct.h"
#include "net/tfjsp.h"
#include "net/tfuc.h"

#include "subjectservice.h"
#include "tfcore/tfserviceconfig.h"

#include "workbookreader.h"

#include <QLabel>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

// subject-terminal --export, run as a user would; a workbook it writes is
// the one the table widget writes of the same view here.
class tst_TerminalExport : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void exportFromTheCommandLine_data();
    void exportFromTheCommandLine();

private:
    QTemporaryDir m_dir;
    std::unique_ptr<SubjectService::Server> m_server;
};

void tst_TerminalExport::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    TFTableModelData::registerRowDataType();
    SubjectService::Options options;
    options.dbPath = m_dir.filePath(QStringLiteral("here.sqlite"));
    m_server.reset(new SubjectService::Server(options));
    QString error;
    QVERIFY2(m_server->start(&error), qPrintable(error));
    TFServiceConfig::instance()->setHttpUrl(QStringLiteral("servercfg.ini:Subject"), m_server->baseUrl());
    TFUc::setBaseUrl(m_server->baseUrl());
}

void tst_TerminalExport::cleanupTestCase()
{
    if (m_server)
        m_server->stop();
}

void tst_TerminalExport::exportFromTheCommandLine_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<qint64>("viewId");   // the table written, or 0 for none
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message");
    QTest::newRow("banded view") << "view://subjectpage?pnodecode=4785&objvwid=47850" << qint64(47850) << 0 << "written to";
    QTest::newRow("a chart as the main view: no table")
        << "view://subjectpage?pnodecode=311&nodecode=311003&objvwid=3112" << qint64(0) << 1 << "no table";
}

void tst_TerminalExport::exportFromTheCommandLine()
{
    QFETCH(QString, url);
    QFETCH(qint64, viewId);
    QFETCH(int, exitCode);
    QFETCH(QString, message);

    QTemporaryDir home;
    QVERIFY(home.isValid());
    // The embedded reference service keeps its database in the cache
    // folder: a fresh one per run.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), home.filePath(QStringLiteral("cache")));
    const QString target = home.filePath(QStringLiteral("out.xlsx"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(SUBJECT_BIN_DIR "/subject-terminal"),
                  {QStringLiteral("--export"), target, QStringLiteral("--settle-ms"), QStringLiteral("300"), url});
    QVERIFY2(process.waitForStarted(30000), qPrintable(process.errorString()));
    const bool finished = process.waitForFinished(240000);
    const QByteArray output = process.readAllStandardOutput() + process.readAllStandardError();
    if (!finished)
        process.kill();
    QVERIFY2(finished && process.exitStatus() == QProcess::NormalExit && process.exitCode() == exitCode,
             output.right(4000).constData());
    QVERIFY2(QString::fromUtf8(output).contains(message), output.right(4000).constData());
    if (!viewId) {
        QVERIFY(!QFile::exists(target));
        return;
    }

    // The same view exported here by the table widget itself.
    const TFUc::TFRequestContent request = TFUc::viewConfigRequest(viewId, {}, {});
    NtResponse response;
    QVERIFY(TFJSP::parseResponse(QString::fromUtf8(TFWXRSHttp::post(request.url, request.body,
        TFWXRSHttp::buildHeaders(QString(), QString(), QString())).data), response));
    TFSubjectTableWidget widget(nullptr, true);
    widget.initLayout();
    widget.reset(viewId);
    widget.parseConfig(response.data, true);
    widget.show();
    QTRY_VERIFY_WITH_TIMEOUT(widget.timeLabel()->text().startsWith(QStringLiteral("耗时")), 90000);
    QSignalSpy done(&widget, &TFSubjectTableWidget::signalExportFinished);
    const QString here = m_dir.filePath(QStringLiteral("here.xlsx"));
    widget.exportToFile(here);
    QVERIFY(done.wait(90000) && done.first().at(0).toBool());

    const WorkbookReader exported(target);
    const WorkbookReader expected(here);
    QVERIFY2(exported.ok(), qPrintable(exported.error));
    QVERIFY2(expected.ok(), qPrintable(expected.error));
    QVERIFY(!expected.merges.isEmpty());
    QCOMPARE(exported.merges, expected.merges);
    QCOMPARE(exported.widths, expected.widths);
    QCOMPARE(exported.all(), expected.all());
}

QTEST_MAIN(tst_TerminalExport)
#include "tst_terminalexport.moc"
