#include "tfsubjectpageplugin.h"

#include "tfframesubjectzhp.h"
#include "tfsubjectpage.h"

#include <QMetaType>
#include <new>

namespace {

// Construction into storage the meta-type system provides: the page is
// made without a parent, and its interface tables are its own.
void *constructPage(void *where, const void *copy)
{
    Q_UNUSED(copy)
    return new (where) TFSubjectPage();
}

void destructPage(void *page)
{
    static_cast<TFSubjectPage *>(page)->~TFSubjectPage();
}

} // namespace

bool TFSubjectPagePlugin::initialize(const QStringList &arguments, QString *errorString)
{
    Q_UNUSED(arguments)
    Q_UNUSED(errorString)
    auto *registration = new QObject;
    registration->setObjectName(QStringLiteral("SubjectPage"));
    registration->setProperty("id", QStringLiteral("TFApp.SUBJECT"));
    const int metaId = QMetaType::registerNormalizedType(
        QByteArrayLiteral("TFSubjectPage"), destructPage, constructPage, int(sizeof(TFSubjectPage)),
        QMetaType::TypeFlags(QMetaType::NeedsConstruction | QMetaType::NeedsDestruction),
        &TFSubjectPage::staticMetaObject);
    registration->setProperty("metaId", metaId);
    addAutoReleasedObject(registration);
    // The component form of the page, for the host's composite screens.
    TFFrameSubjectZHP::registerComponents();
    return true;
}

void TFSubjectPagePlugin::extensionsInitialized()
{
}
