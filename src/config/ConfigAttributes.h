#pragma once

#include "config/ConfigRecords.h"

#include <QDomElement>

/// \file
/// Which attributes of config.xml hold which fields of the records, and in which form.

template <typename Record>
struct AttributeRow
{
    const char *name;
    void (*read)(Record &record, const QString &text); ///< the empty text where the attribute is absent
    QString (*write)(const Record &record);
};

/// The attributes of one element in the order in which they are set. Points to a table of static lifetime.
template <typename Record>
struct AttributeTable
{
    const AttributeRow<Record> *rows;
    int count;

    [[nodiscard]] const AttributeRow<Record> *begin() const { return rows; }
    [[nodiscard]] const AttributeRow<Record> *end() const { return rows + count; }
};

extern const AttributeTable<GeneralSettingInfo> kGeneralSettingAttributes;
extern const AttributeTable<UpdateSettingInfo> kUpdateSettingAttributes;
extern const AttributeTable<GpuSettingInfo> kGpuAttributes; ///< the pair that names the card
extern const AttributeTable<GpuSettingInfo> kMonitorModuleAttributes;
extern const AttributeTable<AdjustModuleInfo> kAdjustModuleAttributes;
extern const AttributeTable<LedModuleInfo> kLedModuleAttributes;
extern const AttributeTable<LcdModuleInfo> kLcdModuleAttributes;

/// Fills every field of the table, with 0, false or the empty text where the element lacks the attribute.
template <typename Record>
void readAttributes(const QDomElement &element, const AttributeTable<Record> &table, Record &record)
{
    for (const AttributeRow<Record> &row : table)
        row.read(record, element.attribute(QLatin1String(row.name)));
}

/// Sets every attribute of the table; attributes that it doesn't name stay as they are.
template <typename Record>
void writeAttributes(QDomElement &element, const AttributeTable<Record> &table, const Record &record)
{
    for (const AttributeRow<Record> &row : table)
        element.setAttribute(QLatin1String(row.name), row.write(record));
}
