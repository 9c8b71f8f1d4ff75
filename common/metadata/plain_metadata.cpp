// File metadata on systems that keep no metadata items: what the file system itself knows, printed
// in the forms of the system whose volumes are read. Nothing is invented: what is not known has no
// value.

#include "common/metadata/metadata_platform.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <memory>

using namespace Qt::StringLiterals;

namespace
{

/// A value is its printed description, an item the file's path.
using printed_text = QString;

QString printed_date(const QDateTime &date)
{
    return date.isValid() ? date.toUTC().toString(u"yyyy-MM-dd hh:mm:ss +0000"_s) : QString();
}

QString printed_string(const QString &text)
{
    return u"<CFString 0x0 [0x0]>{contents = \""_s + text + u"\"}";
}

QString printed_number(qint64 number)
{
    return u"<CFNumber 0x0 [0x0]>{value = +"_s + QString::number(number) +
           u", type = kCFNumberSInt64Type}";
}

QString printed_attribute(const QFileInfo &file, const QString &name)
{
    if (name == "kMDItemFSName"_L1)
        return printed_string(file.fileName());
    if (name == "kMDItemFSCreationDate"_L1)
        return printed_date(file.birthTime());
    if (name == "kMDItemFSContentChangeDate"_L1 || name == "kMDItemContentModificationDate"_L1)
        return printed_date(file.lastModified());
    if (name == "kMDItemFSNodeCount"_L1 && file.isDir())
        return printed_number(static_cast<qint64>(
            QDir(file.filePath())
                .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot)
                .size()));
    return {};
}

class plain_metadata : public metadata_platform
{
public:
    reference create_item(const QString &path) override
    {
        return QFileInfo::exists(path) ? new printed_text(path) : nullptr;
    }

    reference copy_attribute(reference item, const QString &name) override
    {
        const QString printed = printed_attribute(QFileInfo(text_of(item)), name);
        return printed.isNull() ? nullptr : new printed_text(printed);
    }

    QString description(reference value) override { return text_of(value); }

    void release(reference value) override { delete static_cast<const printed_text *>(value); }

    position picture_position(const QString & /*path*/) override { return {}; }

    // No object of the other system reaches this one.
    QString formatted_date(reference, reference, const QString &) override { return {}; }
    reference dictionary_value(reference, reference) override { return nullptr; }
    QString text(reference) override { return {}; }
    QString class_name(reference) override { return {}; }
    QList<reference> array_items(reference) override { return {}; }

private:
    static const printed_text &text_of(reference value)
    {
        return *static_cast<const printed_text *>(value);
    }
};

} // namespace

metadata_platform &system_metadata_platform()
{
    static plain_metadata platform;
    return platform;
}
