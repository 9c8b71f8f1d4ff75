#pragma once

#include "common/extraction/database_reader.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariantList>

class QSqlQuery;

// The pictures that the browser keeps in its databases: icons of sites ("Favicons") and thumbnails
// of pages ("thumbnails.db"). They become files in "Images/" of the result folder. What the readers
// of all operating systems share; each has signatures and log texts of its own.

/// How one step of a reader reports its failure.
struct logged_failure {
    const char *signature;
    failure_lines lines;
};

/// An exported thumbnail. All empty when it could not be written.
struct struct_thumbnail_info {
    QString reserved_text_1 = QStringLiteral(""); ///< not used
    QString date_created = QStringLiteral("");    ///< birth time of the written file: local time,
                                                  ///< "yyyy-MM-ddThh-mm-ss"
    QString size = QStringLiteral("");            ///< bytes
    QString file_name = QStringLiteral("");
    QString hash_md5 = QStringLiteral("");        ///< stays empty: no digest is computed
    QString hash_sha1 = QStringLiteral("");       ///< the same
    QString reserved_text_7 = QStringLiteral(""); ///< not used
    QString relative_path = QStringLiteral("");   ///< "./Images/NAME"
    QString actual_path = QStringLiteral("");     ///< absolute
};

// ---- Icons --------------------------------------------------------------------------------------

/// Places in source_row::derived that the icon's INSERT reads.
enum icon_value { icon_address, icon_picture, icon_pages };

/// Reads the pictures of all icons into table favicon; one row per size of an icon.
source_reading favicon_reading(failure_lines select_failed);

/// What the look-ups below read.
std::vector<own_table> tables_of_icons();

/// Id of the icon that the row holds a picture of.
QString icon_id_of(const source_row &row);

/// Writes the row's picture to "Images/ID_ACCOUNT.png" and returns its path, "./Images/...". A file
/// that is there is replaced: all sizes of an icon share one name. Empty when the row has no
/// picture, when the id does not suit a file name, and when writing fails; the last two are logged.
QString export_icon(const source_row &row, const logged_failure &not_written);

/// Look-ups on a query of the source, which is prepared when it is not. A failure is logged and
/// gives an empty result.
QString find_icon_url(QSqlQuery &query, const QString &icon_id, extraction_run &run,
                      const logged_failure &failed);
QStringList find_icon_pages(QSqlQuery &query, const QString &icon_id, extraction_run &run,
                            const logged_failure &failed);

// ---- Thumbnails ---------------------------------------------------------------------------------

/// Places in source_row::derived that the thumbnail's INSERT reads.
enum thumbnail_value {
    actual_path,
    relative_path,
    file_name,
    file_size,
    date_created,
    hash_md5,
    hash_sha1,
    attribute_document,
    attribute_values
};

/// Reads all thumbnails into table thumbnails; the values of each come from thumbnail_values().
source_reading thumbnail_reading(failure_lines select_failed);

/// The picture that the row holds.
QByteArray thumbnail_of(const source_row &row);

/// Writes a picture, which may be empty, to "Images/NUMBER.png", in place of one that is there.
struct_thumbnail_info export_thumbnail(const extraction_run &run, const QByteArray &picture,
                                       int number, const logged_failure &not_written);

/// What the thumbnail's row needs in source_row::derived. The last two texts are those of the
/// extended attributes, where the system has such.
QVariantList thumbnail_values(const struct_thumbnail_info &thumbnail,
                              const QString &attribute_document, const QString &attribute_values);

/// Numbers the rows of each file, from 1.
class row_numbers
{
public:
    int next(const source_file &file);

private:
    QString path_;
    int number_ = 0;
};
