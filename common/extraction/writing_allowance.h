#pragma once

#include "common/values/text_values.h"

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QtGlobal>

/// Characters that a file of this size (bytes; one full of holes may have any) is granted.
constexpr qint64 granted_characters(qint64 file_size, qint64 per_byte, qint64 spare)
{
    return per_byte * qMin(file_size, 1LL << 50) + spare;
}

/// Bytes that the text takes in UTF-8.
inline qint64 stored_bytes(QStringView text)
{
    qint64 bytes = 0;
    for (const QChar c : text)
        bytes += c.unicode() < 0x80 ? 1 : c.unicode() < 0x800 || c.isSurrogate() ? 2 : 3;
    return bytes;
}

/// What is read once can stand in many rows: a page's title in those of its visits, a folder's path
/// in those of its bookmarks. Long texts of a made-up file would so fill the examiner's disk.
/// Beyond an allowance that no browser's file needs, every long value is cut to a small length and
/// ends with cut_mark. No row is lost.
class writing_allowance
{
public:
    /// Bytes, beyond what its files are granted, that all values of a run may take together.
    static constexpr qint64 spare_of_run = 40 << 20;
    /// Bytes of a cut value, its mark included.
    static constexpr qsizetype longest_cut = 100;

    /// The size, in bytes, is that of the file that the rows come from; 0 for a folder, whose rows
    /// stand for a file each.
    writing_allowance(qint64 file_size, qint64 &spare)
        : bytes_left_(granted_characters(file_size, bytes_per_byte, 0)),
          bytes_per_row_(file_size == 0 ? bytes_of_file_row : 0), spare_(&spare)
    {
    }

    void begin_row() { bytes_left_ += bytes_per_row_; }
    /// The value, or what of it may be written.
    QVariant admit(QVariant value)
    {
        const void *data = value.constData();
        if (value.typeId() == QMetaType::QString)
            admit_text(value, *static_cast<const QString *>(data));
        else if (value.typeId() == QMetaType::QByteArray)
            admit_bytes(value, *static_cast<const QByteArray *>(data));
        return value;
    }
    bool has_cut() const { return has_cut_; }

private:
    static constexpr qint64 bytes_per_byte = 6; ///< several readers may read one file
    static constexpr qint64 bytes_of_file_row = 4'000;

    bool admits(qint64 bytes)
    {
        if (bytes <= bytes_left_) {
            bytes_left_ -= bytes;
            return true;
        }
        if (bytes > longest_cut && bytes > *spare_) {
            has_cut_ = true;
            return false;
        }
        *spare_ -= qMin(bytes, *spare_);
        return true;
    }

    void admit_text(QVariant &value, const QString &text)
    {
        if (admits(stored_bytes(text)))
            return;
        qsizetype end = 0;
        qint64 bytes = stored_bytes(cut_mark);
        while (end < text.size() &&
               bytes + stored_bytes(QStringView(text).mid(end, 1)) <= longest_cut)
            bytes += stored_bytes(QStringView(text).mid(end++, 1));
        if (end > 0 && text.at(end - 1).isHighSurrogate())
            --end;
        value = text.left(end).append(cut_mark);
    }

    void admit_bytes(QVariant &value, const QByteArray &bytes)
    {
        if (!admits(bytes.size()))
            value =
                QByteArray(bytes.left(longest_cut - stored_bytes(cut_mark)) + cut_mark.toUtf8());
    }

    qint64 bytes_left_;
    qint64 bytes_per_row_;
    qint64 *spare_;
    bool has_cut_ = false;
};
