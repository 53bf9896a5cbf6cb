#pragma once

#include <QColor>
#include <QObject>
#include <QUrl>

// Skin values that do not travel through a style sheet. The page writes the
// header and highlight colours that its own style sheet gives it, and item
// delegates and models far below the page read them here.
class TFQssCommon : public QObject
{
    Q_OBJECT
public:
    static TFQssCommon *instance();

    QUrl url1;
    QUrl url2;
    QUrl url3;
    QUrl url4;
    QUrl url5;
    QUrl url6;

    QColor color1;
    QColor color2;
    QColor color3;
    QColor color4;
    QColor color5;
    QColor headerBorderColor;
    QColor headerSplitColor;
    QColor highlightColor;

private:
    TFQssCommon() = default;
};
