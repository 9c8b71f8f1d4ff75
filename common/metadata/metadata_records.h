#pragma once

#include <QString>
#include <QStringList>

/// Metadata attributes of one file as bare texts; empty when the file does not have them. Dates
/// stay in their printed form, "2021-03-05 14:07:09 +0000".
struct struct_GLOBAL_ARTIFACT_cfstring_attributes {
    QString date_added = QStringLiteral("");
    QString kind = QStringLiteral("");
    QString content_creation_date = QStringLiteral("");
    QString content_modification_date = QStringLiteral("");
    QString content_type = QStringLiteral("");
    QString content_change_date = QStringLiteral("");
    QString creation_date = QStringLiteral("");
    QString file_name = QStringLiteral("");
    QString node_count = QStringLiteral("");
    QString where_froms = QStringLiteral(""); ///< addresses joined by ";"
    QString altitude = QStringLiteral("");
    QString latitude = QStringLiteral("");  ///< negative in the south
    QString longitude = QStringLiteral(""); ///< negative in the west
    QStringList where_from_items;           ///< the same addresses, which may hold ";" themselves
};

/// When a file was used, in the printed form of dates.
struct struct_GLOBAL_ARTIFACT_used_dates {
    QString last_used_date = QStringLiteral("");
    QString used_dates = QStringLiteral(""); ///< joined by ";"
};

/// The texts of the two extended-attribute columns.
struct struct_extended_attributes {
    QString search_text = QStringLiteral(""); ///< values of all attributes, joined by ";++::++;"
    QString xml_text = QStringLiteral("");    ///< the attribute document
};

/// One file of the evidence as the tables of downloads and cached files show it. Dates are Unix
/// seconds; several values in one text are joined by ";++::++;". Empty where nothing is known.
struct file_description {
    QString birth_time = QStringLiteral("");
    QString kind = QStringLiteral("");
    QString content_creation_date = QStringLiteral("");
    QString content_modification_date = QStringLiteral("");
    QString content_type = QStringLiteral("");
    QString fs_content_change_date = QStringLiteral("");
    QString fs_creation_date = QStringLiteral("");
    QString fs_name = QStringLiteral("");
    QString fs_node_count = QStringLiteral("");
    QString where_froms = QStringLiteral("");
    QString latitude = QStringLiteral("");
    QString longitude = QStringLiteral("");
    QString altitude = QStringLiteral("");
    QString last_used_date = QStringLiteral("");
    QString all_used_dates = QStringLiteral("");
    QString first_used_date = QStringLiteral("");
    QString final_used_date = QStringLiteral("");
    QString torrent_names = QStringLiteral("");
    QString attribute_document = QStringLiteral("");
    QString attribute_values = QStringLiteral("");
};
