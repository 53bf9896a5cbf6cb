#include "gridtheme.h"

namespace BandGrid {

GridTheme GridTheme::light()
{
    GridTheme t;
    t.base = QColor(0xff, 0xff, 0xff);
    t.alternateBase = QColor(0xf5, 0xf7, 0xfa);
    t.text = QColor(0x1f, 0x23, 0x28);
    t.gridLine = QColor(0xe1, 0xe4, 0xe8);
    t.headerBase = QColor(0xee, 0xf1, 0xf5);
    t.headerText = QColor(0x33, 0x3a, 0x44);
    t.headerLine = QColor(0xc8, 0xce, 0xd6);
    t.highlight = QColor(0xcc, 0xe0, 0xfa);
    t.highlightedText = QColor(0x10, 0x10, 0x10);
    t.link = QColor(0x00, 0x60, 0xe3);
    t.linkVisited = QColor(0x6a, 0x3f, 0xb5);
    t.hover = QColor(0xea, 0xf2, 0xfd);
    t.groupBase = QColor(0xf0, 0xf0, 0xf0);
    t.groupText = QColor(0x00, 0x60, 0xe3);
    t.groupLine = QColor(0xcc, 0xcc, 0xcc);
    t.frozenEdge = QColor(0x9a, 0xa4, 0xb1);
    t.buttonBase = QColor(0xe4, 0xe8, 0xee);
    t.buttonText = QColor(0x33, 0x3a, 0x44);
    return t;
}

GridTheme GridTheme::dark()
{
    GridTheme t;
    t.base = QColor(0x14, 0x17, 0x1c);
    t.alternateBase = QColor(0x1b, 0x1f, 0x26);
    t.text = QColor(0xd6, 0xdb, 0xe1);
    t.gridLine = QColor(0x2a, 0x30, 0x39);
    t.headerBase = QColor(0x22, 0x27, 0x2f);
    t.headerText = QColor(0xc3, 0xca, 0xd3);
    t.headerLine = QColor(0x38, 0x40, 0x4b);
    t.highlight = QColor(0x1f, 0x3f, 0x6b);
    t.highlightedText = QColor(0xff, 0xff, 0xff);
    t.link = QColor(0x4d, 0xa3, 0xff);
    t.linkVisited = QColor(0xb1, 0x8c, 0xff);
    t.hover = QColor(0x24, 0x2c, 0x38);
    t.groupBase = QColor(0x26, 0x2c, 0x35);
    t.groupText = QColor(0xe8, 0xb3, 0x39);
    t.groupLine = QColor(0x3a, 0x42, 0x4e);
    t.frozenEdge = QColor(0x55, 0x60, 0x6e);
    t.buttonBase = QColor(0x2e, 0x35, 0x3f);
    t.buttonText = QColor(0xd6, 0xdb, 0xe1);
    return t;
}

QPalette GridTheme::palette(const QPalette &from) const
{
    QPalette p(from);
    p.setColor(QPalette::Base, base);
    p.setColor(QPalette::AlternateBase, alternateBase);
    p.setColor(QPalette::Text, text);
    p.setColor(QPalette::Window, headerBase);
    p.setColor(QPalette::WindowText, headerLine); // the frame's plain line
    p.setColor(QPalette::Button, headerBase);
    p.setColor(QPalette::ButtonText, headerText);
    p.setColor(QPalette::Highlight, highlight);
    p.setColor(QPalette::HighlightedText, highlightedText);
    p.setColor(QPalette::Link, link);
    p.setColor(QPalette::LinkVisited, linkVisited);
    p.setColor(QPalette::Mid, gridLine);
    return p;
}

bool GridTheme::operator==(const GridTheme &o) const
{
    return base == o.base && alternateBase == o.alternateBase && text == o.text
        && gridLine == o.gridLine && headerBase == o.headerBase && headerText == o.headerText
        && headerLine == o.headerLine && highlight == o.highlight
        && highlightedText == o.highlightedText && link == o.link && linkVisited == o.linkVisited
        && hover == o.hover && groupBase == o.groupBase
        && groupText == o.groupText && groupLine == o.groupLine && frozenEdge == o.frozenEdge
        && buttonBase == o.buttonBase && buttonText == o.buttonText;
}

} // namespace BandGrid
