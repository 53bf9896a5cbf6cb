#pragma once

#include "filterwidget/filterparam.h"
#include "jsonparser/tffilterjsontable.h"
#include "tfcore/itfskin.h"
#include "tfjsonobjnode.h"

#include <QDialog>
#include <QFrame>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QMetaType>
#include <QString>
#include <QVariant>

class QTreeWidgetItem;
class TFDm;
class TFFrameSubjectZHP;

namespace Ui {
class TFSubjectSetting;
}


// The content of a component's settings dialog: a topic root, a leaf view in
// its navigation tree, the binding of the view to a global argument, filter
// arguments with a live filter bar and a preview, and the parts of the page
// to hide. Every change is reported at once by a signal; the frame applies
// it at once and undoes it from its snapshot when the dialog is cancelled.
class TFSubjectSetting : public QFrame, public ITFSkin
{
    Q_OBJECT
public:
    enum TreeType { BlockTree = 1, NavigationTree = 2 };

    explicit TFSubjectSetting(const QString &list, QWidget *parent = nullptr);
    ~TFSubjectSetting() override;

    void setFrame(TFFrameSubjectZHP *frame) { m_frame = frame; }
    TFFrameSubjectZHP *frame() const { return m_frame; }
    // Each box is checked when its part is hidden.
    void setVisibility(bool mainView, bool filterBar, bool childViews, bool pageBar);
    // The view that slotChangeToDefaultItem looks for in the tree.
    void setCurrentView(qint64 objVwId, const QString &caption);
    qint64 currentViewId() const { return m_objVwId; }

    // The filter arguments that the bar of this dialog holds, as the frame
    // keeps them.
    QMap<QString, QVariant> filterArgs() const;
    static QMap<QString, QVariant> filterArgsOf(const QList<FilterParam::Cntrl> &controls);
    // Gives the bar the page's filter rows, with the frame's arguments as
    // their defaults.
    void showFilterRows(QList<TFTableModelData::FilterData> rows);

    // Makes a tree of rows joined by their codes: type 1 the block rows,
    // type 2 the navigation rows. Siblings stand in the text order of their
    // codes. The nodes go to owner, which frees them.
    static void makeTree(const QJsonArray &rows, QList<TFJsonObjNode *> &roots, int type,
                         QList<TFJsonObjNode *> *owner);

    QWidget *getWidget() override { return this; }
    void applySkinStyle(const QVariant &style) override;

signals:
    void signalObjVwIdChanged(qlonglong objVwId, QString caption);
    void signalMainViewVisibleSettingChanged(bool isVisible);
    void signalFilterWidgetVisibleSettingChanged(bool isVisible);
    void signalSubViewVisibleSettingChanged(bool isVisible);
    void signalTitleVisibleChanged(bool isVisible);
    void signalTitleChanged(QString title);
    void signalPageBarVisibleChanged(bool isVisible);
    void signalBindGlBtnClicked();
    void signalPreviewFilters();
    void signalRefreashPage();

public slots:
    void slotCurrentItemChanged(QTreeWidgetItem *current, QTreeWidgetItem *previous);
    void slotChangeToDefaultItem();
    void on_cbHideFilterBar_clicked(bool checked);
    void on_cbHideMainView_clicked(bool checked);
    void on_cbHideChildView_clicked(bool checked);
    void on_cbHidePageBar_clicked(bool checked);
    void on_pbBindGl_clicked();
    void on_pbPreView_clicked();
    void on_txtTitle_textChanged(QString arg1);

private:
    void loadTree(const QString &text);
    void onTreeReply(bool isOk, const QByteArray &data);
    void fillTree(const QList<TFJsonObjNode *> &roots, const QString &captionKey);
    QTreeWidgetItem *makeItem(TFJsonObjNode *node, const QString &captionKey);

    Ui::TFSubjectSetting *ui;
    TFDm *m_dm;
    qint64 m_objVwId = 0;
    QString m_caption;
    TFFrameSubjectZHP *m_frame = nullptr;
    QList<TFJsonObjNode *> m_nodes;
};

// Declared for a dialog of binding a view to a global argument; the host's
// getArgsDlg does that work, and nothing makes this one.
class TFFilterBindDlg : public QDialog
{
    Q_OBJECT
public:
    explicit TFFilterBindDlg(QWidget *parent = nullptr)
        : QDialog(parent)
    {
    }
};
