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

class tst_TerminalExport : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void exportFromTheCommandLine_data();
    void exportFromTheCommandLine();

private:
    // The view exported in this process by the table widget itself.
    QString exportHere(qint64 viewId);

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

QString tst_TerminalExport::exportHere(qint64 viewId)
{
    const TFUc::TFRequestContent request = TFUc::viewConfigRequest(viewId, {}, {});
    const auto reply = TFWXRSHttp::post(request.url, request.body, TFWXRSHttp::buildHeaders(QString(), QString(), QString()));
    NtResponse response;
    if (!TFJSP::parseResponse(QString::fromUtf8(reply.data), response))
        return QString();
    TFSubjectTableWidget widget(nullptr, true);
    widget.initLayout();
    widget.reset(viewId);
    widget.parseConfig(response.data, true);
    widget.show();
    if (!QTest::qWaitFor([&] { return widget.timeLabel()->text().startsWith(QStringLiteral("耗时")); }, 90000))
        return QString();
    QSignalSpy done(&widget, &TFSubjectTableWidget::signalExportFinished);
    const QString path = m_dir.filePath(QStringLiteral("here-%1.xlsx").arg(viewId));
    widget.exportToFile(path);
    if (!done.wait(90000) || !done.first().at(0).toBool())
        return QString();
    return path;
}

void tst_TerminalExport::exportFromTheCommandLine_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message");
    QTest::newRow("banded view 260") << "view://subjectpage?pnodecode=2&objvwid=260" << "out.xlsx" << 0 << "written to";
    QTest::newRow("a chart as the main view: no table")
        << "view://subjectpage?pnodecode=311&nodecode=311003&objvwid=3112" << "out.xlsx" << 1 << "no table";
    QTest::newRow("folder missing") << "view://subjectpage?pnodecode=2&objvwid=260" << "no/such/out.xlsx" << 1
                                    << "cannot write";
}

void tst_TerminalExport::exportFromTheCommandLine()
{
    QFETCH(QString, url);
    QFETCH(QString, file);
    QFETCH(int, exitCode);
    QFETCH(QString, message);

    const QString terminal = QStringLiteral(SUBJECT_BIN_DIR "/subject-terminal");
    QVERIFY2(QFile::exists(terminal), qPrintable(terminal));
    QTemporaryDir home;
    QVERIFY(home.isValid());
    // The embedded reference service keeps its database in the cache
    // folder: a fresh one per run.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), home.filePath(QStringLiteral("cache")));
    const QString target = home.filePath(file);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(terminal, {QStringLiteral("--export"), target, QStringLiteral("--settle-ms"), QStringLiteral("500"), url});
    QVERIFY2(process.waitForStarted(30000), qPrintable(process.errorString()));
    const bool finished = process.waitForFinished(240000);
    const QByteArray output = process.readAllStandardOutput() + process.readAllStandardError();
    if (!finished)
        process.kill();
    QVERIFY2(finished, output.right(4000).constData());
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == exitCode, output.right(4000).constData());
    QVERIFY2(QString::fromUtf8(output).contains(message), output.right(4000).constData());
    if (exitCode != 0) {
        QVERIFY(!QFile::exists(target));
        return;
    }

    // The same workbook as the table widget's own export of the view.
    const QString here = exportHere(260);
    QVERIFY(!here.isEmpty());
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
