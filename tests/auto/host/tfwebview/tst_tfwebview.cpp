#include "tfcore/tfwebview.h"

#include <QApplication>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include "webenginetestmain.h"

class tst_TFWebView : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void emptyUrlLoadsNothing();
    void initLoadsAndTheTitleSignalFollows();
    void refreshLoadsAndHistoryGoesBack();
    void stateRoundTrip();

private:
    QUrl page(const QString &name, const QString &title);
    QTemporaryDir m_dir;
};

QUrl tst_TFWebView::page(const QString &name, const QString &title)
{
    QFile file(m_dir.filePath(name));
    if (!file.open(QIODevice::WriteOnly))
        return QUrl();
    file.write(QStringLiteral("<html><head><title>%1</title></head><body><p>%1</p></body></html>")
                   .arg(title).toUtf8());
    return QUrl::fromLocalFile(file.fileName());
}

void tst_TFWebView::initTestCase()
{
    QVERIFY(m_dir.isValid());
}

// A stack holds the web view ready, without an error page, until a node with
// an address is chosen.
void tst_TFWebView::emptyUrlLoadsNothing()
{
    TFWebView view;
    QSignalSpy started(&view, &QWebEngineView::loadStarted);
    view.init(QUrl(), QVariant(QString()));
    view.refresh(QUrl(), QVariant());
    view.show();
    QTest::qWait(500);
    QCOMPARE(started.count(), 0);
    QVERIFY(view.url().isEmpty());
}

void tst_TFWebView::initLoadsAndTheTitleSignalFollows()
{
    const QUrl url = page("quotes.html", "Quote board");
    TFWebView view;
    ITFAbstractPage *asPage = &view;
    QSignalSpy titles(&view, asPage->signalWindowTitleChanged());
    QVERIFY(titles.isValid());
    QSignalSpy progress(&view, asPage->signalLoadProgressChanged());
    QVERIFY(progress.isValid());
    asPage->init(url, QVariant());
    view.show();
    QTRY_COMPARE_WITH_TIMEOUT(asPage->title(), QString("Quote board"), 30000);
    QVERIFY(titles.count() >= 1);
    QCOMPARE(titles.last().at(0).toString(), QString("Quote board"));
    QCOMPARE(asPage->url(), url.toString());
    QVERIFY(progress.count() >= 1);
}

void tst_TFWebView::refreshLoadsAndHistoryGoesBack()
{
    const QUrl first = page("first.html", "First");
    const QUrl second = page("second.html", "Second");
    TFWebView view;
    view.show();
    view.init(first, QVariant());
    QTRY_COMPARE_WITH_TIMEOUT(view.title(), QString("First"), 30000);
    QVERIFY(!view.hasBack());
    view.refresh(second, QVariant());
    QTRY_COMPARE_WITH_TIMEOUT(view.title(), QString("Second"), 30000);
    QVERIFY(view.hasBack());
    view.goBack();
    QTRY_COMPARE_WITH_TIMEOUT(view.title(), QString("First"), 30000);
    QVERIFY(view.hasForward());
    view.goForward();
    QTRY_COMPARE_WITH_TIMEOUT(view.title(), QString("Second"), 30000);
    view.goHome();
    QTRY_COMPARE_WITH_TIMEOUT(view.title(), QString("First"), 30000);
}

void tst_TFWebView::stateRoundTrip()
{
    const QUrl url = page("saved.html", "Saved");
    QMap<QString, QVariant> state;
    {
        TFWebView view;
        view.show();
        view.init(url, QVariant());
        QTRY_COMPARE_WITH_TIMEOUT(view.title(), QString("Saved"), 30000);
        view.setZoomFactor(1.5);
        view.save(state);
    }
    QCOMPARE(state.value("url").toString(), url.toString());
    TFWebView restored;
    restored.show();
    restored.restore(state);
    QTRY_COMPARE_WITH_TIMEOUT(restored.title(), QString("Saved"), 30000);
    QCOMPARE(restored.zoomFactor(), 1.5);
}

SUBJECT_WEBENGINE_TEST_MAIN(tst_TFWebView)

#include "tst_tfwebview.moc"
