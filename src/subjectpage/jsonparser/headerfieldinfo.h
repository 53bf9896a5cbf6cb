#pragma once

#include <QMetaType>
#include <QString>

// The shared description of one column or band: read from the "Bands" list,
// from the column list of a cross table and from the display settings of a
// field, and carried by the band tree and the table model. An empty record
// has 0, false and empty text throughout.
struct HeaderFieldInfo
{
    int id = 0;                     // not read from JSON
    QString columnType;             // "Band", "BandedGridColumnWithUnit", "HyperLinkEdit", ...
    QString ownerBand;              // FieldName of the parent band; empty or "0" at the top
    QString fieldName;              // key of the field in a data row
    QString url;                    // link template
    QString valueType;
    QString unboundExpression;      // computes the cell
    int unitCategory = 0;
    qint64 prevUnitFactor = 0;      // factor of the value as delivered
    qint64 showUnitFactor = 0;      // factor of the value as shown
    QString showUnit;
    int captionShowType = 0;        // 1 and 3 put the unit into the caption
    QString caption;                // may hold an expression in braces
    int width = 0;                  // pixels; -9 measures the caption
    QString formatString;
    bool visible = false;
    bool noSort = false;
    QString cellStyleExpression;    // gives a text colour
    int textAlignment = 0;          // 0 by type, 1 left, 3 right, else centre
    int showStatus = 0;
    int sn = 0;
    int level = 0;
    QString statExpression;
};

Q_DECLARE_METATYPE(HeaderFieldInfo)
