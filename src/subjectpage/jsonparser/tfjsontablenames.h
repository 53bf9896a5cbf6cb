#pragma once

// Table names of the configuration document. "TABLENAME", "STRUCTURE" and
// "View" have no reader, but they belong to the vocabulary of the format and
// stay. "DATA" is the key that the object property table looks for inside
// its own value.
namespace TFJsonTableName {

inline constexpr char TableName[] = "TABLENAME";
inline constexpr char Structure[] = "STRUCTURE";
inline constexpr char DataUpper[] = "DATA";
inline constexpr char Data[] = "Data";
inline constexpr char Object[] = "Object";
inline constexpr char ObjectProperty[] = "Object_Property";
inline constexpr char ObjectView[] = "Object_View";
inline constexpr char ObjectViewConfig[] = "Object_View_Config";
inline constexpr char Summary[] = "Summary";
inline constexpr char ViewConfig[] = "View_Config";
inline constexpr char View[] = "View";

} // namespace TFJsonTableName
