#pragma once

#include <QString>

class TFBaseJsonTable;

// The one place where a configuration table is made from its identifier.
namespace TFJsonTableFactory {

// The identifier of a top-level table name, or 0 for a name that is not in
// the map. The map keeps the service's historical numbering, "Object"
// included, which ends at an identifier without a table.
int tableId(const QString& tableName);

// A new table without parent for the identifier, or null where no table
// class exists (below 1, above 12, 5 and 6). Identifier 8 gives the header
// field table in its upper-case key form, the one the "Bands" entry uses.
TFBaseJsonTable* createTable(int tableId);

} // namespace TFJsonTableFactory
