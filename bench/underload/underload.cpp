// bench_underload [rounds]: run under xvfb-run -a, with
// QTWEBENGINE_DISABLE_SANDBOX=1 as root.
//
// One round opens the page of each of the eleven topics of the reference
// service's catalogue in the terminal's window, waits until it has settled,
// then clicks every node of its tree that names a view and waits again, and
// closes the page. After each round it prints the resident memory and the
// number of views opened so far.

#include "embeddedservice.h"
#include "pluginloader.h"
#include "terminalwindow.h"

#include "tfcore/tfcore.h"
#include "tfcore/tfserviceconfig.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThreadPool>
#include <QTreeView>

namespace {

const int Topics[] = {2, 61, 311, 50, 758, 4781, 159, 4782, 4785, 4808, 4837};

// A page loads its tree for a node or a view that it names: the first view
// of each topic in the plug-in's menu file.
QMap<int, QString> firstViews()
{
    QMap<int, QString> views;
    QFile file(QStringLiteral(SUBJECT_MENU_FILE));
    if (!file.open(QIODevice::ReadOnly))
        return views;
    const QJsonArray menus = QJsonDocument::fromJson(file.readAll()).object().value(QStringLiteral("menubar")).toArray();
    for (const QJsonValue &menu : menus) {
        const QJsonArray items = menu.toObject().value(QStringLiteral("menuItem")).toArray();
        if (!items.isEmpty())
            views.insert(menu.toObject().value(QStringLiteral("P_NODE_CODE")).toInt(),
                         items.first().toObject().value(QStringLiteral("obj_vw_id")).toString());
    }
    return views;
}
constexpr int ViewIdRole = Qt::UserRole + 6;

// No request running, and none for half a second; at most 60 s.
bool settle()
{
    QElapsedTimer total;
    total.start();
    QElapsedTimer quiet;
    quiet.start();
    while (total.elapsed() < 60000) {
        QApplication::processEvents(QEventLoop::AllEvents, 50);
        if (QThreadPool::globalInstance()->activeThreadCount() > 0)
            quiet.restart();
        else if (quiet.elapsed() >= 500)
            return true;
    }
    return false;
}

long residentKb()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toLong();
    }
    return -1;
}

QTreeView *mainTree(QWidget *page)
{
    // The frame's own tree: a view with a model of rows (a page may hold
    // other trees, such as a component's).
    const QList<QTreeView *> views = page->findChildren<QTreeView *>(QStringLiteral("SubjectTreeView"));
    for (QTreeView *view : views) {
        if (view->model() && view->model()->rowCount() > 0)
            return view;
    }
    return nullptr;
}

void viewNodes(const QAbstractItemModel *model, const QModelIndex &parent, QList<QPersistentModelIndex> *out)
{
    for (int row = 0; row < model->rowCount(parent); ++row) {
        const QModelIndex index = model->index(row, 0, parent);
        if (index.data(ViewIdRole).toLongLong() > 0)
            out->append(index);
        viewNodes(model, index, out);
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    const int rounds = argc > 1 ? QString::fromLocal8Bit(argv[1]).toInt() : 3;
    QTextStream out(stdout);

    const QString bin = QCoreApplication::applicationDirPath();
    TFCore *core = TFCore::instance();
    core->setSkinsRoot(QDir(bin).filePath(QStringLiteral("skins")));
    core->setIniDirectory(QDir(bin).filePath(QStringLiteral("ini")));
    core->setCurrentSkin(QStringLiteral("white"));

    QTemporaryDir dir;
    EmbeddedService service;
    QString error;
    if (!service.start(dir.filePath(QStringLiteral("demo.sqlite")), QString(), &error)) {
        out << "service: " << error << '\n';
        return 1;
    }
    TFServiceConfig::instance()->setHttpUrl(QStringLiteral("servercfg.ini:Subject"), service.baseUrl());
    PluginLoader plugins(QDir(bin).filePath(QStringLiteral("plugins")));
    if (!plugins.loadAll()) {
        out << plugins.errorString() << '\n';
        return 3;
    }

    TerminalWindow window(&plugins);
    window.resize(1400, 800);
    window.show();
    const QMap<int, QString> views = firstViews();
    int opened = 0;
    int unsettled = 0;
    out << "| round | views opened | resident memory |\n|---|---|---|\n";
    for (int round = 1; round <= rounds; ++round) {
        for (int topic : Topics) {
            const QUrl url(QStringLiteral("view://subjectpage?pnodecode=%1&objvwid=%2").arg(topic).arg(views.value(topic)));
            if (!window.openPage(url, &error)) {
                out << url.toString() << ": " << error << '\n';
                return 3;
            }
            unsettled += settle() ? 0 : 1;
            QWidget *page = window.pageAt(window.pageCount() - 1);
            QTreeView *tree = page ? mainTree(page) : nullptr;
            QList<QPersistentModelIndex> nodes;
            if (tree && tree->model())
                viewNodes(tree->model(), QModelIndex(), &nodes);
            if (nodes.isEmpty())
                out << "topic " << topic << ": no view in the tree " << "\n";
            for (const QPersistentModelIndex &node : qAsConst(nodes)) {
                if (!node.isValid())
                    continue;
                emit tree->clicked(node);
                unsettled += settle() ? 0 : 1;
                ++opened;
            }
            emit window.tabs()->tabCloseRequested(window.tabs()->count() - 1);
            settle();
        }
        out << "| " << round << " | " << opened << " | " << residentKb() / 1024 << " MB |\n";
        out.flush();
    }
    if (unsettled)
        out << unsettled << " waits ran out\n";
    return 0;
}
