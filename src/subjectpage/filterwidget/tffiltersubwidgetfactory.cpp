#include "filterwidget/tffiltersubwidgetfactory.h"

#include "filterwidget/tfdateedit.h"
#include "filterwidget/tfdatetimeinterval.h"
#include "filterwidget/tfdecimaltexteditinterval.h"
#include "filterwidget/tffilterlabel.h"
#include "filterwidget/tffilterwidget.h"
#include "filterwidget/tflineedit.h"
#include "filterwidget/tfpushbutton.h"

#include <QDebug>

namespace {

bool has(const QString &className, const char *word)
{
    return className.contains(QLatin1String(word), Qt::CaseInsensitive);
}

} // namespace

TFBaseFilterWidget *TFFilterCtlFactory::createWidget(const TFTableModelData::FilterData &data,
                                                     TFFilterWidget *bar)
{
    const QString &name = data.ClassName;
    if (name.isEmpty())
        return nullptr;

    TFBaseFilterWidget *control = nullptr;
    // The order matters: "DecimalTextEditInterval" holds "textedit", and
    // "CheckComboBox" holds "combobox". The list and period controls
    // (years, check list, combo box, report dates, months) are not built
    // yet: their rows take their places in the order and make nothing.
    if (name == QLatin1String("DecimalTextEditInterval")) {
        control = new TFDecimalTextEditInterval(data, bar);
    } else if (has(name, "dateedit")) {
        control = new TFDateEdit(data, bar);
    } else if (has(name, "simpleyear")) {
        return nullptr;
    } else if (has(name, "multyear")) {
        return nullptr;
    } else if (has(name, "checkcombobox")) {
        return nullptr;
    } else if (has(name, "combobox")) {
        return nullptr;
    } else if (has(name, "textedit") || has(name, "KeywordsBox")) {
        control = new TFLineEdit(data, bar);
    } else if (has(name, "button")) {
        control = new TFPushbutton(data, bar);
    } else if (has(name, "datetimeinterval")) {
        control = new TFDatetimeInterval(data, bar);
    } else if (has(name, "ReportDateSimple")) {
        return nullptr;
    } else if (has(name, "YearMonthInterval")) {
        return nullptr;
    } else if (has(name, "virtualcntrl") || has(name, "F9SecuIdCntrl") || has(name, "F9COMIDCntrl")) {
        control = new TFFilterLabel(data, bar);
        control->hide();
    } else if (has(name, "YearMonthSimple")) {
        return nullptr;
    } else {
        const char rule[] = "\n--------------not suports no contains-------------\n ";
        qDebug().nospace() << rule;
        qDebug().noquote() << "not suports no contains: " << name << data.Caption;
        qDebug().nospace() << rule;
        return nullptr;
    }
    connectToBar(control, bar);
    return control;
}

void TFFilterCtlFactory::connectToBar(TFBaseFilterWidget *control, TFFilterWidget *bar)
{
    if (!control || !bar)
        return;
    const QString name = control->objectName();
    if (name == QLatin1String("UnitFactorCombobox")) {
        // The unit list reports (unit code, unit category).
        QObject::connect(control, SIGNAL(signalCurrentIndexChanged(int, int)), bar,
                         SIGNAL(signalComboBoxChanged(int, int)));
        return;
    }
    auto *button = qobject_cast<TFPushbutton *>(control);
    if (!button)
        return;
    if (name == QLatin1String("SimpleButtonGetData"))
        QObject::connect(button, &TFPushbutton::clicked, bar, &TFFilterWidget::slotSimpleButtonGetDataClicked);
    else if (name == QLatin1String("SimpleButtonSaveToExcel"))
        QObject::connect(button, qOverload<int>(&TFPushbutton::clickedSaveBtn), bar,
                         &TFFilterWidget::slotSimpleButtonSaveToExcel);
    else if (name == QLatin1String("SimpleButtonSort"))
        QObject::connect(button, &TFPushbutton::clicked, bar, &TFFilterWidget::signalSortChanged);
}
