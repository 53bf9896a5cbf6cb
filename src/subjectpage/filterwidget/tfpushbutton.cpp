#include "filterwidget/tfpushbutton.h"

#include "tfcore/tfcore.h"

#include <QAction>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QIcon>
#include <QMenu>
#include <QToolButton>

namespace {

const char kGetData[] = "SimpleButtonGetData";
const char kSaveToExcel[] = "SimpleButtonSaveToExcel";
const char kSort[] = "SimpleButtonSort";
const char kOpenExcel[] = "打开EXCEL";
const char kSaveAsExcel[] = "保存为EXCEL";

} // namespace

TFPushbutton::TFPushbutton(const TFTableModelData::FilterData &data, QWidget *parent)
    : TFBaseFilterWidget(data, parent)
    , m_button(new QToolButton(this))
{
    m_button->setObjectName(data.ClassName + QStringLiteral("Button"));
    m_button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    layOutInRow({m_button}, 0);

    const QString name = data.ClassName;
    if (name == QLatin1String(kGetData) || name == QLatin1String(kSort)) {
        m_button->setText(data.Caption);
        connect(m_button, &QToolButton::clicked, this, [this] { emit clicked(); });
        connect(TFCore::instance(), &TFCore::signalSkinChanged, this, &TFPushbutton::updateIcon);
    } else if (name == QLatin1String(kSaveToExcel)) {
        m_button->setText(QString::fromUtf8("保存"));
        auto *menu = new QMenu(m_button);
        menu->addAction(QString::fromUtf8(kSaveAsExcel));
        const QFontMetrics metrics(menu->font());
        const int difference = qAbs(metrics.horizontalAdvance(QString::fromUtf8(kOpenExcel))
                                    - metrics.horizontalAdvance(QString::fromUtf8(kSaveAsExcel)));
        menu->setMinimumWidth(menu->sizeHint().width() + 12 + difference);
        m_button->setMenu(menu);
        m_button->setPopupMode(QToolButton::InstantPopup);
        connect(menu, &QMenu::triggered, this, [this](QAction *action) {
            emit clickedSaveBtn(action->text().contains(QString::fromUtf8(kOpenExcel)) ? 0 : 1);
        });
    }
    updateIcon();
}

void TFPushbutton::updateIcon()
{
    QString file;
    if (m_button->objectName() == QLatin1String("SimpleButtonGetDataButton"))
        file = QStringLiteral("subject/download_hover.png");
    else if (m_button->objectName() == QLatin1String("SimpleButtonSaveToExcelButton"))
        file = QStringLiteral("subject/save.png");
    if (!file.isEmpty())
        m_button->setIcon(QIcon(TFCore::instance()->getCurrentSkinPath(file)));
}

FilterParam::Cntrl TFPushbutton::getCntrl()
{
    return FilterParam::Cntrl();
}
