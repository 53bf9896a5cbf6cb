#include "tfmessagebox.h"

#include "tfcore/commontemplate.h"
#include "tfcore/tfframelesshelper.h"
#include "tfcore/tfshadow.h"

#include <QCursor>
#include <QDebug>
#include <QDialog>
#include <QFile>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTextBrowser>
#include <QUiLoader>

// The form is compiled into this module; a static library's resources must
// be registered by hand (outside any namespace), and once is enough.
static void registerForm()
{
    static const bool registered = [] {
        Q_INIT_RESOURCE(tfmessagebox);
        return true;
    }();
    Q_UNUSED(registered)
}

namespace {

constexpr int kWidth = 300;
constexpr int kHeight = 200;

// Opens at the cursor, and to the left of or above it when the box would
// otherwise pass the right or bottom edge of the default screen.
QPoint placeAtCursor()
{
    QPoint at = QCursor::pos();
    // The desktop's default screen; QDesktopWidget's own call for it is deprecated.
    const QScreen *screen = QGuiApplication::primaryScreen();
    const QRect available = screen ? screen->availableGeometry() : QRect();
    if (at.x() + kWidth > available.width())
        at.rx() -= kWidth;
    if (at.y() + kHeight > available.height())
        at.ry() -= kHeight;
    return at;
}

} // namespace

void TFMessageBox::showMsg(const QString &title, const QString &text)
{
    registerForm();
    TFAdWidget<QDialog> dialog;
    TFFramelessHelper helper(&dialog);
    dialog.setFramelessHelper(&helper);
    helper.activateOn(&dialog);

    QUiLoader loader;
    QFile form(QStringLiteral(":/messagebox.ui"));
    if (!form.open(QIODevice::ReadOnly)) {
        qWarning() << "failed open failed:" << form.errorString();
        return;
    }
    QWidget *content = loader.load(&form);
    form.close();
    dialog.initContentWithWidget(content);

    helper.setWidgetMovable(true);
    dialog.setBlurRadius(0);
    dialog.setShadowMargin(1);
    dialog.setShadowStyle(QStringLiteral("background-color:#cccccc;border:none;border-radius: 0px;"));
    dialog.applyShadow();
    if (auto *label = CommonTemplate::get<QLabel>(&dialog, QStringLiteral("lbTitle")))
        label->setText(title);
    if (auto *browser = CommonTemplate::get<QTextBrowser>(&dialog, QStringLiteral("tbMsg")))
        browser->append(text);
    if (auto *close = CommonTemplate::get<QPushButton>(&dialog, QStringLiteral("pbMsgClose")))
        QObject::connect(close, &QPushButton::clicked, &dialog, &QDialog::close, Qt::DirectConnection);

    dialog.resize(kWidth, kHeight);
    helper.setWidgetResizable(false);
    dialog.move(placeAtCursor());
    dialog.exec();
}
