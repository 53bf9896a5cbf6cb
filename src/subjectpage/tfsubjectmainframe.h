#pragma once

#include <QFrame>
#include <QJsonValue>
#include <QMap>
#include <QPair>
#include <QVariant>

class QGridLayout;
class QLabel;
class QSplitter;
class QStackedWidget;
class TFDm;
class TFRightContainer;
class TFTreeWidgetContainer;
class TFWebView;
struct NtResponse;

// Fills the page: the navigation tree on the left, and on the right a stack
// of the data page (index 0) and a web page (index 1). It keeps what the
// page URL gave, loads the navigation, shows a loading image until the
// navigation stands, and routes a tree selection to one side of the stack.
class TFSubjectMainFrame : public QFrame
{
    Q_OBJECT
    // The F9 arguments, for filter bars below that find the frame by its
    // class name.
    Q_PROPERTY(QVariantMap f9Args READ f9Args)
public:
    explicit TFSubjectMainFrame(QWidget *parent = nullptr);
    ~TFSubjectMainFrame() override;

    void setCaption(const QString &caption);
    QString caption() const { return m_caption; }
    void setNodeCode(const QString &nodeCode);
    QString nodeCode() const { return m_nodeCode; }
    void setObjVwId(const QString &objVwId);
    QString objVwId() const { return m_objVwId; }
    void setPNodeCode(int pNodeCode);
    int pNodeCode() const { return m_pNodeCode; }
    void setF9Args(const QMap<QString, QVariant> &args);
    QMap<QString, QVariant> f9Args() const { return m_f9Args; }

    // The checked sectors of the block tree, as a request parameter.
    QPair<QString, QVariant> blockFilter() const;

    // Sends the navigation request (and for the stock topic the block rows
    // request); the first call also builds the right side.
    void refresh();

    TFTreeWidgetContainer *leftContainer() const { return m_ui.leftContainer; }
    TFRightContainer *rightContainer() const { return m_rightContainer; }
    TFWebView *webView() const { return m_webView; }
    QStackedWidget *stack() const { return m_ui.rightContainer; }
    QLabel *loadingLabel() const { return m_loadingLabel; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    struct Ui
    {
        QGridLayout *gridLayout = nullptr;
        QSplitter *splitter = nullptr;
        TFTreeWidgetContainer *leftContainer = nullptr;
        QStackedWidget *rightContainer = nullptr;
        void setupUi(QFrame *frame);
    };

    void requestBlockRows();
    void requestNavigation();
    void requestConstants(const NtResponse &navigation);
    void onNavigationReply(bool isOk, const QByteArray &data);
    void onItemClicked(qlonglong id, const QString &title, const QString &url);

    Ui m_ui;
    TFRightContainer *m_rightContainer = nullptr;
    TFWebView *m_webView = nullptr;
    QLabel *m_loadingLabel;
    TFDm *m_dm;
    QString m_caption;
    int m_pNodeCode = -1;
    QString m_objVwId;
    QString m_nodeCode;
    QJsonValue m_blockValue;
    QMap<QString, QVariant> m_f9Args;
};
