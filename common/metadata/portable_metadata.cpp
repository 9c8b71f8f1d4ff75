// File metadata on every system but macOS, read from the evidence itself: the extended attributes
// that came along with the file, what the file system knows, and a picture's own data. Nothing is
// invented: what the evidence does not hold has no value.

#include "common/evidence/evidence_file.h"
#include "common/evidence/native_path.h"
#include "common/metadata/file_xattrs.h"
#include "common/metadata/metadata_platform.h"
#include "common/metadata/picture_position.h"
#include "common/metadata/printed_values.h"
#include "common/metadata/property_list.h"

#include <QDir>
#include <QtEndian>

#include <cmath>

using namespace Qt::StringLiterals;

namespace
{

picture_place place_of_file(const QString &path)
{
    evidence_file file(resolved_path(path));
    if (!file.open_for_reading(evidence_file::links::refused) || !may_hold_position(file.peek(16)))
        return {};
    return picture_place_of(position_data(file, file.stored_size()));
}

/// "com.apple.lastuseddate#PS": seconds since 1970 and nanoseconds, 64 bits each, little-endian.
QString printed_last_use(const QByteArray &attribute)
{
    if (attribute.size() != 16)
        return {};
    const auto seconds = qFromLittleEndian<qint64>(attribute.constData());
    // Beyond these years, milliseconds would not fit the date's 64 bits.
    constexpr qint64 seconds_of_10000_years = 316'000'000'000;
    if (seconds == 0 || seconds < -seconds_of_10000_years || seconds > seconds_of_10000_years)
        return {};
    return printed_date(QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC));
}

/// The Finder's 32 bytes hold, big-endian at offset 20, the seconds since 1970 when the file came
/// into its folder. The system hides them from copying programs, which then store a 0.
QString printed_arrival(const QByteArray &finder_info)
{
    if (finder_info.size() != 32)
        return {};
    const auto seconds = qFromBigEndian<quint32>(finder_info.constData() + 20);
    return seconds != 0 ? printed_date(QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC)) : QString();
}

/// Values that are handed out; each is given back through release().
struct handed_out {
    handed_out() = default;
    virtual ~handed_out() = default;
    handed_out(const handed_out &) = delete;
    handed_out &operator=(const handed_out &) = delete;
};

/// A value is its printed description.
struct printed_value : handed_out {
    explicit printed_value(const QString &description) : text(description) {}
    QString text;
};

class file_item : public handed_out
{
public:
    explicit file_item(const QString &path)
        : path_(path), status_(status_of(path)), attributes_(path)
    {
    }

    /// Null when the file has no such attribute.
    QString printed_attribute(const QString &name) const
    {
        if (const QString printed = known_to_file_system(name); !printed.isNull())
            return printed;
        if (name == "kMDItemLastUsedDate"_L1) {
            const QString printed = first_value("com.apple.lastuseddate#PS", printed_last_use);
            if (!printed.isNull())
                return printed;
        }
        if (const QString printed =
                first_value("com.apple.metadata:" + name.toUtf8(), property_list_description);
            !printed.isNull())
            return printed;
        if (name == "kMDItemDateAdded"_L1)
            return first_value(finder_info_name, printed_arrival);
        return shown_by_picture(name);
    }

private:
    /// The first of an attribute's values that can be read.
    QString first_value(const QByteArray &name, QString (*print)(const QByteArray &)) const
    {
        for (const QByteArray &value : attributes_.values(name)) {
            if (const QString printed = print(value); !printed.isNull())
                return printed;
        }
        return {};
    }

    QString known_to_file_system(const QString &name) const
    {
        if (name == "kMDItemFSName"_L1)
            return printed_string(path_.section(u'/', -1));
        if (name == "kMDItemFSCreationDate"_L1)
            return printed_date(status_.birth);
        if (name == "kMDItemFSContentChangeDate"_L1 || name == "kMDItemContentModificationDate"_L1)
            return printed_date(status_.modified);
        if (name == "kMDItemFSNodeCount"_L1 && status_.is_folder)
            return printed_number(
                static_cast<qint64>(QDir(path_)
                                        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                                   QDir::NoDotAndDotDot)
                                        .size()));
        return {};
    }

    QString shown_by_picture(const QString &name) const
    {
        const auto wanted = name == "kMDItemLatitude"_L1    ? &picture_place::latitude
                            : name == "kMDItemLongitude"_L1 ? &picture_place::longitude
                            : name == "kMDItemAltitude"_L1  ? &picture_place::altitude
                                                            : nullptr;
        if (wanted == nullptr)
            return {};
        if (!place_)
            place_ = place_of_file(path_);
        const std::optional<double> number = (*place_).*wanted;
        return number ? printed_number(*number) : QString();
    }

    QString path_;
    file_status status_;
    file_xattrs attributes_;
    mutable std::optional<picture_place> place_; ///< empty until it is asked for
};

class portable_metadata : public metadata_platform
{
public:
    reference create_item(const QString &path) override
    {
        return status_of(path).exists ? handed(new file_item(path)) : nullptr;
    }

    reference copy_attribute(reference item, const QString &name) override
    {
        const auto *file = static_cast<const file_item *>(static_cast<const handed_out *>(item));
        const QString printed = file->printed_attribute(name);
        return printed.isNull() ? nullptr : handed(new printed_value(printed));
    }

    QString description(reference value) override
    {
        return static_cast<const printed_value *>(static_cast<const handed_out *>(value))->text;
    }

    void release(reference value) override { delete static_cast<const handed_out *>(value); }

    position picture_position(const QString &path) override
    {
        const picture_place place = place_of_file(path);
        position printed;
        const auto print = [](double number, QString &degrees, QString &side, QChar positive,
                              QChar negative) {
            degrees = QString::number(std::abs(number), 'f', QLocale::FloatingPointShortest);
            side = number < 0 ? negative : positive;
        };
        if (place.latitude)
            print(*place.latitude, printed.latitude, printed.latitude_reference, u'N', u'S');
        if (place.longitude)
            print(*place.longitude, printed.longitude, printed.longitude_reference, u'E', u'W');
        return printed;
    }

    // No object of the other system reaches this one.
    QString formatted_date(reference, reference, const QString &) override { return {}; }
    reference dictionary_value(reference, reference) override { return nullptr; }
    QString text(reference) override { return {}; }
    QString class_name(reference) override { return {}; }
    QList<reference> array_items(reference) override { return {}; }

private:
    /// References lead to the base, so that release() need not know what it gets.
    static reference handed(const handed_out *value) { return value; }
};

} // namespace

metadata_platform &system_metadata_platform()
{
    static portable_metadata platform;
    return platform;
}
