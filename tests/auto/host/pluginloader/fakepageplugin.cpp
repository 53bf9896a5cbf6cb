#include "fakepageplugin.h"

#include <QPixmap>
#include <QUrlQuery>
#include <new>

namespace {

void *constructPage(int, void *where, const void *)
{
    return new (where) FakePage();
}

void destructPage(int, void *page)
{
    static_cast<FakePage *>(page)->~FakePage();
}

} // namespace

FakePage::FakePage(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("FakePage"));
}

FakePage::~FakePage() = default;

void FakePage::init(const QUrl &url, QVariant arg)
{
    Q_UNUSED(arg)
    setUrl(url.toString());
    emit signalWindowTitleChanged(QStringLiteral("Fake ") + QUrlQuery(url).queryItemValue(QStringLiteral("objvwid")));
    QPixmap square(8, 8);
    square.fill(Qt::red);
    emit signalWindowIconChanged(QIcon(square));
}

// FAKE_PLUGIN_FAIL makes initialisation fail, as a plug-in whose set-up
// breaks would.
bool FakePagePlugin::initialize(const QStringList &arguments, QString *errorString)
{
    if (qEnvironmentVariableIsSet("FAKE_PLUGIN_FAIL")) {
        *errorString = QStringLiteral("told to fail");
        return false;
    }
    auto *registration = new QObject;
    registration->setObjectName(QStringLiteral("FakePage"));
    registration->setProperty("id", QStringLiteral("TFApp.SUBJECT"));
    registration->setProperty("arguments", arguments);
    const int metaId = QMetaType::registerType(
        "FakePage", destructPage, constructPage, int(sizeof(FakePage)),
        QMetaType::TypeFlags(QMetaType::NeedsConstruction | QMetaType::NeedsDestruction),
        &FakePage::staticMetaObject);
    registration->setProperty("metaId", metaId);
    addAutoReleasedObject(registration);
    return true;
}

void FakePagePlugin::extensionsInitialized() {}
