#include "tfcore/tfwebview.h"

#include <QApplication>
#include <QtTest>

#include "webenginetestmain.h"

class tst_TFWebView : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void emptyUrlLoadsNothing();
    void navigationAndState();

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
// an address is chosen: the first real page is the first load and has no
// page behind it.
void tst_TFWebView::emptyUrlLoadsNothing()
{
    TFWebView view;
    QSignalSpy started(&view, &QWebEngineView::loadStarted);
    view.init(QUrl(), QVariant(QString()));
    view.refresh(QUrl(), QVariant());
    view.show();
    QVERIFY(view.url().isEmpty());
    view.refresh(page("later.html", "Later"), QVariant());
    QTRY_COMPARE_WITH_TIMEOUT(view.title(), QString("Later"), 30000);
    QCOMPARE(started.count(), 1);
    QVERIFY(!view.hasBack());
}

// The page's title and progress reach the host through the page's signals;
// history moves both ways and home is the first page; zoom and address
// survive a save and restore.
void tst_TFWebView::navigationAndState()
{
    const QUrl first = page("first.html", "First");
    const QUrl second = page("second.html", "Second");
    QMap<QString, QVariant> state;
    {
        TFWebView view;
        ITFAbstractPage *asPage = &view;
        QSignalSpy titles(&view, asPage->signalWindowTitleChanged());
        QSignalSpy progress(&view, asPage->signalLoadProgressChanged());
        QVERIFY(titles.isValid() && progress.isValid());
        view.show();
        asPage->init(first, QVariant());
        QTRY_COMPARE_WITH_TIMEOUT(asPage->title(), QString("First"), 30000);
        QTRY_VERIFY(!titles.isEmpty());
        QCOMPARE(titles.last().at(0).toString(), QString("First"));
        QCOMPARE(asPage->url(), first.toString());
        QVERIFY(!progress.isEmpty());
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
        view.setZoomFactor(1.5);
        view.save(state);
    }
    QCOMPARE(state.value("url").toString(), first.toString());
    TFWebView restored;
    restored.show();
    restored.restore(state);
    QTRY_COMPARE_WITH_TIMEOUT(restored.title(), QString("First"), 30000);
    QCOMPARE(restored.zoomFactor(), 1.5);
}

SUBJECT_WEBENGINE_TEST_MAIN(tst_TFWebView)

#include "tst_tfwebview.moc"
