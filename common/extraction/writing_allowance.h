#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QtGlobal>

#include <limits>

/// Characters that a file of this size (bytes; one full of holes may have any) is granted.
constexpr qint64 granted_characters(qint64 file_size, qint64 per_byte, qint64 spare)
{
    return per_byte * qMin(file_size, 1LL << 50) + spare;
}

/// What is read once can stand in many rows: a page's title in those of its visits, a folder's path
/// in those of its bookmarks. Long texts of a made-up file would so fill the examiner's disk.
/// Beyond an allowance that no browser's file needs, long values are cut, and no row is lost.
class writing_allowance
{
public:
    /// Without bounds.
    writing_allowance() = default;
    /// The size, in bytes, is that of the file that the rows come from; 0 for a folder.
    explicit writing_allowance(qint64 file_size)
        : characters_left_(granted_characters(file_size, characters_per_byte, spare_characters))
    {
    }

    void begin_row() { characters_left_ += characters_per_row; }
    /// The value, or what of it may be written.
    QVariant admit(QVariant value)
    {
        const void *data = value.constData();
        if (value.typeId() == QMetaType::QString)
            admit_part(value, *static_cast<const QString *>(data));
        else if (value.typeId() == QMetaType::QByteArray)
            admit_part(value, *static_cast<const QByteArray *>(data));
        return value;
    }
    bool has_cut() const { return has_cut_; }

private:
    static constexpr qint64 characters_per_byte = 32;
    static constexpr qint64 characters_per_row = 2'000;
    static constexpr qint64 spare_characters = 16 << 20;
    static constexpr qsizetype longest_cut = 1'000;

    template <typename text_type> void admit_part(QVariant &value, const text_type &text)
    {
        if (characters_left_ < 0 && text.size() > longest_cut) {
            has_cut_ = true;
            value = text_type(text.left(longest_cut));
        } else {
            characters_left_ -= text.size();
        }
    }

    qint64 characters_left_ = std::numeric_limits<qint64>::max() / 2;
    bool has_cut_ = false;
};
